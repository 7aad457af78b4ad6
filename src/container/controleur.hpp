#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "address/origine.hpp"
#include "address/url.hpp"
#include "container/commandes.hpp"
#include "container/connexion.hpp"
#include "container/depart.hpp"
#include "container/impression.hpp"
#include "container/politique.hpp"
#include "container/ports.hpp"
#include "container/recherche.hpp"

namespace brindex {

// A plain window holding one web view that a page of the space opened.
class FenetreSecondaire : public std::enable_shared_from_this<FenetreSecondaire> {
  public:
    // Builds and shows the window around the web view.
    static std::shared_ptr<FenetreSecondaire> creer(Plateforme& plateforme,
                                                    std::shared_ptr<VueWeb> webView);
    static ParametresFenetre parametres();

    const std::shared_ptr<Fenetre>& fenetre() const { return fenetre_; }
    const std::shared_ptr<VueWeb>& webView() const { return webView_; }
    // The window's find bar, on its page.
    RechercheDansPage& recherche() const { return *recherche_; }

    // Runs when the window closes by itself (close button, or the page's request).
    std::function<void(FenetreSecondaire&)> onFermeture;
    // The window may close: its page agreed to be left, or asked for it itself.
    bool fermetureAccordee = false;
    // The address of the space the page opened the window on; none for a window it writes into.
    std::optional<std::string> adresse;

    // Closes the window without running onFermeture.
    void fermer();
    // The window is about to close by itself.
    void fenetreVaFermer();

  private:
    explicit FenetreSecondaire(std::shared_ptr<VueWeb> webView) : webView_(std::move(webView)) {}
    void detacher();

    std::shared_ptr<Fenetre> fenetre_;
    std::shared_ptr<VueWeb> webView_;
    std::shared_ptr<RechercheDansPage> recherche_ = std::make_shared<RechercheDansPage>();
};

// The one controller: owns the main window and decides what it shows, keeps every web view on
// its space's origin, opens popups as secondary windows, reports load failures, answers page
// dialogs and saves downloads. Every callback it hands out holds it weakly.
class Controleur : public std::enable_shared_from_this<Controleur> {
  public:
    // Builds the main window, hidden.
    static std::shared_ptr<Controleur> creer(Plateforme& plateforme);
    static ParametresFenetre parametresFenetrePrincipale();

    Controleur(const Controleur&) = delete;
    Controleur& operator=(const Controleur&) = delete;

    // ---- Screens and the main web view ----
    void demarrer();
    void ouvrirEspace(const Url& url);
    void montrerConfiguration();
    void montrerErreur(const std::string& detail, std::string_view titre = "Espace injoignable");
    void detruireWebView();
    // The web view that page commands act on: a key secondary window's, else the main one.
    std::shared_ptr<VueWeb> webViewActive() const;
    // The main window is about to close.
    void fenetrePrincipaleVaFermer();
    // The main window's find bar.
    RechercheDansPage& recherche() const { return *recherche_; }

    std::optional<Url> adresseEspace() const;
    void definirAdresseEspace(const std::optional<Url>& url);

    // Observations of the main web view.
    void titreChange(VueWeb& vue);
    void progressionChange(VueWeb& vue);

    // ---- Navigation policy ----
    Politique deciderAction(VueWeb& vue, const ActionNavigation& action);
    Politique deciderReponse(VueWeb& vue, const ReponseNavigation& reponse);

    // ---- Load outcome ----
    void chargementTermine(VueWeb& vue);
    void traiterEchec(const ErreurChargement& erreur, VueWeb& vue);
    // The web view's content process ended on its own (a crash, the system's memory limit).
    void processusTermine(VueWeb& vue, FinProcessus fin);

    // ---- The user's own actions ----
    // A press of a mouse button or a key in one of the application's windows: it allows one
    // thing to leave the application or one window to open, for a short while.
    void activationUtilisateur();
    // A press the platform saw: it counts as an action of the user when it asks for something.
    void pression(const Pression& pression);

    // ---- Secondary windows ----
    // A page asks for a new window; gives the new web view, or nothing.
    // `geste`: the engine's own word on whether a user gesture asked for it, where it gives one.
    std::shared_ptr<VueWeb> creerVueWebDemandee(VueWeb& ouvreur,
                                                const std::optional<std::string>& url,
                                                std::optional<bool> geste,
                                                const ConfigurationMoteur& configuration);
    // A page asked to close its own window, or agreed to be closed when asked.
    void fermetureDemandee(VueWeb& vue);
    void fermerFenetresSecondaires();

