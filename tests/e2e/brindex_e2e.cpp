// End-to-end scenarios of the Linux application: the real GTK windows and WebKitGTK views,
// against the local test space, in a throw-away profile (see scenario.py).

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

#include "log/journal.hpp"
#include "pilote.hpp"
#include "reglages_gtk.hpp"

namespace brindex::e2e {
namespace {

namespace fs = std::filesystem;
using gtk::ApplicationGtk;

// Every text the configuration view's status line took since launch.
std::vector<std::string> messagesVus;

void suivreMessages(ApplicationGtk& app) {
    GtkWidget* message = chercherPartout(app, "messageErreur");
    if (!message) return;
    messagesVus.push_back(texte(message));
    g_signal_connect(message, "notify::label",
                     G_CALLBACK(+[](GObject* label, GParamSpec*, gpointer) {
                         messagesVus.push_back(gtk_label_get_text(GTK_LABEL(label)));
                     }),
                     nullptr);
}

std::string espace() {
    return variable("BRINDEX_E2E_ESPACE");
}

void stockerAdresse(const std::string& url) {
    gtk::ReglagesGtk::parDefaut().ecrire("espaceURL", url);
}

GtkWidget* exiger(ApplicationGtk& app, const std::string& nom, double secondes = 20) {
    GtkWidget* widget = nullptr;
    attendre([&] { return (widget = chercherPartout(app, nom)) != nullptr; }, secondes,
             "widget " + nom);
    return widget;
}

void attendreJournal(const std::string& morceau, double secondes = 30) {
    attendre([&] { return contient(journal(), morceau); }, secondes, "journal : " + morceau);
}

// The space shown and its first page loaded.
WebKitWebView* attendreEspace(ApplicationGtk& app, const std::string& url) {
    WebKitWebView* vue = nullptr;
    attendre([&] { return (vue = vueWebPrincipale(app)) != nullptr; }, 30, "l'espace");
    attendreJournal("navigation OK " + url);
    return vue;
}

// Waits until a URI handed to the default handlers satisfies `condition`.
void attendreOuvert(const std::function<bool(const std::string&)>& condition,
                    const std::string& quoi) {
    attendre(
        [&] {
            for (const auto& o : ouverts()) {
                if (condition(o)) return true;
            }
            return false;
        },
        20, quoi);
}

bool requeteVue(const std::string& chemin, const std::string& morceau) {
    for (const auto& ligne : requetes()) {
        if (contient(ligne, "\"" + chemin + "\"") && contient(ligne, morceau)) return true;
    }
    return false;
}

// ---- Scenarios ----

void premierDemarrage(ApplicationGtk& app) {
    GtkWidget* champ = exiger(app, "champ");
    GtkWidget* message = exiger(app, "messageErreur");
    GtkWidget* roue = exiger(app, "roue");
    verifier(texte(champ).empty(), "le champ devrait être vide");
    verifier(gtk_widget_has_focus(gtk_widget_get_first_child(champ)) || gtk_widget_has_focus(champ),
             "le champ devrait avoir le focus");
    // The built-in addresses are tried, none answers, and nothing is shown.
    attendre([&] { return texte(message).empty() && !gtk_spinner_get_spinning(GTK_SPINNER(roue)); },
             40, "fin de la recherche des adresses par défaut");
    verifier(messagesVus.size() >= 2 && messagesVus[0] == "Recherche de votre espace…" &&
                 messagesVus.back().empty(),
             "la recherche s'est montrée puis effacée");
    verifier(texte(champ).empty(), "aucune adresse par défaut ne répond");
    verifier(!gtk_widget_get_visible(exiger(app, "boutonForcer")),
             "« Enregistrer quand même » caché");
    capturer("configuration");

    // An address that is not one.
    gtk_editable_set_text(GTK_EDITABLE(champ), "pas une adresse");
    cliquer(exiger(app, "bouton"));
    verifier(contient(texte(message), "Adresse invalide — exemple :"), texte(message));
    capturer("configuration-invalide");

    gtk_editable_set_text(GTK_EDITABLE(champ), espace().c_str());
    verifier(texte(message).empty(), "taper efface le message");
    cliquer(exiger(app, "bouton"));
    verifier(!gtk_widget_get_sensitive(champ), "le champ est désactivé pendant la vérification");
    verifier(texte(message) == "Vérification de l'adresse…", texte(message));

    WebKitWebView* vue = attendreEspace(app, espace());
    verifier(requeteVue("/health", "\"Brindex-Desktop/1.0.0\""),
             "/health demandé avec l'agent « Brindex-Desktop/1.0.0 »");
    verifier(gtk::ReglagesGtk::parDefaut().lire("espaceURL") == espace(), "adresse enregistrée");
    verifier(requeteVue("/", "Brindex-Desktop/1.0.0\""),
             "la page demandée avec un agent finissant par Brindex-Desktop/1.0.0");
    verifier(contient(journal(), "demarrage v1.0.0"), "ligne de démarrage");
    const std::string titre = script(vue, "document.title");
    attendre(
        [&] {
            return titre == gtk_window_get_title(app.plateforme()->fenetrePrincipale()->fenetre());
        },
        10, "titre de la fenêtre = titre de la page");
    const std::string agent = script(vue, "navigator.userAgent");
    verifier(agent.size() > 21 && agent.ends_with("Brindex-Desktop/1.0.0"), agent);
    capturer("espace");
}

void injoignable(ApplicationGtk& app) {
    GtkWidget* explication = exiger(app, "explication");
    verifier(contient(texte(explication), "Le serveur de votre espace ne répond pas"),
             texte(explication));
    verifier(contient(journal(), "navigation ECHEC NSURLErrorDomain/-1004"), journal());
    capturer("erreur");
    const std::string url = gtk::ReglagesGtk::parDefaut().lire("espaceURL").value_or("");
    const int port = std::stoi(url.substr(url.rfind(':') + 1));
    WebKitWebView* vue = nullptr;
    {
        Serveur serveur(port);
        cliquer(exiger(app, "reessayer"));
        vue = attendreEspace(app, url);
    }
    // Once the space has loaded, a failure leaves the page and says so over the window.
    script(vue, "location.href = '/equipe'; 'ok'");
    GtkWidget* feuille = GTK_WIDGET(gtk_widget_get_root(exiger(app, "bouton-0")));
    verifier(texte(chercher(GTK_WIDGET(feuille), "titre-alerte")) == "Page inaccessible",
             "titre de la feuille");
    verifier(contient(texte(chercher(GTK_WIDGET(feuille), "texte-alerte")),
                      "Le serveur de votre espace ne répond pas"),
             "explication de la feuille");
    verifier(gtk_window_get_transient_for(GTK_WINDOW(feuille)) ==
                 app.plateforme()->fenetrePrincipale()->fenetre(),
             "attachée à la fenêtre principale");
    verifier(vueWebPrincipale(app) == vue, "la page reste");
    cliquer(chercher(GTK_WIDGET(feuille), "bouton-0"));
}

// WebKitGTK has no time-out of its own for a load: the application's applies.
void delaiDepasse(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, espace());
    const auto active = app.controleur()->webViewActive();
    // A server that answers in time: nothing is said, even once the delay has gone by.
    active->charger(espace() + "equipe", 2.0);
    attendreJournal("navigation OK " + espace() + "equipe");
    patienter(2.5);
    verifier(!chercherPartout(app, "bouton-0"), "aucune alerte pour une page arrivée à temps");
    // One that keeps the page waiting longer than the delay.
    active->charger(espace() + "lent", 1.0);
    GtkWidget* feuille = GTK_WIDGET(gtk_widget_get_root(exiger(app, "bouton-0", 10)));
    verifier(texte(chercher(feuille, "titre-alerte")) == "Page inaccessible", "titre");
    verifier(contient(texte(chercher(feuille, "texte-alerte")),
                      "Le serveur de votre espace ne répond pas"),
             "explication");
    verifier(contient(journal(), "navigation ECHEC NSURLErrorDomain/-1001"), journal());
    verifier(vueWebPrincipale(app) == vue, "la page reste");
    cliquer(chercher(feuille, "bouton-0"));
}

void lienExterne(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, espace());
    cliquerDans(vue, "#lien-externe");
    attendreOuvert([](const std::string& o) { return o == "https://www.brindex.example/"; },
                   "le lien externe remis au navigateur par défaut");
    cliquerDans(vue, "#lien-courriel");
    attendreOuvert([](const std::string& o) { return o.rfind("mailto:", 0) == 0; },
                   "le lien mailto remis à la messagerie");
    patienter(0.5);
    verifier(webkit_web_view_get_uri(vue) == espace(), "la page reste");
    verifier(!contient(journal(), "REFUSEE"), "rien de refusé");
}

