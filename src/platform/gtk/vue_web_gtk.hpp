#pragma once

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <vector>

#include "container/controleur.hpp"
#include "container/ports.hpp"
#include "outils_gtk.hpp"

namespace brindex::gtk {

struct DialogueEnAttente;

// The opener of a popup, as WebKit hands it over when a page asks for a new window.
class ConfigurationGtk : public ConfigurationMoteur {
  public:
    explicit ConfigurationGtk(WebKitWebView* vue) : ouvreur(vue) {}
    WebKitWebView* ouvreur;
};

// A WebKitWebView whose engine callbacks become the controller's plain values.
class VueWebGtk : public VueWeb, public std::enable_shared_from_this<VueWebGtk> {
  public:
    // `ouvreur`: the web view whose page asked for this one, which shares its session; without
    // one, the view is on `session`. `sansComposition`: WebKit never composites in hardware.
    VueWebGtk(const ParametresVueWeb& parametres, WebKitWebView* ouvreur,
              WebKitNetworkSession* session, std::weak_ptr<Controleur> controleur,
              bool sansComposition);
    ~VueWebGtk() override;
    VueWebGtk(const VueWebGtk&) = delete;
    VueWebGtk& operator=(const VueWebGtk&) = delete;

    WebKitWebView* webView() const { return vue_.get(); }
    GtkWidget* widget() const { return GTK_WIDGET(vue_.get()); }

    void charger(const std::string& url, double delaiSecondes) override;
    void arreter() override;
    void recharger() override;
    void rechargerOrigine() override;
    void reculer() override;
    void avancer() override;
    double zoom() const override;
    void definirZoom(double zoom) override;
    std::optional<std::string> url() const override;
    std::optional<std::string> titre() const override;
    double progression() const override;
    bool aUnePageARecharger() const override;
    void detacher() override;
    void terminerProcessus() override;
    void trancher(Politique politique) override;
    std::vector<std::string> historiqueArriere(std::size_t maximum) const override;
    void reculerDe(std::size_t pas) override;
    void essayerFermer() override;
    void chercher(const std::string& texte, SensRecherche sens) override;
    void finirRecherche() override;
    void focaliser() override;
    void imprimer(const std::string& fichierPdf, std::function<void()> ferme) override;

    // How many of these views exist (the debug trace counts them: one that outlives its window
    // is a leak).
    static std::size_t vivantes() { return vivantes_; }

    // The page is ready to be shown in its window (popups only).
    std::function<void()> pretAAfficher;

  private:
    void connecter();

    static gboolean surPolitique(WebKitWebView*, WebKitPolicyDecision*, WebKitPolicyDecisionType,
                                 gpointer);
    static void surChargement(WebKitWebView*, WebKitLoadEvent, gpointer);
    static gboolean surEchec(WebKitWebView*, WebKitLoadEvent, char*, GError*, gpointer);
    static gboolean surEchecTls(WebKitWebView*, char*, GTlsCertificate*, GTlsCertificateFlags,
                                gpointer);
    static GtkWidget* surCreation(WebKitWebView*, WebKitNavigationAction*, gpointer);
    static void surPret(WebKitWebView*, gpointer);
    static void surFermeture(WebKitWebView*, gpointer);
    static gboolean surDialogue(WebKitWebView*, WebKitScriptDialog*, gpointer);
    static gboolean surChoixFichiers(WebKitWebView*, WebKitFileChooserRequest*, gpointer);
    static void surTitre(GObject*, GParamSpec*, gpointer);
    static void surProgression(GObject*, GParamSpec*, gpointer);
    static gboolean surDelaiDepasse(gpointer);
    static void surFinProcessus(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer);
    static gboolean surEntree(GtkEventControllerLegacy*, GdkEvent*, gpointer);
    static gboolean surAuthentification(WebKitWebView*, WebKitAuthenticationRequest*, gpointer);
    static gboolean surImpression(WebKitWebView*, WebKitPrintOperation*, gpointer);
    static void surTrouve(WebKitFindController*, guint nombre, gpointer);
    static void surIntrouvable(WebKitFindController*, gpointer);
    void annulerDelai();
    // The user is asked something the load waits on (a sign-in site, an identification): the
    // time-out stops meanwhile, and starts afresh once the last answer is in.
    void attendreUtilisateur(bool attente);
    void appliquerPolitique(WebKitPolicyDecision* decision, Politique politique);
    // A failed load, reported once with the address that failed.
    void echouer(ErreurChargement erreur, const char* url);
    // Decides a link the user activated once the page has said whether it lies in a frame.
    void deciderLienActive(WebKitPolicyDecision* decision, ActionNavigation action);

    inline static std::size_t vivantes_ = 0;
    Ref<WebKitWebView> vue_;
    std::weak_ptr<Controleur> controleur_;
    // WebKit reports a failed load as finished too; only a clean finish counts.
    bool echec_ = false;
    bool attachee_ = true;
    // WebKitGTK has no per-request time-out: a timer stands in for it until the server answers.
    guint delai_ = 0;
    guint delaiMs_ = 0;
    bool delaiSuspendu_ = false;
    int attentesUtilisateur_ = 0;
    // The navigation waiting for the controller's answer: answered before it is let go, since
    // WebKit takes a decision released unanswered for "use".
    Ref<WebKitPolicyDecision> enAttente_;
    // Page dialogs still waiting for the user: WebKit's answer to each must come before the view
    // goes, since the engine writes into the view when a dialog closes.
    std::vector<std::weak_ptr<DialogueEnAttente>> dialogues_;
    // Sees the presses inside the page (owned by the widget).
    GtkEventController* entrees_ = nullptr;
    // Where the last press was, in the page's coordinates: a key press has none.
    std::optional<std::pair<double, double>> dernierClic_;
};

}  // namespace brindex::gtk
