#include "app/menus.hpp"

#include <array>

namespace brindex {

namespace {

constexpr ElementMenu separateur{true, {}, std::nullopt, {}, {}, 0};

constexpr ElementMenu element(std::string_view titre, Commande commande, std::string_view selecteur,
                              std::string_view touche = {}, std::uint32_t masque = 0) {
    return ElementMenu{false, titre, commande, selecteur, touche, masque};
}

constexpr ElementMenu macos(ElementMenu e) {
    e.macosSeulement = true;
    return e;
}

constexpr std::uint32_t cmd = Modificateur::commande;
constexpr std::uint32_t cmdMaj = cmd | Modificateur::majuscule;

constexpr std::array application{
    element("À propos de Brindex", Commande::aPropos, "orderFrontStandardAboutPanel:"),
    separateur,
    macos(element("Masquer Brindex", Commande::masquer, "hide:", "h")),
    macos(element("Masquer les autres", Commande::masquerAutres, "hideOtherApplications:", "h",
                  cmd | Modificateur::option)),
    macos(element("Tout afficher", Commande::toutAfficher, "unhideAllApplications:")),
    separateur,
    element("Quitter Brindex", Commande::quitter, "terminate:", "q"),
};

constexpr std::array fichier{
    element("Fermer la fenêtre", Commande::fermerFenetre, "performClose:", "w"),
    separateur,
    element("Imprimer…", Commande::imprimer, "imprimer:", "p"),
};

// The system's own spelling items, answered by whichever view has the focus.
constexpr std::array orthographe{
    element("Afficher l'orthographe et la grammaire", Commande::afficherOrthographe,
            "showGuessPanel:", ":"),
    element("Vérifier le document maintenant", Commande::verifierOrthographe,
            "checkSpelling:", ";"),
    separateur,
    element("Vérifier l'orthographe lors de la frappe", Commande::orthographeContinue,
            "toggleContinuousSpellChecking:"),
    element("Vérifier la grammaire avec l'orthographe", Commande::grammaire,
            "toggleGrammarChecking:"),
    element("Corriger l'orthographe automatiquement", Commande::correctionAutomatique,
            "toggleAutomaticSpellingCorrection:"),
};
constexpr Menu menuOrthographe{"Orthographe et grammaire", "Orthographe et grammaire",
                               RoleMenu::ordinaire, false, orthographe};

constexpr std::array edition{
    element("Annuler", Commande::annuler, "undo:", "z"),
    element("Rétablir", Commande::retablir, "redo:", "z", cmdMaj),
    separateur,
    element("Couper", Commande::couper, "cut:", "x"),
    element("Copier", Commande::copier, "copy:", "c"),
    element("Coller", Commande::coller, "paste:", "v"),
    element("Tout sélectionner", Commande::toutSelectionner, "selectAll:", "a"),
    separateur,
    element("Rechercher…", Commande::rechercher, "rechercher:", "f"),
    element("Rechercher le suivant", Commande::rechercherSuivant, "rechercherSuivant:", "g"),
    element("Rechercher le précédent", Commande::rechercherPrecedent, "rechercherPrecedent:", "g",
            cmdMaj),
    separateur,
    ElementMenu{false, "Orthographe et grammaire", std::nullopt, {}, {}, 0, &menuOrthographe, true},
};

constexpr std::array affichage{
    element("Recharger la page", Commande::recharger, "recharger:", "r"),
    element("Recharger en ignorant le cache", Commande::rechargerOrigine, "rechargerOrigine:", "r",
            cmdMaj),
    separateur,
    element("Page précédente", Commande::pagePrecedente, "pagePrecedente:", "["),
    element("Page suivante", Commande::pageSuivante, "pageSuivante:", "]"),
    // The capital letter is what makes it Shift+Command+H.
    element("Accueil de l'espace", Commande::accueil, "accueil:", "H"),
    separateur,
    element("Zoom avant", Commande::zoomPlus, "zoomPlus:", "+"),
    element("Zoom arrière", Commande::zoomMoins, "zoomMoins:", "-"),
    element("Taille réelle", Commande::zoomReel, "zoomReel:", "0"),
    separateur,
    element("Activer le mode plein écran", Commande::pleinEcran, "toggleFullScreen:", "f",
            cmd | Modificateur::controle),
};

constexpr std::array espace{
    element("Changer d'espace…", Commande::changerEspace, "changerEspace:", "k", cmdMaj),
};

constexpr std::array fenetre{
    element("Réduire", Commande::reduire, "performMiniaturize:", "m"),
    element("Réagrandir", Commande::reagrandir, "performZoom:"),
};

constexpr std::array aide{
    element("Site Brindex", Commande::ouvrirSite, "ouvrirSite:"),
    element("Afficher le journal de diagnostic", Commande::ouvrirJournal, "ouvrirJournal:"),
};

const std::array<Menu, 7> barre{
    Menu{"", "Brindex", RoleMenu::application, false, application},
    // Print and find are the controller's; the rest of these two menus goes to the focused view.
    Menu{"Fichier", "Fichier", RoleMenu::ordinaire, true, fichier},
    Menu{"Édition", "Édition", RoleMenu::ordinaire, true, edition},
    Menu{"Affichage", "Affichage", RoleMenu::ordinaire, true, affichage},
    Menu{"Espace", "Espace", RoleMenu::ordinaire, true, espace},
    Menu{"Fenêtre", "Fenêtre", RoleMenu::fenetres, false, fenetre},
    Menu{"Aide", "Aide", RoleMenu::aide, true, aide},
};

std::string nomDeTouche(char c) {
    switch (c) {
        case '[':
            return "bracketleft";
        case ']':
            return "bracketright";
        case '+':
            return "plus";
        case '-':
            return "minus";
        default:
            return std::string(1, c);
    }
}

}  // namespace

std::span<const Menu> barreDeMenus() {
    return barre;
}

bool controleurRepond(Commande commande) {
    switch (commande) {
        case Commande::recharger:
        case Commande::rechargerOrigine:
        case Commande::pagePrecedente:
        case Commande::pageSuivante:
        case Commande::accueil:
        case Commande::zoomPlus:
        case Commande::zoomMoins:
        case Commande::zoomReel:
        case Commande::changerEspace:
        case Commande::ouvrirSite:
        case Commande::ouvrirJournal:
        case Commande::imprimer:
        case Commande::rechercher:
        case Commande::rechercherSuivant:
        case Commande::rechercherPrecedent:
            return true;
        case Commande::aPropos:
        case Commande::masquer:
        case Commande::masquerAutres:
        case Commande::toutAfficher:
        case Commande::quitter:
        case Commande::fermerFenetre:
        case Commande::annuler:
        case Commande::retablir:
        case Commande::couper:
        case Commande::copier:
        case Commande::coller:
        case Commande::toutSelectionner:
        case Commande::pleinEcran:
        case Commande::reduire:
        case Commande::reagrandir:
        case Commande::afficherOrthographe:
        case Commande::verifierOrthographe:
        case Commande::orthographeContinue:
        case Commande::grammaire:
        case Commande::correctionAutomatique:
            return false;
    }
    return false;
}

Cible cibleDe(const Menu& menu, const ElementMenu& element,
              const std::function<bool(Commande)>& repond) {
    if (!menu.cibleExaminee || element.separateur || !element.commande) return Cible::aucune;
    return repond(*element.commande) ? Cible::controleur : Cible::aucune;
}

std::string accelerateurGtk(const ElementMenu& element) {
    if (element.touche.size() != 1) return {};
    const char touche = element.touche[0];
    const std::uint32_t masque = element.masque == 0 ? Modificateur::commande : element.masque;
    const bool capitale = touche >= 'A' && touche <= 'Z';
    std::string resultat;
    if (masque & Modificateur::commande) resultat += "<Control>";
    if ((masque & Modificateur::majuscule) || capitale) resultat += "<Shift>";
    if (masque & Modificateur::option) resultat += "<Alt>";
    // Control is already Command's stand-in on Linux; the Super key takes Control's place.
    if (masque & Modificateur::controle) resultat += "<Super>";
    return resultat + nomDeTouche(capitale ? static_cast<char>(touche - 'A' + 'a') : touche);
}

}  // namespace brindex