void redirectionScript(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, espace());
    const std::string page = espace() + "redirection";
    script(vue, "location.href = '/redirection'; 'ok'");
    attendreJournal("navigation OK " + page);
    attendreJournal("navigation externe automatique REFUSEE vers www.brindex.example");
    patienter(0.5);
    verifier(webkit_web_view_get_uri(vue) == page, "la page reste");
    for (const auto& o : ouverts()) {
        verifier(!contient(o, "brindex.example"), "rien n'est ouvert dans le navigateur");
    }
}

void popup(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, espace());
    cliquerDans(vue, "#ouvrir-fenetre");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre secondaire");
    verifier(app.controleur()->fenetresSecondaires().size() == 1, "une fenêtre secondaire");
    GtkWindow* secondaire = nullptr;
    for (GtkWindow* f : fenetresVisibles(app)) {
        if (f != app.plateforme()->fenetrePrincipale()->fenetre()) secondaire = f;
    }
    verifier(g_strcmp0(gtk_window_get_title(secondaire), "Brindex") == 0, "titre « Brindex »");
    auto* vueSecondaire = WEBKIT_WEB_VIEW(gtk_window_get_child(secondaire));
    bool liberee = false;
    g_object_weak_ref(
        G_OBJECT(vueSecondaire), [](gpointer d, GObject*) { *static_cast<bool*>(d) = true; },
        &liberee);
    attendreJournal("navigation OK " + espace() + "fenetre");
    capturer("fenetre-secondaire");
    script(vueSecondaire, "setTimeout(() => window.close(), 0); 'ok'");
    attendre([&] { return fenetresVisibles(app).size() == 1; }, 20, "fermeture demandée");
    verifier(app.controleur()->fenetresSecondaires().empty(), "liste vidée");
    verifier(app.controleur()->originesWebView().size() == 1, "seule la vue principale reste");
    attendre([&] { return liberee; }, 10, "la vue de la fenêtre fermée est libérée");

    // A blank window that the page writes into is held to the page's origin.
    cliquerDans(vue, "#ouvrir-vierge");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre vierge");
    verifier(app.controleur()->originesWebView().size() == 2, "tenue à l'origine de l'ouvreur");

    // Closing the main window closes the others and ends the application; its size stays.
    gtk_window_close(app.plateforme()->fenetrePrincipale()->fenetre());
    attendre([&] { return fenetresVisibles(app).empty(); }, 10, "toutes les fenêtres fermées");
    verifier(app.controleur()->fenetresSecondaires().empty(), "liste vidée");
    verifier(gtk::ReglagesGtk::parDefaut().lire("BrindexPrincipaleLargeur") == "1280",
             "taille de la fenêtre enregistrée");
}