    // ---- Page commands ----
    void recharger();
    void rechargerOrigine();
    void pagePrecedente();
    void pageSuivante();
    void accueil();
    void zoomPlus();
    void zoomMoins();
    void zoomReel();
    void changerEspace();
    void ouvrirSite();
    void ouvrirJournal();
    void imprimer();
    void rechercher();
    void rechercherSuivant();
    void rechercherPrecedent();
    // Runs one of the controller's commands; false for a command it doesn't answer.
    bool executer(Commande commande);

    // ---- Leaving pages ----
    // The engine asks whether a page that wants to be confirmed may be left; `fin` gets true to
    // leave it.
    void confirmationDepart(VueWeb& vue, std::function<void(bool)> fin);
    // The user asks to quit, or to close the main window, which ends the application: gives true
    // when it may end now; otherwise its pages are asked first, and the main window closes once
    // they all agreed.
    bool quitter();
    // ---- Find and print ----
    // The engine's answer to the oldest search of the page not yet answered.
    void resultatRecherche(VueWeb& vue, bool trouve, std::optional<unsigned> nombre);
    // The page asks to be printed (window.print()).
    void impressionDemandee(VueWeb& vue);
    void impressionEchouee(VueWeb& vue, const std::string& description);

    // ---- Page dialogs ----
    void alerteScript(const std::string& message, std::function<void()> fin);
    void confirmationScript(const std::string& message, std::function<void(bool)> fin);
    void saisieScript(const std::string& invite, const std::optional<std::string>& defaut,
                      std::function<void(std::optional<std::string>)> fin);
    void choixFichiers(bool plusieurs, std::function<void(FichiersChoisis)> fin);

    // ---- Downloads ----
    // Chooses and records where the download is saved; nothing for a download that has already
    // ended, which the engine is then to cancel.
    std::optional<std::string> destinationTelechargement(
        std::shared_ptr<Telechargement> telechargement, std::string_view nomSuggere);
    void telechargementTermine(Telechargement& telechargement);
    void telechargementEchoue(Telechargement& telechargement, const std::string& description);

    // ---- Signing in elsewhere ----
    // A server or a proxy asks who the user is; `reponse` runs once (nothing: go on without).
    void authentificationDemandee(VueWeb& vue, const DemandeAuthentification& demande,
                                  std::function<void(std::optional<Identifiants>)> reponse);
    // The system reports the network back, or the machine awake again.
    enum class Reprise { reseau, reveil };
    void reprise(Reprise evenement);
    void definirBornesConnexion(const BornesConnexion& bornes) { bornes_ = bornes; }
    // The round trip under way in a view, if any.
    std::optional<TrajetConnexion> trajetDe(const VueWeb& vue) const;

    // ---- State ----
    FenetrePrincipale& fenetre() const { return *fenetre_; }
    const std::shared_ptr<VueWeb>& webView() const { return webView_; }
    bool principaleADejaCharge() const { return principaleADejaCharge_; }
    const std::vector<std::shared_ptr<FenetreSecondaire>>& fenetresSecondaires() const {
        return fenetresSecondaires_;
    }
    const std::map<const VueWeb*, Origine>& originesWebView() const { return originesWebView_; }
    // Destination of each running download.
    std::optional<std::string> destinationDe(const Telechargement& telechargement) const;
    std::size_t telechargementsEnCours() const { return telechargements_.size(); }
    // How many entries each of the controller's tables holds (the debug trace prints them: a
    // table that grows over a day of use is a leak).
    std::vector<std::pair<const char*, std::size_t>> tailles() const;

