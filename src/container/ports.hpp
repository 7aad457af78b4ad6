#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "address/sonde.hpp"
#include "brand/reglages.hpp"
#include "screens/vue_configuration.hpp"
#include "screens/vue_erreur.hpp"

// What the controller needs from a platform, and the plain values in which the web engine's
// callbacks reach it. Each platform implements these once; no toolkit type crosses them.

namespace brindex {

// ---- Values from the engine ----

// `formulaire`: a form was submitted (by the user or by a script).
enum class TypeNavigation { lienActive, formulaire, autre };
// The frame a navigation targets; `aucun` is a request for a new window; `inconnu`: the engine
// doesn't say whether the main frame or a sub-frame navigates (it tells only once a response
// arrives, see ReponseNavigation::cadrePrincipal).
enum class CadreCible { principal, sousCadre, aucun, inconnu };

struct ActionNavigation {
    std::optional<std::string> url;
    TypeNavigation type = TypeNavigation::autre;
    CadreCible cible = CadreCible::principal;
    // The link asks for a download (its `download` attribute), where the engine says.
    std::optional<bool> telechargementDemande = std::nullopt;
    // The engine's own word on whether a user gesture started the navigation, where the
    // engine gives one; nothing where it doesn't.
    std::optional<bool> gesteUtilisateur = std::nullopt;
};

struct ReponseNavigation {
    bool http = false;
    std::optional<std::string> contentDisposition;
    bool typeAffichable = true;
    // The address the response answers, and whether it fills the main frame.
    std::optional<std::string> url = std::nullopt;
    bool cadrePrincipal = true;
};

// `differer`: no answer yet; the controller gives it later through VueWeb::trancher, and no
// time-out of the load runs meanwhile.
enum class Politique { annuler, autoriser, telecharger, differer };

// Why a web view's content process ended without being asked to.
enum class FinProcessus { plantage, memoire };

// A press of a mouse button or a key in one of the application's windows, as the platform saw
// it.
struct Pression {
    // In one of the application's own dialogs (an alert, a sheet, a file panel) rather than in a
    // window that shows pages.
    bool dansDialogue = false;
    bool echap = false;
    // A modifier key (Shift, Control, Option, Command…) pressed alone.
    bool modificateurSeul = false;
};

// A load failure in the URL-loading vocabulary: each platform maps its own errors onto
// NSURLErrorDomain codes and WebKitErrorDomain/102, and keeps anything else as it is.
struct ErreurChargement {
    std::string domaine;
    std::int64_t code = 0;
    std::string description;
    // The address whose load failed, where the engine says.
    std::optional<std::string> url = std::nullopt;
};
inline constexpr std::string_view domaineUrl = "NSURLErrorDomain";
inline constexpr std::string_view domaineWebKit = "WebKitErrorDomain";

// A server (or a proxy) asks who the user is (HTTP Basic, Digest, NTLM, Negotiate).
struct DemandeAuthentification {
    std::string scheme;  // of the protected server: "http" or "https"
    std::string hote;
    std::int64_t port = 0;
    std::string royaume;  // the server's own words
    bool proxy = false;
    // The previous attempt was refused.
    bool nouvelEssai = false;
    // The engine can keep the credential in the system's store.
    bool peutMemoriser = false;
    // What the system's store holds for it.
    std::optional<std::string> identifiantPropose = std::nullopt;
    bool motDePassePropose = false;
};

// The answer: nothing goes on without credentials (the server's own refusal shows).
struct Identifiants {
    std::string identifiant;
    std::string motDePasse;
    // Kept in the system's store, rather than for this session only.
    bool memoriser = false;
    // What the engine proposed, used as it is.
    bool propose = false;
};

// What an administrator set for every user of the machine.
struct Administration {
    std::vector<std::string> originesConnexion;
    std::optional<bool> questionConnexion;
};

// ---- Dialogs ----

// A labelled one-line field of an alert (a user name, a password).
struct ChampAlerte {
    std::string libelle;
    std::string texte;
    // Typed characters are hidden.
    bool secret = false;
};

// A native alert: title, explanation, buttons (the first one rightmost, where the platform puts
// the default), an optional one-line text field, labelled fields and a check box.
struct Alerte {
    std::string message;
    std::string informatif;
    std::vector<std::string> boutons;
    std::optional<std::string> champ;
    double largeurChamp = 260;
    double hauteurChamp = 24;
    // Under the text, in order: labelled fields, then a check box, unchecked at first.
    std::vector<ChampAlerte> champs = {};
    std::optional<std::string> caseACocher = std::nullopt;
    // The button Return presses, and the one Escape presses; without one, Escape dismisses the
    // alert, which answers no button.
    std::size_t boutonParDefaut = 0;
    std::optional<std::size_t> boutonEchap = std::nullopt;
};

struct ReponseAlerte {
    static constexpr std::size_t aucunBouton = static_cast<std::size_t>(-1);
    // Index of the button that closed the alert, or aucunBouton when it was dismissed.
    std::size_t bouton = aucunBouton;
    std::string champ;
    // The user changed the field's text.
    bool champModifie = false;
    // The labelled fields' texts, in order, and the check box.
    std::vector<std::string> champs = {};
    bool caseCochee = false;
};

struct DemandeFichiers {
    bool fichiers = true;
    bool dossiers = false;
    bool plusieurs = false;
    bool creerDossiers = false;
};
// Chosen files as absolute paths; nothing when the user cancelled.
using FichiersChoisis = std::optional<std::vector<std::string>>;

// ---- Platform objects ----

// A search of the page's text: a new one from the top, or a step to the next or previous match.
enum class SensRecherche { nouvelle, suivante, precedente };

class RechercheDansPage;

// A web view. Its identity is the object's address.
class VueWeb {
  public:
    virtual ~VueWeb() = default;
    // Loads with the protocol's cache policy and the given time-out.
    virtual void charger(const std::string& url, double delaiSecondes) = 0;
    virtual void arreter() = 0;
    virtual void recharger() = 0;
    virtual void rechargerOrigine() = 0;
    virtual void reculer() = 0;
    virtual void avancer() = 0;
    virtual double zoom() const = 0;
    virtual void definirZoom(double zoom) = 0;
    virtual std::optional<std::string> url() const = 0;
    virtual std::optional<std::string> titre() const = 0;
    virtual double progression() const = 0;
    // Whether the engine's history has a current page, which is what a reload loads again: a
    // view whose first load hasn't been committed, or a popup a script wrote into, has none.
    virtual bool aUnePageARecharger() const = 0;
    // Stops every callback of this web view from reaching the controller.
    virtual void detacher() = 0;
    // Ends the engine's process behind the view, which the engine may otherwise keep, with all
    // its memory, long after the view is gone. Where the engine offers no way, nothing.
    virtual void terminerProcessus() {}
    // Answers the navigation left waiting (Politique::differer); one at a time per view.
    virtual void trancher(Politique politique) = 0;
    // The addresses of the back list, most recent first, at most `maximum` of them.
    virtual std::vector<std::string> historiqueArriere(std::size_t maximum) const = 0;
    virtual void reculerDe(std::size_t pas) = 0;
    // Asks the page to close politely: the engine runs its before-unload handlers (which may ask
    // Controleur::confirmationDepart) and reports to Controleur::fermetureDemandee if it agrees,
    // possibly before this returns.
    virtual void essayerFermer() = 0;

