#include "container/controleur.hpp"

#include <algorithm>
#include <utility>

#include "address/texte.hpp"
#include "brand/adresse_stockee.hpp"
#include "brand/marque.hpp"
#include "container/applications.hpp"
#include "container/echecs.hpp"
#include "container/politique.hpp"
#include "container/regles.hpp"
#include "container/telechargements.hpp"
#include "log/journal.hpp"

namespace brindex {

namespace {

const std::string titreProduit(Marque::nom);

// The explanation may come from a page or a server: a dialog shows a bounded excerpt of it.
Alerte alerteSimple(std::string message, std::string_view informatif) {
    return Alerte{std::move(message),
                  extrait(informatif, caracteresDialogueMax, lignesDialogueMax),
                  {"OK"},
                  std::nullopt,
                  260,
                  24};
}

constexpr const char* texteProcessus =
    "La page de votre espace s'est arrêtée de façon inattendue, deux fois de suite. Réessayez ; "
    "si cela se reproduit, contactez la personne qui administre votre espace.";
constexpr const char* texteProcessusSansPage =
    "La page de cette fenêtre s'est arrêtée de façon inattendue et ne peut pas être rechargée. "
    "Fermez la fenêtre, puis rouvrez-la depuis votre espace.";

}  // namespace

// ---- FenetreSecondaire ----

std::shared_ptr<FenetreSecondaire> FenetreSecondaire::creer(Plateforme& plateforme,
                                                            std::shared_ptr<VueWeb> webView) {
    std::shared_ptr<FenetreSecondaire> fenetre(new FenetreSecondaire(webView));
    std::weak_ptr<FenetreSecondaire> faible = fenetre;
    fenetre->recherche_->definirVue(webView);
    fenetre->fenetre_ =
        plateforme.creerFenetreSecondaire(parametres(), std::move(webView), [faible] {
            if (const auto f = faible.lock()) f->fenetreVaFermer();
        });
    fenetre->fenetre_->attacherRecherche(fenetre->recherche_);
    return fenetre;
}

ParametresFenetre FenetreSecondaire::parametres() {
    return {1080, 780, 640, 480, titreProduit, ""};
}

void FenetreSecondaire::detacher() {
    recherche_->definirVue(nullptr);
    webView_->arreter();
    webView_->detacher();
}

void FenetreSecondaire::fermer() {
    detacher();
    fenetre_->oublierFermeture();
    fenetre_->fermer();
}

void FenetreSecondaire::fenetreVaFermer() {
    // onFermeture drops the controller's reference; this object must outlive the call.
    const auto garde = shared_from_this();
    detacher();
    if (onFermeture) onFermeture(*this);
}

// ---- Controleur: creation, screens and the main web view ----

std::shared_ptr<Controleur> Controleur::creer(Plateforme& plateforme) {
    std::shared_ptr<Controleur> controleur(new Controleur(plateforme));
    std::weak_ptr<Controleur> faible = controleur;
    controleur->fenetre_ =
        plateforme.creerFenetrePrincipale(parametresFenetrePrincipale(), [faible] {
            if (const auto c = faible.lock()) c->fenetrePrincipaleVaFermer();
        });
    // Closing the main window ends the application: its pages are asked first.
    controleur->fenetre_->retenirFermeture([faible] {
        const auto c = faible.lock();
        return !c || c->quitter();
    });
    controleur->fenetre_->attacherRecherche(controleur->recherche_);
    return controleur;
}

ParametresFenetre Controleur::parametresFenetrePrincipale() {
    return {1280, 860, 980, 640, titreProduit, "BrindexPrincipale"};
}

std::optional<Url> Controleur::adresseEspace() const {
    return lireAdresseEspace(plateforme_.reglages());
}

void Controleur::definirAdresseEspace(const std::optional<Url>& url) {
    ecrireAdresseEspace(plateforme_.reglages(), url);
}

void Controleur::demarrer() {
    if (const auto url = adresseEspace()) {
        ouvrirEspace(*url);
    } else {
        montrerConfiguration();
    }
    fenetre_->devant();
}

void Controleur::ouvrirEspace(const Url& url) {
    const auto origine = Origine::depuis(url);
    if (!origine) {
        montrerConfiguration();
        return;
    }
    fermerFenetresSecondaires();
    detruireWebView();
    principaleADejaCharge_ = false;
    erreurReseau_ = false;
    refuses_.clear();
    sites_ = lireSitesConnexion(
        plateforme_.administration(),
        plateforme_.reglages().lire(std::string(CleEspace::connexionsApprouvees)));
    // The engine keeps an image of each page left, for the swipe back to show, and on Linux it
    // keeps them in memory up to 400 MB: only worth it where the user can swipe.
    webView_ = plateforme_.creerVueWeb(ParametresVueWeb{true, plateforme_.balayagePossible(), true,
                                                        std::string(Marque::agentSuffixe)},
                                       nullptr);
    originesWebView_.insert_or_assign(webView_.get(), *origine);
    if (const auto zoom = zoomRetenu(plateforme_.reglages())) webView_->definirZoom(*zoom);
    fenetre_->montrerEspace(webView_);
    recherche_->definirVue(webView_);
    webView_->charger(url.texte(), delaiChargement);
}

void Controleur::montrerConfiguration() {
    fermerFenetresSecondaires();
    detruireWebView();
    erreurReseau_ = false;
    const auto actuelle = adresseEspace();
    Plateforme& plateforme = plateforme_;
    auto vue = VueConfiguration::creer(
        actuelle ? std::optional<std::string>(actuelle->texte()) : std::nullopt,
        [&plateforme](const Url& url, std::function<void(ResultatSonde)> rappel) {
            sonderEspace(plateforme.transport(), url, std::move(rappel));
        });
    std::weak_ptr<Controleur> faible = weak_from_this();
    vue->onConnexion = [faible](const Url& url) {
        if (const auto c = faible.lock()) {
            c->definirAdresseEspace(url);
            c->ouvrirEspace(url);
        }
    };
    fenetre_->montrerConfiguration(vue);
    fenetre_->definirTitre(titreProduit);
    if (vue->controles()) vue->controles()->focaliserChamp();
    vue->detecterAdresseParDefaut();
}

void Controleur::montrerErreur(const std::string& detail, std::string_view titre) {
    detruireWebView();
    erreurReseau_ = false;
    auto vue = std::make_shared<VueErreur>(
        extrait(detail, caracteresDialogueMax, lignesDialogueMax), std::string(titre));
    std::weak_ptr<Controleur> faible = weak_from_this();
    vue->onReessayer = [faible] {
        if (const auto c = faible.lock()) {
            if (const auto url = c->adresseEspace()) c->ouvrirEspace(*url);
        }
    };
    vue->onChangerAdresse = [faible] {
        if (const auto c = faible.lock()) c->montrerConfiguration();
    };
    fenetre_->montrerErreur(vue);
}

void Controleur::detruireWebView() {
    if (!webView_) return;
    recherche_->definirVue(nullptr);
    oublierVue(*webView_);
    webView_->arreter();
    webView_->detacher();
    // Popups share the main view's process: it ends with the view only when none is open.
    if (fenetresSecondaires_.empty()) webView_->terminerProcessus();
    webView_.reset();
}

std::shared_ptr<VueWeb> Controleur::webViewActive() const {
    for (const auto& secondaire : fenetresSecondaires_) {
        if (secondaire->fenetre()->estCle()) return secondaire->webView();
    }
    return webView_;
}

void Controleur::fenetrePrincipaleVaFermer() {
    fermerFenetresSecondaires();
    detruireWebView();
}

void Controleur::titreChange(VueWeb& vue) {
    // A round trip's title stays until it ends.
    if (&vue != webView_.get() || trajets_.count(&vue)) return;
    fenetre_->definirTitre(titreFenetre(vue.titre()));
}

void Controleur::progressionChange(VueWeb& vue) {
    if (&vue != webView_.get()) return;
    const double progression = vue.progression();
    fenetre_->progression(progression, barreVisible(progression));
}

FenetreSecondaire* Controleur::secondaireDe(const VueWeb& vue) const {
    for (const auto& secondaire : fenetresSecondaires_) {
        if (secondaire->webView().get() == &vue) return secondaire.get();
    }
    return nullptr;
}

void Controleur::oublierVue(const VueWeb& vue) {
    quitterConnexion(vue, "FIN");
    std::erase(questions_, &vue);
    std::erase(identifications_, &vue);
    departs_.oublier(vue);
    originesWebView_.erase(&vue);
    finsProcessus_.erase(&vue);
    attentes_.erase(&vue);
}

std::optional<Controleur::Place> Controleur::placeDe(const VueWeb* vue) const {
    if (webView_ && vue == webView_.get()) return Place{webView_, fenetre_.get(), recherche_.get()};
    for (const auto& secondaire : fenetresSecondaires_) {
        if (secondaire->webView().get() == vue) {
            return Place{secondaire->webView(), secondaire->fenetre().get(),
                         &secondaire->recherche()};
        }
    }
    return std::nullopt;
}

Fenetre* Controleur::fenetreDe(const VueWeb* vue) const {
    const auto place = placeDe(vue);
    return place ? place->fenetre : nullptr;
}

std::shared_ptr<VueWeb> Controleur::vuePartagee(const VueWeb* vue) const {
    const auto place = placeDe(vue);
    return place ? place->vue : nullptr;
}

RechercheDansPage& Controleur::rechercheActive() const {
    for (const auto& secondaire : fenetresSecondaires_) {
        if (secondaire->fenetre()->estCle()) return secondaire->recherche();
    }
    return *recherche_;
}

std::optional<Origine> Controleur::origineDe(const VueWeb& vue) const {
    const auto entree = originesWebView_.find(&vue);
    if (entree == originesWebView_.end()) return std::nullopt;
    return entree->second;
}

// ---- Navigation policy ----

namespace {

// Responses come without the fragment their navigation may have carried.
std::string sansFragment(const std::string& url) {
    return url.substr(0, url.find('#'));
}

constexpr std::size_t attentesParVue = 16;

}  // namespace

void Controleur::detourner(const Detournement& detournement, const VueWeb& vue) {
    if (detournement.urlAOuvrir) {
        activation_.reset();
        plateforme_.ouvrirUrl(*detournement.urlAOuvrir);
    }
    if (detournement.ligneJournal) Journal::ecrire(*detournement.ligneJournal);
    if (detournement.siteRefuse) expliquerPageBlanche(vue, *detournement.siteRefuse);
}

void Controleur::expliquerPageBlanche(const VueWeb& vue, const Origine& site) {
    const auto blanche = [](const Controleur& c, const VueWeb* v) {
        return v == c.webView_.get() && !c.principaleADejaCharge_ && !v->aUnePageARecharger();
    };
    if (!blanche(*this, &vue)) return;
    // Out of the engine's callback, which still holds the view.
    std::weak_ptr<Controleur> faible = weak_from_this();
    const VueWeb* v = &vue;
    plateforme_.plusTard(std::chrono::milliseconds(0), [faible, v, site, blanche] {
        if (const auto c = faible.lock(); c && blanche(*c, v)) {
            c->montrerErreur(detailSiteRefuse(site));
        }
    });
}

Politique Controleur::deciderAction(VueWeb& vue, const ActionNavigation& action) {
    const bool parUtilisateur = actionUtilisateurDisponible(action.gesteUtilisateur);
    const bool demande = demandeDeConnexion(action);
    if (const auto connexion = deciderConnexion(vue, action, parUtilisateur, demande)) {
        return *connexion;
    }
    auto decision = brindex::deciderAction(action, origineDe(vue), parUtilisateur);
    if (decision.lienApplication && lienApplication(vue, *decision.lienApplication)) {
        decision.effet = {};
    }
    detourner(decision.effet, vue);
    if (decision.siCadrePrincipal && action.url) {
        auto& attentes = attentes_[&vue];
        if (attentes.size() == attentesParVue) attentes.erase(attentes.begin());
        attentes.push_back({sansFragment(*action.url), *decision.siCadrePrincipal, action,
                            parUtilisateur, demande});
    }
    return decision.politique;
}

std::optional<Controleur::Attente> Controleur::attenteDe(const VueWeb& vue,
                                                         const std::optional<std::string>& url,
                                                         bool cadrePrincipal) {
    const auto attentes = attentes_.find(&vue);
    if (attentes == attentes_.end() || !url) return std::nullopt;
    auto& liste = attentes->second;
    const auto attente = std::find_if(
        liste.begin(), liste.end(), [&](const Attente& a) { return a.url == sansFragment(*url); });
    if (attente == liste.end()) return std::nullopt;
    Attente trouvee = std::move(*attente);
    liste.erase(attente);
    if (!cadrePrincipal) return std::nullopt;
    trouvee.action.cible = CadreCible::principal;
    // The redirects that led here on the same site get no answer of their own: a sign-in
    // request among them makes this one too.
    const auto origine = Origine::depuis(trouvee.url);
    trouvee.demandeConnexion =
        trouvee.demandeConnexion || std::any_of(liste.begin(), liste.end(), [&](const Attente& a) {
            return a.demandeConnexion && origine && Origine::depuis(a.url) == origine;
        });
    return trouvee;
}

Politique Controleur::deciderReponse(VueWeb& vue, const ReponseNavigation& reponse) {
    // A navigation allowed as if for a sub-frame turns out to fill the main frame: it is held
    // to the view's origin after all.
    if (const auto attente = attenteDe(vue, reponse.url, reponse.cadrePrincipal)) {
        if (const auto connexion = deciderConnexion(vue, attente->action, attente->parUtilisateur,
                                                    attente->demandeConnexion)) {
            return *connexion;
        }
        detourner(attente->detournement, vue);
        return Politique::annuler;
    }
    if (const auto refus = reponseRefusee(reponse)) {
        Journal::ecrire(*refus);
        return Politique::annuler;
    }
    return brindex::deciderReponse(reponse);
}

// ---- Load outcome ----

void Controleur::chargementTermine(VueWeb& vue) {
    if (webView_ && &vue == webView_.get()) principaleADejaCharge_ = true;
    Journal::ecrire(ligneSucces(adresseJournal(vue)));
    finirConnexionSiEspace(vue);
    if (const auto place = placeDe(&vue)) place->recherche->pageChargee(vue.url());
}

void Controleur::traiterEchec(const ErreurChargement& erreur, VueWeb& vue) {
    // A navigation allowed as if for a sub-frame failed in the main frame: it was never the
    // view's to load, and does what a navigation elsewhere does.
    // (A sign-in site's page that fails is the view's own failure.)
    if (const auto attente = attenteDe(vue, erreur.url, true)) {
        const auto site = Origine::depuis(attente->url);
        if (!site || !sites_.contient(*site)) {
            // During a round trip, refused as the trip refuses; otherwise as ever.
            if (!trajets_.count(&vue) ||
                !deciderConnexion(vue, attente->action, attente->parUtilisateur, false)) {
                detourner(attente->detournement, vue);
            }
            return;
        }
    }
    if (echecIgnore(erreur)) return;
    Journal::ecrire(ligneEchec(erreur));
    const std::string detail = detailLisible(erreur, adresseEspace());
    if (webView_ && &vue == webView_.get()) {
        // Before the first finished load the space itself is unreachable.
        if (!principaleADejaCharge_) {
            montrerErreur(detail);
            erreurReseau_ = echecReseau(erreur);
        } else {
            fenetre_->feuille(alerteSimple("Page inaccessible", detail));
        }
        return;
    }
    if (FenetreSecondaire* secondaire = secondaireDe(vue)) {
        secondaire->fenetre()->feuille(alerteSimple("Page inaccessible", detail));
    }
}

void Controleur::processusTermine(VueWeb& vue, FinProcessus fin) {
    Journal::ecrire(std::string("processus web ECHEC ") +
                    (fin == FinProcessus::plantage ? "plantage " : "memoire ") +
                    adresseJournal(vue).value_or("?"));
    const bool principale = webView_ && &vue == webView_.get();
    FenetreSecondaire* secondaire = principale ? nullptr : secondaireDe(vue);
    // A view no longer shown has nothing to come back to, and leaves nothing behind.
    if (!principale && !secondaire) return;
    const auto maintenant = plateforme_.maintenant();
    const auto precedente = finsProcessus_.find(&vue);
    const bool rechute = precedente != finsProcessus_.end() &&
                         maintenant - precedente->second <= delaiRechuteProcessus;
    finsProcessus_.insert_or_assign(&vue, maintenant);
    // Once, the page comes back in a new process: reloaded from the engine's history, or, with
    // nothing there (a reload would then do nothing), its address loaded again: the space's for
    // the main view, the one a popup was opened on.
    std::optional<std::string> adresse;
    if (principale) {
        if (const auto url = adresseEspace()) adresse = url->texte();
    } else {
        adresse = secondaire->adresse;
    }
    if (!rechute && vue.aUnePageARecharger()) {
        vue.recharger();
        return;
    }
    if (!rechute && adresse) {
        vue.charger(*adresse, delaiChargement);
        return;
    }
    if (principale) {
        montrerErreur(texteProcessus);
    } else {
        secondaire->fenetre()->feuille(
            alerteSimple("Page inaccessible", rechute ? texteProcessus : texteProcessusSansPage));
    }
}

// ---- The user's own actions ----

void Controleur::activationUtilisateur() {
    departs_.nouvelleAction();
    activation_ = plateforme_.maintenant();
    fenetresRefusees_ = 0;
}

void Controleur::pression(const Pression& pression) {
    // A press in a dialog answers it, and a page may raise one by itself and wait for the OK;
    // Escape dismisses; a modifier alone asks for nothing.
    if (pression.dansDialogue || pression.echap || pression.modificateurSeul) return;
    activationUtilisateur();
}

bool Controleur::actionUtilisateurDisponible(std::optional<bool> geste) const {
    if (geste && !*geste) return false;
    return activation_ && plateforme_.maintenant() - *activation_ <= dureeActivation;
}

// ---- Secondary windows ----

std::shared_ptr<VueWeb> Controleur::creerVueWebDemandee(VueWeb& ouvreur,
                                                        const std::optional<std::string>& url,
                                                        std::optional<bool> geste,
                                                        const ConfigurationMoteur& configuration) {
    const auto origineOuvreur = origineDe(ouvreur);
    auto decision = deciderFenetre(origineOuvreur, url, actionUtilisateurDisponible(geste));
    // A sign-in site opens in a window of its own, in a round trip, rather than in the browser.
    const auto site = url ? Origine::depuis(*url) : std::nullopt;
    const bool connexion =
        decision.choix == DecisionFenetre::Choix::navigateur && site && sites_.contient(*site);
    if (connexion) decision = {DecisionFenetre::Choix::ouvrir, std::nullopt, false};
    if (decision.refusee) {
        // A page may ask thousands of times after one click: the log notes a few.
        ++fenetresRefusees_;
        if (fenetresRefusees_ <= fenetresRefuseesNotees) {
            Journal::ecrire("nouvelle fenetre REFUSEE vers " +
                            Journal::adresse(url && !url->empty() ? *url : "about:blank"));
        } else if (fenetresRefusees_ == fenetresRefuseesNotees + 1) {
            Journal::ecrire("nouvelle fenetre REFUSEE, les suivantes ne sont plus notees");
        }
        return nullptr;
    }
    if (decision.choix != DecisionFenetre::Choix::rien) activation_.reset();
    switch (decision.choix) {
        case DecisionFenetre::Choix::rien:
            return nullptr;
        case DecisionFenetre::Choix::navigateur:
            plateforme_.ouvrirUrl(*decision.url);
            return nullptr;
        case DecisionFenetre::Choix::ouvrir:
            break;
    }
    auto vue = plateforme_.creerVueWeb(
        ParametresVueWeb{false, false, true, std::string(Marque::agentSuffixe)}, &configuration);
    // At the main page's zoom.
    if (webView_) vue->definirZoom(webView_->zoom());
    // A popup is held to its opener's origin, whatever it opens on (about:blank included).
    originesWebView_.insert_or_assign(vue.get(), *origineOuvreur);
    auto secondaire = FenetreSecondaire::creer(plateforme_, vue);
    if (url && Origine::depuis(*url)) secondaire->adresse = *url;
    std::weak_ptr<Controleur> faible = weak_from_this();
    std::weak_ptr<FenetreSecondaire> faibleSecondaire = secondaire;
    secondaire->fenetre()->retenirFermeture([faible, faibleSecondaire] {
        const auto c = faible.lock();
        const auto s = faibleSecondaire.lock();
        return !c || !s || c->fermetureSecondaireDemandee(*s);
    });
    secondaire->onFermeture = [faible](FenetreSecondaire& fermee) {
        const auto c = faible.lock();
        if (!c) return;
        c->oublierVue(*fermee.webView());
        c->impressions_.erase(fermee.fenetre().get());
        auto& liste = c->fenetresSecondaires_;
        liste.erase(std::remove_if(liste.begin(), liste.end(),
                                   [&fermee](const auto& f) { return f.get() == &fermee; }),
                    liste.end());
    };
    fenetresSecondaires_.push_back(std::move(secondaire));
    if (connexion) entrerConnexion(*vue, *site, false);
    return vue;
}

void Controleur::fermetureDemandee(VueWeb& vue) {
    // The page agreed to be left, as it was asked.
    if (departs_.accord(vue)) return;
    // The main window never closes at a page's request.
    if (FenetreSecondaire* secondaire = secondaireDe(vue)) {
        secondaire->fermetureAccordee = true;
        secondaire->fenetre()->fermer();
    }
}

void Controleur::fermerFenetresSecondaires() {
    // The list is emptied before anything closes, so no close callback sees it half walked.
    const auto prises = std::exchange(fenetresSecondaires_, {});
    for (const auto& secondaire : prises) {
        oublierVue(*secondaire->webView());
        impressions_.erase(secondaire->fenetre().get());
        secondaire->fermer();
    }
}

// ---- Page commands ----

void Controleur::recharger() {
    if (const auto vue = webViewActive()) vue->recharger();
}

void Controleur::rechargerOrigine() {
    if (const auto vue = webViewActive()) vue->rechargerOrigine();
}

void Controleur::pagePrecedente() {
    if (const auto vue = webViewActive()) reculerVersEspace(*vue);
}

void Controleur::pageSuivante() {
    if (const auto vue = webViewActive()) vue->avancer();
}

void Controleur::accueil() {
    const auto url = adresseEspace();
    if (!url) return;
    // Always the main window's space, even when a secondary window is key.
    if (webView_) {
        webView_->charger(url->texte(), delaiChargement);
    } else {
        ouvrirEspace(*url);
    }
    fenetre_->devant();
}

void Controleur::ajusterZoom(double (*regle)(double)) {
    const auto vue = webViewActive();
    if (!vue) return;
    vue->definirZoom(regle(vue->zoom()));
    // The space keeps its main page's zoom.
    if (vue == webView_) retenirZoom(plateforme_.reglages(), vue->zoom());
}

void Controleur::zoomPlus() {
    ajusterZoom(zoomAugmente);
}
void Controleur::zoomMoins() {
    ajusterZoom(zoomDiminue);
}
void Controleur::zoomReel() {
    ajusterZoom(zoomNormal);
}
void Controleur::changerEspace() {
    // The views go without navigating: their pages are asked first.
    std::weak_ptr<Controleur> faible = weak_from_this();
    const auto suite = [faible] {
        if (const auto c = faible.lock()) c->montrerConfiguration();
    };
    if (departs_.commencer(vuesOuvertes(), suite)) suite();
}
void Controleur::ouvrirSite() {
    plateforme_.ouvrirUrl(std::string(Marque::urlSite));
}
void Controleur::ouvrirJournal() {
    plateforme_.reveler(Journal::chemin());
}
void Controleur::rechercher() {
    rechercheActive().ouvrir();
}
void Controleur::rechercherSuivant() {
    rechercheActive().suivant();
}
void Controleur::rechercherPrecedent() {
    rechercheActive().precedent();
}

void Controleur::imprimer() {
    if (const auto vue = webViewActive()) {
        if (const auto place = placeDe(vue.get())) ouvrirImpression(*place, true);
    }
}

// ---- Find and print ----

void Controleur::resultatRecherche(VueWeb& vue, bool trouve, std::optional<unsigned> nombre) {
    if (const auto place = placeDe(&vue)) place->recherche->resultat(trouve, nombre);
}

void Controleur::impressionDemandee(VueWeb& vue) {
    const auto place = placeDe(&vue);
    if (place) ouvrirImpression(*place, actionUtilisateurDisponible(std::nullopt));
}

void Controleur::ouvrirImpression(const Place& place, bool parUtilisateur) {
    switch (
        deciderImpression(impressions_[place.fenetre], parUtilisateur, plateforme_.maintenant())) {
        case DecisionImpression::ignorer:
            return;
        case DecisionImpression::refuser:
            Journal::ecrire("impression REFUSEE sans action de l'utilisateur");
            return;
        case DecisionImpression::ouvrir:
            break;
    }
    // The press that asked for it is spent.
    activation_.reset();
    std::weak_ptr<Controleur> faible = weak_from_this();
    const Fenetre* fenetre = place.fenetre;
    // Printed to a file, the page goes beside the downloads, named after its title.
    const std::string dossier = dossierTelechargements(plateforme_.dossierTelechargements(),
                                                       plateforme_.dossierPersonnel());
    const std::string nom = nomDeFichierSur(extrait(titreFenetre(place.vue->titre()), 100, 1));
    const std::string fichier = destinationUnique(
        dossier, nom + ".pdf", [this](const std::string& c) { return plateforme_.existe(c); });
    place.vue->imprimer(fichier, [faible, fenetre] {
        const auto c = faible.lock();
        if (!c) return;
        if (const auto etat = c->impressions_.find(fenetre); etat != c->impressions_.end()) {
            etat->second.dialogueOuvert = false;
        }
    });
}

void Controleur::impressionEchouee(VueWeb& vue, const std::string& description) {
    Journal::ecrire("impression ECHEC " + description);
    if (const auto place = placeDe(&vue)) {
        place->fenetre->feuille(alerteSimple("Impression impossible", description));
    }
}

// ---- Links to the system's applications ----

bool Controleur::lienApplication(VueWeb& vue, const std::string& url) {
    const std::string scheme = enMinuscules(schemeDe(url).value_or(""));
    const auto application = plateforme_.applicationPour(url);
    const auto retenus = schemesApprouves(plateforme_.reglages());
    const bool retenu = std::find(retenus.begin(), retenus.end(), scheme) != retenus.end();
    const auto place = placeDe(&vue);
    switch (deciderLienApplication(scheme, application.has_value() && place, retenu)) {
        case ChoixLienApplication::refuser:
            return false;
        case ChoixLienApplication::ouvrir:
            activation_.reset();
            plateforme_.ouvrirUrl(url);
            return true;
        case ChoixLienApplication::demander:
            break;
    }
    activation_.reset();
    Alerte question = alerteSimple(
        "Ouvrir ce lien avec " + extrait(*application, caracteresNomApplication, 1) + " ?", url);
    question.boutons = {"Ouvrir", "Annuler"};
    question.boutonEchap = 1;
    question.caseACocher = "Toujours ouvrir les liens « " + scheme + ": » avec cette application";
    std::weak_ptr<Controleur> faible = weak_from_this();
    place->fenetre->feuille(question, [faible, url, scheme](ReponseAlerte reponse) {
        const auto c = faible.lock();
        if (!c || reponse.bouton != 0) return;
        if (reponse.caseCochee) approuverScheme(c->plateforme_.reglages(), scheme);
        c->plateforme_.ouvrirUrl(url);
    });
    return true;
}

bool Controleur::executer(Commande commande) {
    departs_.nouvelleAction();
    switch (commande) {
        case Commande::recharger:
            recharger();
            return true;
        case Commande::rechargerOrigine:
            rechargerOrigine();
            return true;
        case Commande::pagePrecedente:
            pagePrecedente();
            return true;
        case Commande::pageSuivante:
            pageSuivante();
            return true;
        case Commande::accueil:
            accueil();
            return true;
        case Commande::zoomPlus:
            zoomPlus();
            return true;
        case Commande::zoomMoins:
            zoomMoins();
            return true;
        case Commande::zoomReel:
            zoomReel();
            return true;
        case Commande::changerEspace:
            changerEspace();
            return true;
        case Commande::ouvrirSite:
            ouvrirSite();
            return true;
        case Commande::ouvrirJournal:
            ouvrirJournal();
            return true;
        case Commande::imprimer:
            imprimer();
            return true;
        case Commande::rechercher:
            rechercher();
            return true;
        case Commande::rechercherSuivant:
            rechercherSuivant();
            return true;
        case Commande::rechercherPrecedent:
            rechercherPrecedent();
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

// ---- Leaving pages ----

std::vector<std::shared_ptr<VueWeb>> Controleur::vuesOuvertes() const {
    std::vector<std::shared_ptr<VueWeb>> vues;
    if (webView_) vues.push_back(webView_);
    for (const auto& secondaire : fenetresSecondaires_) vues.push_back(secondaire->webView());
    return vues;
}

void Controleur::confirmationDepart(VueWeb& vue, std::function<void(bool)> fin) {
    Fenetre* fenetre = fenetreDe(&vue);
    // Asked once per action of the user, on the page's own window; otherwise the page stays,
    // and so does whatever was to close with it.
    if (!fenetre || !departs_.questionPermise(vue)) {
        departs_.refus(vue);
        fin(false);
        return;
    }
    fenetre->devant();
    std::weak_ptr<Controleur> faible = weak_from_this();
    // The view may be gone when the question closes (its entries with it), and another one may
    // have its address by then.
    std::weak_ptr<VueWeb> faibleVue = vuePartagee(&vue);
    fenetre->feuille(questionDepart(),
                     [faible, faibleVue, fin = std::move(fin)](ReponseAlerte reponse) {
                         const bool quitter = reponse.bouton == 1;
                         const auto c = faible.lock();
                         if (const auto v = faibleVue.lock(); c && v) {
                             c->departs_.questionFermee(*v);
                             if (!quitter) c->departs_.refus(*v);
                         }
                         fin(quitter);
                     });
}

bool Controleur::quitter() {
    if (fermetureAccordee_) return true;
    departs_.nouvelleAction();
    std::weak_ptr<Controleur> faible = weak_from_this();
    fermetureAccordee_ = departs_.commencer(vuesOuvertes(), [faible] {
        if (const auto c = faible.lock()) {
            c->fermetureAccordee_ = true;
            c->fenetre_->fermer();
        }
    });
    return fermetureAccordee_;
}

bool Controleur::fermetureSecondaireDemandee(FenetreSecondaire& secondaire) {
    if (secondaire.fermetureAccordee) return true;
    departs_.nouvelleAction();
    std::weak_ptr<FenetreSecondaire> faible = secondaire.shared_from_this();
    secondaire.fermetureAccordee = departs_.commencer({secondaire.webView()}, [faible] {
        if (const auto s = faible.lock()) {
            s->fermetureAccordee = true;
            s->fenetre()->fermer();
        }
    });
    return secondaire.fermetureAccordee;
}

// ---- Page dialogs ----

void Controleur::alerteScript(const std::string& message, std::function<void()> fin) {
    plateforme_.alerte(alerteSimple(titreProduit, message),
                       [fin = std::move(fin)](ReponseAlerte) { fin(); });
}

void Controleur::confirmationScript(const std::string& message, std::function<void(bool)> fin) {
    Alerte alerte = alerteSimple(titreProduit, message);
    alerte.boutons.push_back("Annuler");
    plateforme_.alerte(alerte,
                       [fin = std::move(fin)](ReponseAlerte reponse) { fin(reponse.bouton == 0); });
}

void Controleur::saisieScript(const std::string& invite, const std::optional<std::string>& defaut,
                              std::function<void(std::optional<std::string>)> fin) {
    Alerte alerte = alerteSimple(titreProduit, invite);
    alerte.boutons.push_back("Annuler");
    alerte.champ = extrait(defaut.value_or(std::string()), caracteresChampMax, caracteresChampMax);
    plateforme_.alerte(alerte, [fin = std::move(fin), defaut](ReponseAlerte reponse) {
        if (reponse.bouton != 0) return fin(std::nullopt);
        // A field left as it was answers the page's own text, whatever the field could hold;
        // "OK" with an empty field answers the empty text, not nothing.
        fin(reponse.champModifie ? reponse.champ : defaut.value_or(std::string()));
    });
}

void Controleur::choixFichiers(bool plusieurs, std::function<void(FichiersChoisis)> fin) {
    plateforme_.choisirFichiers(DemandeFichiers{true, false, plusieurs, false},
                                [fin = std::move(fin)](FichiersChoisis choisis) {
                                    // A cancelled panel answers nothing, never an empty list.
                                    if (choisis && choisis->empty()) choisis.reset();
                                    fin(std::move(choisis));
                                });
}

// ---- Downloads ----

std::optional<std::string> Controleur::destinationTelechargement(
    std::shared_ptr<Telechargement> telechargement, std::string_view nomSuggere) {
    // Recorded now, it would stay "running" for good and keep its name taken.
    if (telechargement->termine) return std::nullopt;
    const std::string dossier = dossierTelechargements(plateforme_.dossierTelechargements(),
                                                       plateforme_.dossierPersonnel());
    // A name is taken by a file or folder, by the engine's working files for it, and by a
    // download still running towards it.
    const auto suffixes = plateforme_.suffixesTemporairesTelechargement();
    std::size_t reserve = 0;
    for (const auto& suffixe : suffixes) reserve = std::max(reserve, suffixe.size());
    const auto pris = [&](const std::string& chemin) {
        if (plateforme_.existe(chemin)) return true;
        for (const auto& suffixe : suffixes) {
            if (plateforme_.existe(chemin + suffixe)) return true;
        }
        return std::any_of(telechargements_.begin(), telechargements_.end(),
                           [&](const auto& entree) { return entree.second.destination == chemin; });
    };
    std::string destination = destinationUnique(dossier, nomSuggere, pris, reserve);
    const Telechargement* cle = telechargement.get();
    telechargements_.insert_or_assign(cle,
                                      EntreeTelechargement{std::move(telechargement), destination});
    return destination;
}

void Controleur::telechargementTermine(Telechargement& telechargement) {
    telechargement.termine = true;
    const auto entree = telechargements_.find(&telechargement);
    if (entree == telechargements_.end()) return;
    const std::string destination = entree->second.destination;
    telechargements_.erase(entree);
    Journal::ecrire("telechargement OK " + nomDeChemin(destination));
    plateforme_.reveler(destination);
}

void Controleur::telechargementEchoue(Telechargement& telechargement,
                                      const std::string& description) {
    telechargement.termine = true;
    telechargements_.erase(&telechargement);
    Journal::ecrire("telechargement ECHEC " + description);
    plateforme_.alerte(alerteSimple("Téléchargement impossible", description),
                       [](ReponseAlerte) {});
}

std::vector<std::pair<const char*, std::size_t>> Controleur::tailles() const {
    std::size_t attentes = 0;
    for (const auto& [vue, liste] : attentes_) attentes += liste.size();
    return {{"origines", originesWebView_.size()},
            {"secondaires", fenetresSecondaires_.size()},
            {"finsProcessus", finsProcessus_.size()},
            {"vuesEnAttente", attentes_.size()},
            {"attentes", attentes},
            {"telechargements", telechargements_.size()},
            {"impressions", impressions_.size()},
            {"questionsDepart", departs_.tailles().first},
            {"questionsOuvertes", departs_.tailles().second},
            {"trajets", trajets_.size()},
            {"questionsConnexion", questions_.size()},
            {"identifications", identifications_.size()}};
}

std::optional<std::string> Controleur::destinationDe(const Telechargement& telechargement) const {
    const auto entree = telechargements_.find(&telechargement);
    if (entree == telechargements_.end()) return std::nullopt;
    return entree->second.destination;
}

}  // namespace brindex