  private:
    explicit Controleur(Plateforme& plateforme) : plateforme_(plateforme) {}
    // A web view with its window and that window's find bar.
    struct Place {
        std::shared_ptr<VueWeb> vue;
        Fenetre* fenetre;
        RechercheDansPage* recherche;
    };
    // Compares addresses only: safe with a view that may be gone.
    std::optional<Place> placeDe(const VueWeb* vue) const;
    // Where page commands act: a key secondary window, else the main window.
    RechercheDansPage& rechercheActive() const;
    void ouvrirImpression(const Place& place, bool parUtilisateur);
    // A clicked link for another application: true when it is opened or asked about.
    bool lienApplication(VueWeb& vue, const std::string& url);
    std::optional<Origine> origineDe(const VueWeb& vue) const;
    void ajusterZoom(double (*regle)(double));
    // Whether an action of the user is there to be spent (and the engine doesn't deny it).
    bool actionUtilisateurDisponible(std::optional<bool> geste) const;
    void oublierVue(const VueWeb& vue);
    // The secondary window that shows `vue`, if any.
    FenetreSecondaire* secondaireDe(const VueWeb& vue) const;
    // The window that shows `vue`, and the view itself shared, if it is still shown.
    Fenetre* fenetreDe(const VueWeb* vue) const;
    std::shared_ptr<VueWeb> vuePartagee(const VueWeb* vue) const;
    // Every web view, the main one first, then the secondary windows' oldest first.
    std::vector<std::shared_ptr<VueWeb>> vuesOuvertes() const;
    bool fermetureSecondaireDemandee(FenetreSecondaire& secondaire);
    // Does what a navigation of `vue` does instead of loading.
    void detourner(const Detournement& detournement, const VueWeb& vue);
    // The main view, with nothing of the space shown yet, was sent to another site that is
    // refused: the window explains instead of staying blank.
    void expliquerPageBlanche(const VueWeb& vue, const Origine& site);
    // Takes out the navigation waiting on this address; what to do instead, if it filled the
    // main frame.
    struct Attente;
    std::optional<Attente> attenteDe(const VueWeb& vue, const std::optional<std::string>& url,
                                     bool cadrePrincipal);

    // Signing in elsewhere (controleur_connexion.cpp). A navigation that fills a view (or asks
    // for a window): its answer when it is a sign-in matter.
    std::optional<Politique> deciderConnexion(VueWeb& vue, const ActionNavigation& action,
                                              bool parUtilisateur, bool demande);
    void entrerConnexion(VueWeb& vue, const Origine& site, bool navigation);
    void quitterConnexion(const VueWeb& vue, const char* verdict);
    void expirerConnexion(const VueWeb* vue, unsigned numero, bool parDuree);
    Politique demanderConnexion(VueWeb& vue, const Origine& site);
    void annulerConnexion(const VueWeb* vue);
    // A page of the space loaded in the view: its round trip is over.
    void finirConnexionSiEspace(VueWeb& vue);
    void reculerVersEspace(VueWeb& vue);
    // The view's address as the log may hold it: whole on the space's own pages outside a round
    // trip; elsewhere scheme, host, port and path only.
    std::optional<std::string> adresseJournal(const VueWeb& vue) const;

    struct EntreeTelechargement {
        std::shared_ptr<Telechargement> telechargement;
        std::string destination;
    };

    Plateforme& plateforme_;
    std::shared_ptr<FenetrePrincipale> fenetre_;
    std::shared_ptr<RechercheDansPage> recherche_ = std::make_shared<RechercheDansPage>();
    std::shared_ptr<VueWeb> webView_;
    // Each window's print dialog and pages printing on their own.
    std::map<const Fenetre*, EtatImpression> impressions_;
    std::map<const Telechargement*, EntreeTelechargement> telechargements_;
    std::vector<std::shared_ptr<FenetreSecondaire>> fenetresSecondaires_;
    std::map<const VueWeb*, Origine> originesWebView_;
    bool principaleADejaCharge_ = false;
    // The last action of the user not yet spent, and the windows refused since it came.
    std::optional<std::chrono::steady_clock::time_point> activation_;
    unsigned fenetresRefusees_ = 0;
    // When each web view's content process last ended on its own.
    std::map<const VueWeb*, std::chrono::steady_clock::time_point> finsProcessus_;
    // Navigations to other sites allowed in a frame the engine didn't name, and what to do if
    // their response fills the main frame; a few per view (one that never gets a response, a
    // failed load, is forgotten in time).
    struct Attente {
        std::string url;
        Detournement detournement;
        // Decided again as the main frame's, for sign-in.
        ActionNavigation action;
        bool parUtilisateur = false;
        bool demandeConnexion = false;
    };
    std::map<const VueWeb*, std::vector<Attente>> attentes_;

    // Sign-in sites of the space shown, round trips under way, views waiting for the user's
    // answer to a question or an identification, and whether the error view shows a failure of
    // the network (then tried again when the network comes back).
    SitesConnexion sites_;
    BornesConnexion bornes_;
    std::map<const VueWeb*, TrajetConnexion> trajets_;
    unsigned numeroTrajet_ = 0;
    std::vector<const VueWeb*> questions_;
    // Sites the user turned down since the space was opened: not asked about again until then.
    std::vector<Origine> refuses_;
    std::vector<const VueWeb*> identifications_;
    bool erreurReseau_ = false;
    Departs departs_;
    // Every page agreed to be left: the main window may close, and the application end.
    bool fermetureAccordee_ = false;
};

}  // namespace brindex