    // Finds the text in the page, case-insensitively and wrapping around, and selects the match;
    // the engine answers each search once, in order (Controleur::resultatRecherche).
    virtual void chercher(const std::string& texte, SensRecherche sens) = 0;
    // Takes the highlights of the last search away.
    virtual void finirRecherche() = 0;
    // Gives the page the keyboard focus.
    virtual void focaliser() = 0;
    // The platform's print dialog for this page, on its window, suggesting `fichierPdf` where it
    // prints to a file; `ferme` runs once when the dialog closes, printed or not.
    virtual void imprimer(const std::string& fichierPdf, std::function<void()> ferme) = 0;
};

// What the engine supplies when a page asks for a new window (the opener's configuration);
// the core hands it back untouched to create the new web view.
class ConfigurationMoteur {
  public:
    virtual ~ConfigurationMoteur() = default;
};

// A download under way, known by its identity.
class Telechargement {
  public:
    virtual ~Telechargement() = default;
    // Set by the controller once the engine has reported the download's end: no destination is
    // given to it after that.
    bool termine = false;
};

struct ParametresFenetre {
    double largeur;
    double hauteur;
    double largeurMin;
    double hauteurMin;
    std::string titre;
    // Name under which the platform saves and restores the frame; empty: not saved.
    std::string nomSauvegarde;
};

struct ParametresVueWeb {
    bool principale;           // the space's own view, as opposed to a popup's
    bool gestesHistorique;     // back/forward swipes
    bool grossissement;        // pinch to zoom
    std::string agentSuffixe;  // appended to the engine's user agent
};

class Fenetre {
  public:
    virtual ~Fenetre() = default;
    virtual void definirTitre(const std::string& titre) = 0;
    virtual bool estCle() const = 0;
    // Makes the window key and brings it to the front.
    virtual void devant() = 0;
    // Forgets the close callback, so that closing the window reports nothing.
    virtual void oublierFermeture() = 0;
    // The user's request to close the window (its close button, a key) goes to `demande` first;
    // the window closes only when it answers true. Forgotten with the close callback.
    virtual void retenirFermeture(std::function<bool()> demande) = 0;
    virtual void fermer() = 0;
    // An alert sheet attached to this window: it blocks this window only; `reponse`, if any,
    // runs once when it closes.
    virtual void feuille(const Alerte& alerte, std::function<void(ReponseAlerte)> reponse) = 0;
    void feuille(const Alerte& alerte) { feuille(alerte, nullptr); }
    // A bar above the page, outside it, with its text and an "Annuler" button; none: hidden.
    virtual void barreConnexion(const std::optional<std::string>& texte,
                                std::function<void()> annuler) = 0;
    // The platform draws the window's find bar, hidden, above the page, sends it the user's
    // input and calls `recherche->attacher` with its widgets.
    virtual void attacherRecherche(std::shared_ptr<RechercheDansPage> recherche) = 0;
};

// The main window shows exactly one of three screens.
class FenetrePrincipale : public Fenetre {
  public:
    // The platform builds the widgets and calls `vue->attacher` with them.
    virtual void montrerConfiguration(std::shared_ptr<VueConfiguration> vue) = 0;
    // The web view under a thin progress bar, hidden at first.
    virtual void montrerEspace(std::shared_ptr<VueWeb> vue) = 0;
    virtual void montrerErreur(std::shared_ptr<VueErreur> vue) = 0;
    virtual void progression(double valeur, bool visible) = 0;
};

class Plateforme {
  public:
    virtual ~Plateforme() = default;

