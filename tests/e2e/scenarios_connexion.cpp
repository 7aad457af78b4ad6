// A space behind its company's sign-in: round trips through real identity providers (SAML and
// OpenID Connect, from npm, on another host), HTTP authentication, the network coming back.

#include <signal.h>

#include "pilote.hpp"

// A test hook of GLib's plain network monitor (not in its public headers).
extern "C" void g_network_monitor_base_set_networks(GNetworkMonitor*, GInetAddressMask**, int);

namespace brindex::e2e {
namespace {

using gtk::ApplicationGtk;

// The providers' addresses, and their hosts as the bar and the log name them.
const std::string oidc = g_getenv("BRINDEX_E2E_OIDC") ? g_getenv("BRINDEX_E2E_OIDC") : "";
const std::string saml = g_getenv("BRINDEX_E2E_SAML") ? g_getenv("BRINDEX_E2E_SAML") : "";
std::string hote(const std::string& url) {
    return url.substr(url.find("//") + 2);
}
std::string barre(const std::string& url) {
    return "Connexion via " + hote(url) + " (non sécurisée)";
}

// The administrator lists a sign-in site for the machine.
void administrer(const std::string& origine) {
    const std::string dossier = variable("BRINDEX_E2E_PROFIL") + "/xdg";
    gtk::ReglagesGtk(dossier + "/brindex/brindex.conf").ecrire("originesConnexion", origine);
    g_setenv("XDG_CONFIG_DIRS", dossier.c_str(), TRUE);
}

// A listed SAML provider: no question, a bar, the trip's rules, its answer posted back by itself.
void connexionSaml(ApplicationGtk& app) {
    attendreJournal("navigation OK " + saml + "/saml/sso");
    WebKitWebView* vue = vueWebPrincipale(app);
    capturer("connexion");
    verifier(texte(exiger(app, "texte-connexion")) == barre(saml) &&
                 gtk_window_get_title(principale(app)) == barre(saml) &&
                 !chercherPartout(app, "bouton-0"),
             "la barre et le titre, sans question");
    // A click elsewhere goes to the browser; a script sending the page elsewhere is refused.
    script(vue,
           "document.body.insertAdjacentHTML('afterbegin', '<a id=ailleurs style=position:"
           "fixed;bottom:0;z-index:9;padding:30px href=https://www.brindex.example/aide>x</a>')");
    cliquerDans(vue, "#ailleurs");
    attendreOuvert([](const std::string& o) { return o == "https://www.brindex.example/aide"; },
                   "le lien remis au navigateur");
    script(vue, "location.href = 'https://www.brindex.example/'; 'ok'");
    attendreJournal("connexion REFUSEE vers www.brindex.example");
    cliquerDans(vue, "#btn-sign-in");
    attendreJournal("connexion FIN " + hote(saml));
    attendre([&] { return gtk_window_get_title(principale(app)) == std::string("Connectée"); }, 10,
             "titre rendu");
    verifier(!chercherPartout(app, "barre-connexion"), "barre retirée");
    // Back never lands on the provider's pages, and no secret reaches the log.
    touches(principale(app), "ctrl+bracketleft");
    patienter(1);
    verifier(webkit_web_view_get_uri(vue) == espace() + "saml/", "l'espace reste");
    for (const char* secret : {"SAMLRequest", "SAMLResponse", "RelayState", "?"})
        verifier(!contient(journal(), secret), journal());
}

// An unknown OpenID Connect provider asks first; "Annuler" explains, "Continuer" signs in.
void connexionQuestion(ApplicationGtk& app) {
    GtkWidget* question = alerte(app);
    verifier(texte(chercher(question, "titre-alerte")) == "Connexion à votre espace" &&
                 contient(texte(chercher(question, "texte-alerte")),
                          "vous envoie vers " + hote(oidc) + " pour vous identifier"),
             texte(chercher(question, "texte-alerte")));
    touches(GTK_WINDOW(question), "Escape");
    verifier(texte(exiger(app, "titre-erreur")) == "Connexion refusée" &&
                 contient(texte(exiger(app, "explication")), hote(oidc)),
             "l'explication");
    attendreJournal("connexion REFUSEE vers " + hote(oidc));
    touches(principale(app), "Return");  // "Réessayer"
    cliquerWidget(chercher(alerte(app), "bouton-0"));
    attendreJournal("navigation OK " + oidc + "/interaction/");
    cliquerDans(vueWebPrincipale(app), "input[name=login]");
    touches(principale(app), "a n n e Tab s e c r e t Return");
    attendreJournal("connexion FIN " + hote(oidc));
    verifier(gtk::ReglagesGtk::parDefaut().lire("connexionsApprouvees") == oidc, "approuvé");
}

// After a restart: no question, and no form thanks to the provider's own session.
void connexionRelance(ApplicationGtk& app) {
    attendreJournal("navigation OK " + espace() + "oidc/", 2);
    const std::string lancement = journal().substr(journal().rfind("demarrage"));
    verifier(!contient(lancement, "/interaction/") && !chercherPartout(app, "bouton-0"), lancement);
}

// A sign-in popup; then round trips that never return, ended by time and by the bar.
void connexionFenetre(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    script(vue, "location.href = '/oidc/fenetre'; 'ok'");
    attendreJournal("navigation OK " + espace() + "oidc/fenetre");
    cliquerDans(vue, "#connexion");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre de connexion");
    GtkWindow* fenetre = fenetresVisibles(app)[fenetresVisibles(app)[0] == principale(app)];
    verifier(texte(chercher(GTK_WIDGET(fenetre), "texte-connexion")) == barre(oidc) &&
                 gtk_window_get_title(fenetre) == barre(oidc),
             "barre et titre de la fenêtre");
    attendreJournal("navigation OK " + oidc + "/interaction/");
    cliquerDans(vueWebDe(GTK_WIDGET(fenetre)), "input[name=login]");
    touches(fenetre, "a n n e Tab s e c r e t Return");
    // The provider's page hands the answer to its opener, then closes its own window.
    attendre([&] { return fenetresVisibles(app).size() == 1; }, 20, "fenêtre refermée");
    attendre([&] { return script(vue, "etat.textContent") == "connectée"; }, 20, "réponse reçue");
    attendreJournal("connexion FIN " + hote(oidc));
    app.controleur()->definirBornesConnexion({std::chrono::seconds(3), 30});
    const auto accueil = [&] {
        attendre([&] { return webkit_web_view_get_uri(vue) == espace(); }, 20, "accueil");
    };
    script(vue, "location.href = '" + oidc + "/'; 0");
    GtkWidget* feuille = alerte(app, 15);
    verifier(texte(chercher(feuille, "titre-alerte")) == "Connexion interrompue" &&
                 contient(texte(chercher(feuille, "texte-alerte")), "a pris trop de temps") &&
                 contient(journal(), "connexion EXPIREE " + hote(oidc)),
             journal());
    cliquer(chercher(feuille, "bouton-0"));
    accueil();
    script(vue, "location.href = '" + oidc + "/'; 0");
    patienter(1);  // the bar laid out
    cliquerWidget(exiger(app, "annuler-connexion"));
    attendreJournal("connexion ANNULEE " + hote(oidc));
    accueil();
}

// A space behind HTTP Basic: the native dialog, no time-out while it waits, a retry that says
// so; another site's challenge is refused.
void authentification(ApplicationGtk& app) {
    cliquer(chercher(alerte(app), "bouton-1"));  // "Annuler": the server's refusal shows
    attendreJournal("navigation OK " + espace() + "basic/");
    app.controleur()->webView()->charger(espace() + "basic/", 2.0);
    GtkWidget* dialogue = alerte(app);
    verifier(
        texte(chercher(dialogue, "titre-alerte")) == "Identification requise" &&
            contient(texte(chercher(dialogue, "texte-alerte")),
                     " demande votre identifiant et votre mot de passe pour « Espace Brindex »"),
        texte(chercher(dialogue, "texte-alerte")));
    capturer("identification");
    patienter(3);
    verifier(!contient(journal(), "-1001") && chercherPartout(app, "bouton-0"),
             "aucun délai pendant la question");
    touches(GTK_WINDOW(dialogue), "a n n e Tab f a u x Return");
    patienter(1);
    verifier(contient(texte(chercher(dialogue = alerte(app), "texte-alerte")), "pas été accepté"),
             "le nouvel essai le dit");
    touches(GTK_WINDOW(dialogue), "ctrl+a BackSpace a n n e Tab s e c r e t Return");
    WebKitWebView* vue = vueWebPrincipale(app);
    attendre([&] { return script(vue, "document.title") == "Connectée"; }, 20, "connectée");
    const std::string ailleurs = "http://localhost:" + espace().substr(espace().rfind(':') + 1);
    script(vue,
           "document.body.insertAdjacentHTML('beforeend', '<iframe src=" + ailleurs + "basic/>')");
    attendreJournal("authentification REFUSEE localhost");
}

void reseau(bool present) {
    GInetAddressMask* routes[] = {g_inet_address_mask_new_from_string("0.0.0.0/0", nullptr),
                                  g_inet_address_mask_new_from_string("::/0", nullptr)};
    g_network_monitor_base_set_networks(g_network_monitor_get_default(), routes, present ? 2 : 0);
    for (GInetAddressMask* route : routes) g_object_unref(route);
}

// The space unreachable, then listening while the network is down: its return brings it, once.
void reseauRetabli(ApplicationGtk& app) {
    exiger(app, "explication");
    reseau(false);
    kill(std::stoi(variable("BRINDEX_E2E_SERVEUR_PID")), SIGUSR1);
    patienter(1.5);
    verifier(chercherPartout(app, "explication") != nullptr, "pas d'essai sans réseau");
    reseau(true);
    attendreEspace(app, *gtk::ReglagesGtk::parDefaut().lire("espaceURL"));
    verifier(compter(journal(), "reseau RETABLI nouvel essai") == 1, journal());
}

const Enregistrement inscrits[] = {
    {"connexion-saml",
     {[] { administrer(saml), stockerAdresse(espace() + "saml/"); }, connexionSaml}},
    {"connexion-question",
     {[] { stockerAdresse(espace() + "oidc/"); }, connexionQuestion, connexionRelance}},
    {"connexion-fenetre", {[] { administrer(oidc), espaceStocke(); }, connexionFenetre}},
    {"authentification", {[] { stockerAdresse(espace() + "basic/"); }, authentification}},
    {"reseau-retabli",
     {[] {
          g_setenv("GIO_USE_NETWORK_MONITOR", "base", TRUE);
          stockerAdresse("http://127.0.0.1:" + variable("BRINDEX_E2E_PORT_LIBRE") + "/");
      },
      reseauRetabli}},
};

}  // namespace
}  // namespace brindex::e2e