void telechargement(ApplicationGtk& app) {
    const fs::path dossier = variable("BRINDEX_E2E_TELECHARGEMENTS");
    std::ofstream(dossier / "rapport.pdf") << "déjà là";
    WebKitWebView* vue = attendreEspace(app, espace());
    script(vue, "document.getElementById('piece-jointe').click(); 'ok'");
    const fs::path attendu = dossier / "rapport (2).pdf";
    attendreJournal("rapport (2).pdf");
    verifier(fs::exists(attendu), "« rapport (2).pdf » enregistré");
    verifier(lireFichier((dossier / "rapport.pdf").string()) == "déjà là", "l'existant intact");
    verifier(fs::file_size(attendu) > 0, "contenu reçu");
    // Handed over as a path or as a file URI.
    attendreOuvert(
        [&](const std::string& o) { return o == dossier.string() || o.rfind("file://", 0) == 0; },
        "le dossier montré dans le gestionnaire de fichiers");
    verifier(webkit_web_view_get_uri(vue) == espace(), "la page reste");
}

// Opens a page dialog from a script and gives the alert window once it shows.
GtkWidget* ouvrirDialogue(ApplicationGtk& app, WebKitWebView* vue, const std::string& appel) {
    script(vue, "window.r = undefined; setTimeout(() => { window.r = " + appel + "; }, 0); 'ok'");
    GtkWidget* bouton = exiger(app, "bouton-0");
    GtkWidget* fenetre = GTK_WIDGET(gtk_widget_get_root(bouton));
    verifier(g_strcmp0(gtk_window_get_title(GTK_WINDOW(fenetre)), "Brindex") == 0, "titre Brindex");
    verifier(texte(bouton) == "OK", "premier bouton OK");
    return fenetre;
}

