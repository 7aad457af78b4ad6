// A space behind its company's sign-in: round trips through real identity providers (SAML and
// OpenID Connect, from npm, on another host), HTTP authentication, the network coming back.

#include <signal.h>

#include <chrono>
#include <filesystem>

#include "pilote.hpp"

// GLib's own test hooks of its plain network monitor (not in its public headers).
extern "C" void g_network_monitor_base_add_network(GNetworkMonitor*, GInetAddressMask*);
extern "C" void g_network_monitor_base_remove_network(GNetworkMonitor*, GInetAddressMask*);

namespace brindex::e2e {
namespace {

using gtk::ApplicationGtk;

std::string oidc() {
    return variable("BRINDEX_E2E_OIDC");
}
std::string saml() {
    return variable("BRINDEX_E2E_SAML");
}
// "127.0.0.2:port", as the bar and the log name it.
std::string hote(const std::string& url) {
    return url.substr(url.find("//") + 2);
}
std::string barre(const std::string& url) {
    return "Connexion via " + hote(url) + " (non sécurisée)";
}

// The administrator lists sign-in sites for the machine.
void administrer(const std::string& origines) {
    const auto dossier = std::filesystem::path(variable("BRINDEX_E2E_PROFIL")) / "xdg";
    std::filesystem::create_directories(dossier / "brindex");
    std::ofstream(dossier / "brindex" / "brindex.conf")
        << "[brindex]\noriginesConnexion=" << origines << ";\n";
    g_setenv("XDG_CONFIG_DIRS", dossier.c_str(), TRUE);
}

// The page the view shows once it has loaded from `debut`.
WebKitWebView* page(WebKitWebView* vue, const std::string& debut) {
    attendre([&] { const char* uri = webkit_web_view_get_uri(vue);
                   return uri && contient(uri, debut) && !webkit_web_view_is_loading(vue); },
             30, "page " + debut);
    return vue;
}

// What the log holds since this run of the application started.
std::string journalDuLancement() {
    const std::string tout = journal();
    return tout.substr(tout.rfind("demarrage v1.0.0"));
}

// An administrator-listed SAML provider: no question, a bar, the trip's rules, the answer
// posted back by the provider's page itself.
void connexionSaml(ApplicationGtk& app) {
    attendreJournal("connexion DEBUT " + hote(saml()));
    WebKitWebView* vue = page(vueWebPrincipale(app), saml() + "/saml/sso");
    verifier(texte(exiger(app, "texte-connexion")) == barre(saml()), "la barre");
    verifier(gtk_window_get_title(principale(app)) == barre(saml()), "le titre");
    verifier(!chercherPartout(app, "bouton-0"), "aucune question pour un site listé");
    capturer("connexion-saml");
    // A click elsewhere goes to the browser; a script sending the page elsewhere is refused.
    script(vue, "const a = document.createElement('a'); a.id = 'ailleurs'; a.textContent = 'x';"
                " a.href = 'https://www.brindex.example/aide'; a.style = 'position:fixed;"
                "top:0;left:0;padding:30px;background:#fff'; document.body.append(a); 'ok'");
    cliquerDans(vue, "#ailleurs");
    attendreOuvert([](const std::string& o) { return o == "https://www.brindex.example/aide"; },
                   "le lien remis au navigateur");
    script(vue, "location.href = 'https://www.brindex.example/'; 'ok'");
    attendreJournal("connexion REFUSEE vers www.brindex.example");
    cliquerDans(vue, "#btn-sign-in");
    attendreJournal("connexion FIN " + hote(saml()));
    page(vue, espace() + "saml/");
    attendre([&] { return !chercherPartout(app, "barre-connexion") &&
                          gtk_window_get_title(principale(app)) == std::string("Connectée"); },
             10, "barre et titre rendus");
    // Back never lands on the provider's pages, and no secret reaches the log.
    touches(principale(app), "ctrl+bracketleft");
    patienter(1);
    verifier(webkit_web_view_get_uri(vue) == espace() + "saml/", "l'espace reste");
    for (const char* secret : {"SAMLRequest", "SAMLResponse", "RelayState", "?"}) {
        verifier(!contient(journalDuLancement(), secret), journal());
    }
}

// An unknown OpenID Connect provider asks first; "Annuler" explains, "Continuer" signs in.
void connexionQuestion(ApplicationGtk& app) {
    GtkWidget* question = alerte(app);
    verifier(texte(chercher(question, "titre-alerte")) == "Connexion à votre espace", "titre");
    verifier(contient(texte(chercher(question, "texte-alerte")),
                      "vous envoie vers " + hote(oidc()) + " pour vous identifier"),
             texte(chercher(question, "texte-alerte")));
    capturer("connexion-question");
    touches(GTK_WINDOW(question), "Escape");
    verifier(texte(exiger(app, "titre-erreur")) == "Connexion refusée" &&
                 contient(texte(exiger(app, "explication")), hote(oidc())),
             "l'explication");
    attendreJournal("connexion REFUSEE vers " + hote(oidc()));
    touches(principale(app), "Return");  // "Réessayer"
    cliquerWidget(chercher(alerte(app), "bouton-0"));
    WebKitWebView* vue = page(vueWebPrincipale(app), oidc() + "/interaction/");
    cliquerDans(vue, "input[name=login]");
    touches(principale(app), "a n n e Tab s e c r e t Return");
    attendreJournal("connexion FIN " + hote(oidc()));
    page(vue, espace() + "oidc/");
    verifier(gtk::ReglagesGtk::parDefaut().lire("connexionsApprouvees") == oidc(), "approuvé");
}

// After a restart: no question, and the provider's own session spares its form.
void connexionRelance(ApplicationGtk& app) {
    page(attendreEspace(app, espace() + "oidc/"), espace() + "oidc/");
    const std::string lancement = journalDuLancement();
    verifier(contient(lancement, "connexion FIN " + hote(oidc())) &&
                 !contient(lancement, "/interaction/") && !chercherPartout(app, "bouton-0"),
             lancement);
}

void connexionFenetre(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    script(vue, "location.href = '/oidc/fenetre'; 'ok'");
    cliquerDans(page(vue, "oidc/fenetre"), "#connexion");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre de connexion");
    GtkWindow* fenetre = fenetresVisibles(app)[0] == principale(app) ? fenetresVisibles(app)[1]
                                                                     : fenetresVisibles(app)[0];
    verifier(texte(chercher(GTK_WIDGET(fenetre), "texte-connexion")) == barre(oidc()) &&
                 gtk_window_get_title(fenetre) == barre(oidc()),
             "barre et titre de la fenêtre");
    WebKitWebView* pv = page(vueWebDe(GTK_WIDGET(fenetre)), oidc() + "/interaction/");
    capturer("connexion-fenetre");
    cliquerDans(pv, "input[name=login]");
    touches(fenetre, "a n n e Tab s e c r e t Return");
    // The provider's page hands the answer to its opener, then closes its own window.
    attendre([&] { return fenetresVisibles(app).size() == 1; }, 20, "fenêtre refermée");
    attendre([&] { return script(vue, "document.getElementById('etat').textContent") ==
                          "connectée"; },
             20, "réponse reçue par la page");
    attendreJournal("connexion FIN " + hote(oidc()));
}

void connexionExpiree(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    app.controleur()->definirBornesConnexion({std::chrono::seconds(3), 30});
    script(vue, "location.href = '/oidc/'; 'ok'");
    attendreJournal("connexion DEBUT " + hote(oidc()));
    GtkWidget* feuille = alerte(app, 15);
    verifier(texte(chercher(feuille, "titre-alerte")) == "Connexion interrompue" &&
                 contient(texte(chercher(feuille, "texte-alerte")), "a pris trop de temps"),
             texte(chercher(feuille, "texte-alerte")));
    verifier(contient(journal(), "connexion EXPIREE " + hote(oidc())), journal());
    cliquer(chercher(feuille, "bouton-0"));
    attendreJournal("navigation OK " + espace(), 2);
    verifier(!chercherPartout(app, "barre-connexion"), "barre retirée");
}

// A space behind HTTP Basic: the native dialog, no time-out while it waits, a retry that says
// so; another site's challenge is refused.
void authentification(ApplicationGtk& app) {
    cliquer(chercher(alerte(app), "bouton-1"));  // "Annuler": the server's refusal shows
    attendreJournal("navigation OK " + espace() + "basic/");
    app.controleur()->webView()->charger(espace() + "basic/", 2.0);
    GtkWidget* dialogue = alerte(app);
    verifier(texte(chercher(dialogue, "titre-alerte")) == "Identification requise" &&
                 contient(texte(chercher(dialogue, "texte-alerte")),
                          hote(espace()).substr(0, hote(espace()).size() - 1) +
                              " demande votre identifiant et votre mot de passe pour « Espace "
                              "Brindex »."),
             texte(chercher(dialogue, "texte-alerte")));
    capturer("authentification");
    patienter(3);
    verifier(!contient(journal(), "-1001") && chercherPartout(app, "bouton-0"),
             "aucun délai pendant la question");
    touches(GTK_WINDOW(dialogue), "a n n e Tab f a u x Return");
    attendre([&] { GtkWidget* t = chercherPartout(app, "texte-alerte");
                   return t && contient(texte(t), "n'a pas été accepté"); },
             20, "le nouvel essai le dit");
    dialogue = alerte(app);
    touches(GTK_WINDOW(dialogue), "ctrl+a BackSpace a n n e Tab s e c r e t Return");
    WebKitWebView* vue = page(vueWebPrincipale(app), "basic/");
    attendre([&] { return script(vue, "document.title") == "Connectée"; }, 20, "connectée");
    const std::string port = espace().substr(espace().rfind(':') + 1);
    script(vue, "document.body.append(Object.assign(document.createElement('iframe'), {src: "
                "'http://localhost:" + port + "basic/'})); 'ok'");
    attendreJournal("authentification REFUSEE localhost");
}

void reseau(bool present) {
    for (const char* masque : {"0.0.0.0/0", "::/0"}) {
        GInetAddressMask* m = g_inet_address_mask_new_from_string(masque, nullptr);
        (present ? g_network_monitor_base_add_network
                 : g_network_monitor_base_remove_network)(g_network_monitor_get_default(), m);
        g_object_unref(m);
    }
}

void reseauRetabli(ApplicationGtk& app) {
    exiger(app, "explication");
    reseau(false);
    kill(std::stoi(variable("BRINDEX_E2E_SERVEUR_PID")), SIGUSR1);
    patienter(1.5);
    verifier(chercherPartout(app, "explication") != nullptr, "pas d'essai sans réseau");
    reseau(true);
    attendreEspace(app, *gtk::ReglagesGtk::parDefaut().lire("espaceURL"));
    verifier(compter(journal(), "reseau RETABLI nouvel essai") == 1, journal());
    kill(std::stoi(variable("BRINDEX_E2E_SERVEUR_PID")), SIGUSR2);
}

const Enregistrement inscrits[] = {
    {"connexion-saml",
     {[] {
          administrer(saml());
          stockerAdresse(espace() + "saml/");
      },
      connexionSaml}},
    {"connexion-question", {[] { stockerAdresse(espace() + "oidc/"); }, connexionQuestion}},
    {"connexion-relance", {nullptr, connexionRelance}},
    {"connexion-fenetre", {[] { administrer(oidc()), espaceStocke(); }, connexionFenetre}},
    {"connexion-expiree", {[] { administrer(oidc()), espaceStocke(); }, connexionExpiree}},
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
