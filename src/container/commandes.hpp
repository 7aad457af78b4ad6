#pragma once

namespace brindex {

// Every command the menu bar can send. The platforms route the standard ones to their own
// receivers; the controller answers its own.
enum class Commande {
    aPropos,
    masquer,
    masquerAutres,
    toutAfficher,
    quitter,
    fermerFenetre,
    annuler,
    retablir,
    couper,
    copier,
    coller,
    toutSelectionner,
    recharger,
    rechargerOrigine,
    pagePrecedente,
    pageSuivante,
    accueil,
    zoomPlus,
    zoomMoins,
    zoomReel,
    pleinEcran,
    changerEspace,
    reduire,
    reagrandir,
    ouvrirSite,
    ouvrirJournal,
    imprimer,
    rechercher,
    rechercherSuivant,
    rechercherPrecedent,
    // macOS's spelling and grammar items, answered by the focused view.
    afficherOrthographe,
    verifierOrthographe,
    orthographeContinue,
    grammaire,
    correctionAutomatique,
};

}  // namespace brindex