std::string reponsePage(ApplicationGtk& app, WebKitWebView* vue) {
    attendre([&] { return !chercherPartout(app, "bouton-0"); }, 10, "fermeture du dialogue");
    std::string r;
    attendre(
        [&] { return (r = script(vue, "JSON.stringify(window.r) ?? 'undefined'")) != "undefined"; },
        10, "réponse reçue par la page");
    return r;
}

void dialogues(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, espace());

    GtkWidget* f = ouvrirDialogue(app, vue, "(alert('Bonjour'), 'vu')");
    verifier(texte(chercher(f, "texte-alerte")) == "Bonjour", "message de l'alerte");
    verifier(!chercher(f, "bouton-1"), "une alerte n'a qu'un bouton");
    capturer("alerte");
    cliquer(chercher(f, "bouton-0"));
    verifier(reponsePage(app, vue) == "\"vu\"", "alerte fermée");

    f = ouvrirDialogue(app, vue, "confirm('Continuer ?')");
    verifier(texte(chercher(f, "bouton-1")) == "Annuler", "second bouton Annuler");
    cliquer(chercher(f, "bouton-1"));
    verifier(reponsePage(app, vue) == "false", "confirm → false");
    f = ouvrirDialogue(app, vue, "confirm('Continuer ?')");
    cliquer(chercher(f, "bouton-0"));
    verifier(reponsePage(app, vue) == "true", "confirm → true");

    f = ouvrirDialogue(app, vue, "prompt('Votre nom ?', 'Anne')");
    GtkWidget* champ = chercher(f, "champ-dialogue");
    verifier(texte(champ) == "Anne", "texte par défaut");
    gtk_editable_set_text(GTK_EDITABLE(champ), "Zoé");
    cliquer(chercher(f, "bouton-0"));
    verifier(reponsePage(app, vue) == "\"Zoé\"", "prompt → texte saisi");
    f = ouvrirDialogue(app, vue, "prompt('Votre nom ?')");
    cliquer(chercher(f, "bouton-0"));
    verifier(reponsePage(app, vue) == "\"\"", "prompt vide → texte vide");
    f = ouvrirDialogue(app, vue, "prompt('Votre nom ?', 'Anne')");
    cliquer(chercher(f, "bouton-1"));
    verifier(reponsePage(app, vue) == "null", "prompt annulé → null");
}

// ---- Hostile pages and servers ----

std::size_t compter(const std::string& texte, const std::string& morceau) {
    std::size_t n = 0;
    for (auto i = texte.find(morceau); i != std::string::npos; i = texte.find(morceau, i + 1)) ++n;
    return n;
}

double secondesDepuis(gint64 debut) {
    return static_cast<double>(g_get_monotonic_time() - debut) / G_USEC_PER_SEC;
}

void pageHostile(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, espace());
    GtkWindow* principale = app.plateforme()->fenetrePrincipale()->fenetre();

    // An "unsaved changes" page: a click in it, then Ctrl+R reloads it, and nothing breaks.
    const std::string brouillon = "navigation OK " + espace() + "hostile/quitter";
    script(vue, "location.href = '/hostile/quitter'; 'ok'");
    attendreJournal(brouillon);
    cliquerDans(vue, "#texte");
    touches(principale, "ctrl+r");
    attendre([&] { return compter(journal(), brouillon) == 2; }, 10, "page rechargée");

    // Clicks a script makes on links elsewhere launch nothing, and are noted.
    script(vue, "location.href = '/hostile/clics'; 'ok'");
    attendreJournal("navigation externe automatique REFUSEE vers mailto:x@brindex.example");
    verifier(compter(journal(), "REFUSEE vers www.brindex.example") == 4, journal());
    verifier(ouverts().empty(), "rien n'est lancé");

    // One click on a page that opens 300 windows: one window.
    cliquerDans(vue, "#flot");
    attendreJournal("nouvelle fenetre REFUSEE, les suivantes ne sont plus notees");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 10, "une fenêtre");
    patienter(0.5);
    verifier(
        fenetresVisibles(app).size() == 2 && app.controleur()->fenetresSecondaires().size() == 1,
        "une seule fenêtre secondaire");
    app.controleur()->fermerFenetresSecondaires();

    // One unbroken word of 64 KiB in an alert: shown at once, as an excerpt.
    gint64 debut = g_get_monotonic_time();
    GtkWidget* f = ouvrirDialogue(app, vue, "(alert('x'.repeat(65536)), 'vu')");
    verifier(secondesDepuis(debut) < 3,
             "alerte montrée en " + std::to_string(secondesDepuis(debut)));
    verifier(texte(chercher(f, "texte-alerte")) == std::string(1000, 'x') + "…", "extrait");
    touches(GTK_WINDOW(f), "Return");
    verifier(reponsePage(app, vue) == "\"vu\"", "alerte fermée par Entrée");

    // A prompt's default text beyond what the field holds comes back whole.
    f = ouvrirDialogue(app, vue, "prompt('Jeton ?', 'j'.repeat(100000)).length");
    touches(GTK_WINDOW(f), "Return");
    verifier(reponsePage(app, vue) == "100000", "texte par défaut rendu entier");
}

