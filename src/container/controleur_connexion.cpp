// The controller's part in signing in elsewhere: round trips through sign-in sites, the
// question about a site nobody listed, HTTP authentication, and trying the space again when
// the network comes back.

#include <algorithm>

#include "address/texte.hpp"
#include "brand/adresse_stockee.hpp"
#include "brand/marque.hpp"
#include "container/controleur.hpp"
#include "container/regles.hpp"
#include "log/journal.hpp"

namespace brindex {

namespace {

bool contient(const std::vector<const VueWeb*>& vues, const VueWeb* vue) {
    return std::find(vues.begin(), vues.end(), vue) != vues.end();
}

}  // namespace

std::optional<std::string> Controleur::adresseJournal(const VueWeb& vue) const {
    auto url = vue.url();
    if (url && (trajets_.count(&vue) || Origine::depuis(*url) != origineDe(vue))) {
        url = Journal::adresse(*url);
    }
    return url;
}

std::optional<TrajetConnexion> Controleur::trajetDe(const VueWeb& vue) const {
    const auto trajet = trajets_.find(&vue);
    if (trajet == trajets_.end()) return std::nullopt;
    return trajet->second;
}

// ---- The round trip ----

std::optional<Politique> Controleur::deciderConnexion(VueWeb& vue, const ActionNavigation& action,
                                                      bool parUtilisateur, bool demande) {
    using Choix = DecisionConnexion::Choix;
    const auto espace = origineDe(vue);
    if (!espace || (action.cible != CadreCible::principal && action.cible != CadreCible::aucun)) {
        return std::nullopt;
    }
    const bool lienClique = action.type == TypeNavigation::lienActive && parUtilisateur;
    const auto decision =
        brindex::deciderConnexion(action, *espace, trajetDe(vue), sites_, lienClique, demande,
                                  plateforme_.maintenant(), bornes_);
    // A new window's own view makes its round trip (see creerVueWebDemandee).
    if (action.cible == CadreCible::aucun) {
        if (decision.choix != Choix::entrer) return std::nullopt;
        return Politique::autoriser;
    }
    switch (decision.choix) {
        case Choix::horsConnexion:
            return std::nullopt;
        case Choix::entrer:
            entrerConnexion(vue, *decision.site, true);
            return action.telechargementDemande ? Politique::telecharger : Politique::autoriser;
        case Choix::demander:
            return demanderConnexion(vue, *decision.site);
        case Choix::refuser:
            Journal::ecrire("connexion REFUSEE vers " + hoteAffiche(*decision.site));
            return Politique::annuler;
        case Choix::expirer: {
            const auto trajet = trajetDe(vue);
            expirerConnexion(&vue, trajet->numero, false);
            return Politique::annuler;
        }
    }
    return Politique::annuler;
}

void Controleur::entrerConnexion(VueWeb& vue, const Origine& site, bool navigation) {
    auto trajet = trajets_.find(&vue);
    if (trajet == trajets_.end()) {
        const unsigned numero = ++numeroTrajet_;
        trajet = trajets_.emplace(&vue, TrajetConnexion{site, plateforme_.maintenant(), 0, numero})
                     .first;
        Journal::ecrire("connexion DEBUT " + hoteAffiche(site));
        std::weak_ptr<Controleur> faible = weak_from_this();
        const VueWeb* v = &vue;
        plateforme_.plusTard(std::chrono::duration_cast<std::chrono::milliseconds>(bornes_.duree),
                             [faible, v, numero] {
                                 if (const auto c = faible.lock())
                                     c->expirerConnexion(v, numero, true);
                             });
    }
    trajet->second.site = site;
    if (navigation) ++trajet->second.navigations;
    if (Fenetre* fenetre = fenetreDe(&vue)) {
        const std::string texte = texteBarreConnexion(site);
        std::weak_ptr<Controleur> faible = weak_from_this();
        const VueWeb* v = &vue;
        fenetre->barreConnexion(texte, [faible, v] {
            if (const auto c = faible.lock()) c->annulerConnexion(v);
        });
        fenetre->definirTitre(texte);
    }
}

void Controleur::quitterConnexion(const VueWeb& vue, const char* verdict) {
    const auto trajet = trajets_.find(&vue);
    if (trajet == trajets_.end()) return;
    Journal::ecrire(std::string("connexion ") + verdict + " " + hoteAffiche(trajet->second.site));
    trajets_.erase(trajet);
    if (Fenetre* fenetre = fenetreDe(&vue)) {
        fenetre->barreConnexion(std::nullopt, nullptr);
        fenetre->definirTitre(&vue == webView_.get() ? titreFenetre(vue.titre())
                                                     : std::string(Marque::nom));
    }
}

void Controleur::finirConnexionSiEspace(VueWeb& vue) {
    const auto espace = origineDe(vue);
    const auto url = vue.url();
    if (espace && url && Origine::depuis(*url) == espace) quitterConnexion(vue, "FIN");
}

void Controleur::expirerConnexion(const VueWeb* v, unsigned numero, bool parDuree) {
    const auto trajet = trajets_.find(v);
    if (trajet == trajets_.end() || trajet->second.numero != numero) return;
    const Origine site = trajet->second.site;
    quitterConnexion(*v, "EXPIREE");
    fenetre_->feuille(alerteExpiration(site, parDuree));
    // Out of the engine's callback that may have brought it here: the main view goes home, a
    // popup closes.
    std::weak_ptr<Controleur> faible = weak_from_this();
    plateforme_.plusTard(std::chrono::milliseconds(0), [faible, v] {
        const auto c = faible.lock();
        if (!c) return;
        if (c->webView_.get() == v) {
            if (const auto url = c->adresseEspace())
                c->webView_->charger(url->texte(), delaiChargement);
        } else if (Fenetre* fenetre = c->fenetreDe(v)) {
            fenetre->fermer();
        }
    });
}

void Controleur::annulerConnexion(const VueWeb* v) {
    // Out of the bar's own button, which goes with the bar.
    std::weak_ptr<Controleur> faible = weak_from_this();
    plateforme_.plusTard(std::chrono::milliseconds(0), [faible, v] {
        const auto c = faible.lock();
        if (!c || !c->trajets_.count(v)) return;
        c->quitterConnexion(*v, "ANNULEE");
        if (c->webView_.get() == v) {
            if (const auto url = c->adresseEspace())
                c->webView_->charger(url->texte(), delaiChargement);
        } else if (Fenetre* fenetre = c->fenetreDe(v)) {
            fenetre->fermer();
        }
    });
}

Politique Controleur::demanderConnexion(VueWeb& vue, const Origine& site) {
    Fenetre* fenetre = fenetreDe(&vue);
    // One question at a time, and none again about a site turned down: a page can't nag.
    if (!fenetre || contient(questions_, &vue) ||
        std::find(refuses_.begin(), refuses_.end(), site) != refuses_.end()) {
        Journal::ecrire("connexion REFUSEE vers " + hoteAffiche(site));
        return Politique::annuler;
    }
    questions_.push_back(&vue);
    std::weak_ptr<Controleur> faible = weak_from_this();
    // The view may be gone when the question closes, and another one may have its address.
    std::weak_ptr<VueWeb> faibleVue = vuePartagee(&vue);
    fenetre->feuille(questionConnexion(site), [faible, faibleVue, site](ReponseAlerte reponse) {
        const auto c = faible.lock();
        const auto cible = faibleVue.lock();
        if (!c || !cible || !contient(c->questions_, cible.get())) return;
        std::erase(c->questions_, cible.get());
        if (reponse.bouton == 0) {
            Reglages& reglages = c->plateforme_.reglages();
            const std::string cle(CleEspace::connexionsApprouvees);
            reglages.ecrire(cle, ajouterApprobation(reglages.lire(cle), site));
            c->sites_.approuves.push_back(site);
            c->entrerConnexion(*cible, site, true);
            cible->trancher(Politique::autoriser);
            return;
        }
        cible->trancher(Politique::annuler);
        c->refuses_.push_back(site);
        Journal::ecrire("connexion REFUSEE vers " + hoteAffiche(site));
        // Nothing of the space has shown: the window explains instead of staying blank.
        if (cible == c->webView_ && !c->principaleADejaCharge_) {
            c->montrerErreur(detailConnexionRefusee(site), titreConnexionRefusee);
        }
    });
    return Politique::differer;
}

void Controleur::reculerVersEspace(VueWeb& vue) {
    const auto espace = origineDe(vue);
    const auto arriere = vue.historiqueArriere(historiqueMax);
    if (!espace || arriere.empty()) return vue.reculer();
    // A sign-in site's pages are never gone back to.
    if (const auto pas = pasVersEspace(arriere, *espace)) {
        if (*pas == 1) {
            vue.reculer();
        } else {
            vue.reculerDe(*pas);
        }
    }
}

// ---- HTTP authentication ----

void Controleur::authentificationDemandee(
    VueWeb& vue, const DemandeAuthentification& demande,
    std::function<void(std::optional<Identifiants>)> reponse) {
    const auto espace = origineDe(vue);
    Fenetre* fenetre = fenetreDe(&vue);
    if (!espace || !fenetre || !authentificationPermise(demande, *espace, sites_)) {
        Journal::ecrire("authentification REFUSEE " + demande.hote);
        return reponse(std::nullopt);
    }
    // What the user asked the system to remember serves until it is refused.
    if (demande.motDePassePropose && !demande.nouvelEssai) {
        return reponse(Identifiants{"", "", true, true});
    }
    if (contient(identifications_, &vue)) return reponse(std::nullopt);
    identifications_.push_back(&vue);
    std::weak_ptr<Controleur> faible = weak_from_this();
    std::weak_ptr<VueWeb> faibleVue = vuePartagee(&vue);
    fenetre->feuille(alerteAuthentification(demande),
                     [faible, faibleVue, reponse = std::move(reponse)](ReponseAlerte r) {
                         const auto c = faible.lock();
                         if (const auto v = faibleVue.lock(); c && v) {
                             std::erase(c->identifications_, v.get());
                         }
                         if (r.bouton != 0 || r.champs.size() != 2) return reponse(std::nullopt);
                         reponse(Identifiants{r.champs[0], r.champs[1], r.caseCochee, false});
                     });
}

// ---- The network coming back ----

void Controleur::reprise(Reprise evenement) {
    // Once per change: the space opening clears the flag until it fails the same way again.
    if (!erreurReseau_) return;
    const auto url = adresseEspace();
    if (!url) return;
    Journal::ecrire(evenement == Reprise::reseau ? "reseau RETABLI nouvel essai"
                                                 : "veille FINIE nouvel essai");
    ouvrirEspace(*url);
}

}  // namespace brindex