    // The window is built hidden; `vaFermer` runs just before it closes.
    virtual std::shared_ptr<FenetrePrincipale> creerFenetrePrincipale(
        const ParametresFenetre& parametres, std::function<void()> vaFermer) = 0;
    // Without a configuration: a new view on the persistent website data. With one: the view a
    // page asked for, built from what the engine supplied.
    virtual std::shared_ptr<VueWeb> creerVueWeb(const ParametresVueWeb& parametres,
                                                const ConfigurationMoteur* configuration) = 0;
    // Builds a window around the web view, centres it, makes it key and shows it.
    virtual std::shared_ptr<Fenetre> creerFenetreSecondaire(const ParametresFenetre& parametres,
                                                            std::shared_ptr<VueWeb> vue,
                                                            std::function<void()> vaFermer) = 0;

    // The default browser, or the mail or telephone handler.
    virtual void ouvrirUrl(const std::string& url) = 0;
    // The name of the application the system opens this URL with, other than this one; nothing
    // when there is none.
    virtual std::optional<std::string> applicationPour(const std::string& url) = 0;
    // Shows the file selected in the file manager.
    virtual void reveler(const std::string& chemin) = 0;
    // An application-modal alert; `reponse` runs once it is closed.
    virtual void alerte(const Alerte& alerte, std::function<void(ReponseAlerte)> reponse) = 0;
    virtual void choisirFichiers(const DemandeFichiers& demande,
                                 std::function<void(FichiersChoisis)> reponse) = 0;

    virtual Reglages& reglages() = 0;
    virtual TransportHttp& transport() = 0;

    // The Downloads folder the system reports, if any, and the home folder.
    virtual std::optional<std::string> dossierTelechargements() = 0;
    virtual std::string dossierPersonnel() = 0;
    virtual bool existe(const std::string& chemin) = 0;
    // What the download engine writes beside a destination while it works ("name" + suffix);
    // such a file of the user's must not be overwritten either.
    virtual std::vector<std::string> suffixesTemporairesTelechargement() const { return {}; }

    // Whether a touchpad or a touch screen is there to swipe through the history with.
    virtual bool balayagePossible() const { return true; }

    virtual std::chrono::steady_clock::time_point maintenant() const {
        return std::chrono::steady_clock::now();
    }
    // Runs `action` once, on the main thread, after `delai`.
    virtual void plusTard(std::chrono::milliseconds delai, std::function<void()> action) = 0;
    // What the machine's administrator set; read at every opening of the space.
    virtual Administration administration() const { return {}; }
};

}  // namespace brindex