void telechargementsHostiles(ApplicationGtk& app) {
    const fs::path dossier = variable("BRINDEX_E2E_TELECHARGEMENTS");
    // A file of the user's named like the engine's working file for "note.txt".
    std::ofstream(dossier / "note.txt.wkdownload") << "à moi";
    WebKitWebView* vue = attendreEspace(app, espace());

    // Five downloads of one name at once: five files, each its own.
    script(vue,
           "for (let i = 1; i <= 5; i++) { const f = document.createElement('iframe');"
           " f.src = '/hostile/note?lent=1&i=' + i; document.body.append(f); } 'ok'");
    attendre([&] { return compter(journal(), "telechargement ") == 5; }, 20,
             "cinq téléchargements");
    std::set<std::string> contenus;
    for (int i = 2; i <= 6; ++i) {
        const std::string nom = "note (" + std::to_string(i) + ").txt";
        verifier(contient(journal(), "telechargement OK " + nom), journal());
        contenus.insert(lireFichier((dossier / nom).string()));
    }
    verifier(contenus.size() == 5, "cinq contenus différents");
    verifier(lireFichier((dossier / "note.txt.wkdownload").string()) == "à moi", "fichier intact");

    // A name too long once the engine's suffix is added is shortened, and saved.
    std::string nom;
    for (int i = 0; i < 125; ++i) nom += "é";
    script(vue, "location.href = '/hostile/note?nom=" + nom + ".txt'; 'ok'");
    attendre([&] { return compter(journal(), "telechargement OK ") == 6; }, 10, "nom long");
    verifier(!contient(journal(), "ECHEC"), journal());

    // A failure whose reason is 20,000 characters with control bytes: a bounded alert, at once,
    // and one clean log line.
    const gint64 debut = g_get_monotonic_time();
    webkit_web_view_download_uri(vue, (espace() + "hostile/echec?long=20000").c_str());
    GtkWidget* ok = exiger(app, "bouton-0");
    verifier(secondesDepuis(debut) < 5, "alerte en " + std::to_string(secondesDepuis(debut)));
    GtkWidget* f = GTK_WIDGET(gtk_widget_get_root(ok));
    verifier(texte(chercher(f, "titre-alerte")) == "Téléchargement impossible", "titre");
    verifier(texte(chercher(f, "texte-alerte")).size() <= 1003 + 3, "extrait");
    const auto echec = lignes(Journal::chemin()).back();
    verifier(
        contient(echec, "telechargement ECHEC") && echec.size() < 2100 && !contient(echec, "\x1b"),
        echec);
    touches(GTK_WINDOW(f), "Return");
}

// The web content process of the page, a descendant of this process.
int processusWeb() {
    for (const auto& entree : fs::directory_iterator("/proc")) {
        const std::string pid = entree.path().filename();
        if (pid.find_first_not_of("0123456789") != std::string::npos) continue;
        if (!contient(lireFichier("/proc/" + pid + "/comm"), "WebKitWebProces")) continue;
        for (std::string p = pid; !p.empty() && p != "1";) {
            if (p == std::to_string(getpid())) return std::stoi(pid);
            const std::string stat = lireFichier("/proc/" + p + "/stat");
            const auto apres = stat.rfind(')');
            if (apres == std::string::npos) break;
            std::istringstream champs(stat.substr(apres + 2));
            std::string etat;
            champs >> etat >> p;
        }
    }
    return 0;
}

// A space stored as the user typed it, in a form the engine writes differently; then its web
// process dies, twice.
void processusWebMort(ApplicationGtk& app) {
    attendreEspace(app, espace());
    verifier(!contient(journal(), "REFUSEE"), journal());
    int pid = processusWeb();
    verifier(pid > 0, "processus web introuvable");
    kill(pid, SIGKILL);
    attendreJournal("processus web ECHEC plantage");
    attendre([&] { return compter(journal(), "navigation OK " + espace()) == 2; }, 20,
             "page rechargée");
    pid = processusWeb();
    verifier(pid > 0, "nouveau processus web introuvable");
    kill(pid, SIGKILL);
    GtkWidget* explication = exiger(app, "explication");
    verifier(contient(texte(explication), "s'est arrêtée de façon inattendue"), texte(explication));
}

// The log's place holds a FIFO nobody reads: the application starts all the same.
void journalFifo(ApplicationGtk& app) {
    WebKitWebView* vue = nullptr;
    attendre([&] { return (vue = vueWebPrincipale(app)) != nullptr; }, 20, "l'espace");
    attendre([&] { return !webkit_web_view_is_loading(vue); }, 20, "chargement");
    verifier(webkit_web_view_get_uri(vue) == espace(), "la page de l'espace");
}

struct Scenario {
    std::function<void()> avant;
    std::function<void(ApplicationGtk&)> deroulement;
};

const std::map<std::string, Scenario>& scenarios() {
    static const std::map<std::string, Scenario> tous{
        {"premier-demarrage", {nullptr, premierDemarrage}},
        {"injoignable",
         {[] { stockerAdresse("http://127.0.0.1:" + std::to_string(portLibre()) + "/"); },
          injoignable}},
        {"delai-depasse", {[] { stockerAdresse(espace()); }, delaiDepasse}},
        {"lien-externe", {[] { stockerAdresse(espace()); }, lienExterne}},
        {"redirection-script", {[] { stockerAdresse(espace()); }, redirectionScript}},
        {"popup", {[] { stockerAdresse(espace()); }, popup}},
        {"telechargement", {[] { stockerAdresse(espace()); }, telechargement}},
        {"dialogues", {[] { stockerAdresse(espace()); }, dialogues}},
        {"page-hostile", {[] { stockerAdresse(espace()); }, pageHostile}},
        {"telechargements-hostiles", {[] { stockerAdresse(espace()); }, telechargementsHostiles}},
        {"processus-web",
         {[] {
              const std::string e = espace();
              stockerAdresse("http://0x7f.1" + e.substr(e.rfind(':')));
          },
          processusWebMort}},
        {"journal-fifo",
         {[] {
              stockerAdresse(espace());
              const fs::path etat = fs::path(variable("XDG_STATE_HOME")) / "brindex";
              fs::create_directories(etat);
              verifier(mkfifo((etat / "Brindex.log").c_str(), 0600) == 0, "mkfifo");
          },
          journalFifo}},
    };
    return tous;
}

}  // namespace
}  // namespace brindex::e2e

int main(int argc, char** argv) {
    using namespace brindex::e2e;
    if (argc != 2 || !scenarios().contains(argv[1])) {
        std::cerr << "usage: brindex_e2e <scenario>\n";
        for (const auto& [nom, s] : scenarios()) std::cerr << "  " << nom << "\n";
        return 2;
    }
    const Scenario& scenario = scenarios().at(argv[1]);
    int statut = 0;
    try {
        if (scenario.avant) scenario.avant();
    } catch (const Echec& e) {
        std::cerr << "ÉCHEC : " << e.what() << "\n";
        return 1;
    }
    brindex::gtk::ApplicationGtk application;
    struct Contexte {
        brindex::gtk::ApplicationGtk* application;
        const Scenario* scenario;
        int* statut;
    } contexte{&application, &scenario, &statut};
    // The scenario runs once the launch is over, from the main loop.
    application.apresLancement = [&contexte] {
        suivreMessages(*contexte.application);
        g_idle_add_once(
            [](gpointer d) {
                const auto* c = static_cast<Contexte*>(d);
                try {
                    c->scenario->deroulement(*c->application);
                } catch (const std::exception& e) {
                    std::cerr << "ÉCHEC : " << e.what() << "\n";
                    *c->statut = 1;
                }
                g_application_quit(G_APPLICATION(c->application->application()));
            },
            &contexte);
    };
    char* arguments[] = {argv[0], nullptr};
    application.executer(1, arguments);
    if (statut == 0) std::cout << "scénario réussi : " << argv[1] << "\n";
    return statut;
}
