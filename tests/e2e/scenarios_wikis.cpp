// What staff must not lose: unsaved edits, a sign-in, a file the page made; on the test space and
// on real wikis (scripts/wiki_reel.py), text typed with a French keyboard.

#include "pilote.hpp"

namespace brindex::e2e {
namespace {

using gtk::ApplicationGtk;

// The user's command, if any, then the question before a page is left, on its window (the main
// one unless said): answered by a key, or "Quitter la page".
void question(ApplicationGtk& app, const char* commande, const char* touche = nullptr,
              GtkWindow* fenetre = nullptr) {
    fenetre = fenetre ? fenetre : principale(app);
    if (commande) touches(principale(app), commande);
    GtkWidget* f = alerte(app);
    verifier(texte(chercher(f, "titre-alerte")) == "Quitter cette page ?" &&
                 gtk_window_get_transient_for(GTK_WINDOW(f)) == fenetre,
             "la question, sur la fenêtre de la page");
    capturer("question-depart");
    // The next question may take the same address.
    g_object_add_weak_pointer(G_OBJECT(f), reinterpret_cast<gpointer*>(&f));
    touche ? touches(GTK_WINDOW(f), touche) : cliquerWidget(chercher(f, "bouton-1"));
    attendre([&] { return f == nullptr; }, 10, "question répondue");
}

void aller(WebKitWebView* vue, const std::string& base, const std::string& chemin) {
    script(vue, "location.href = '" + base + chemin + "'; 'ok'");
    attendreJournal("navigation OK " + base + chemin, compter(journal(), base + chemin) + 1);
}

void quand(WebKitWebView* vue, const std::string& js) {
    attendre([&] { return script(vue, js) == "true"; }, 20, js);
}

void departs(ApplicationGtk& app) {
    const std::string dossier = variable("BRINDEX_E2E_TELECHARGEMENTS") + "/";
    WebKitWebView* vue = attendreEspace(app);
    // Files the page makes: saved on the user's click; the page's own attempt without the user,
    // and showing the file, are refused.
    aller(vue, espace(), "hostile/export");
    for (const char* bouton : {"#blob", "#data", "#voir"}) cliquerDans(vue, bouton);
    attendreJournal("navigation REFUSEE scheme=blob", 2);
    attendreJournal("telechargement OK tableau.csv");
    verifier(lireFichier(dossier + "export.txt") == "Exporté par la page\n" &&
                 lireFichier(dossier + "tableau.csv") == "a;b" &&
                 webkit_web_view_get_uri(vue) == espace() + "hostile/export",
             "les fichiers de la page enregistrés, la page reste");
    aller(vue, espace(), "hostile/quitter");
    cliquerDans(vue, "#texte");
    // Reload and a change of space ask first, Return and Escape stay; quitting meanwhile waits for
    // the answer. History asks too, and "Quitter la page" leaves.
    for (const char* touche : {"ctrl+r", "ctrl+shift+k"}) {
        touches(principale(app), touche);
        question(app, "ctrl+q", touche[5] == 'r' ? "Return" : "Escape");
    }
    question(app, "ctrl+bracketleft");
    attendre([&] { return contient(webkit_web_view_get_uri(vue), "export"); }, 10, "précédente");
    verifier(compter(journal(), "hostile/quitter") == 1, "jamais rechargée");
    // Quitting asks each page in turn; staying on one keeps everything.
    aller(vue, espace(), "hostile/quitter");
    cliquerDans(vue, "#fenetre");
    attendreJournal("navigation OK " + espace() + "hostile/quitter", 3);
    GtkWindow* pop = fenetresVisibles(app)[fenetresVisibles(app)[0] == principale(app) ? 1 : 0];
    cliquerDans(vueWebDe(GTK_WIDGET(pop)), "#texte");
    for (const char* reponse : {"Return", static_cast<const char*>(nullptr)}) {
        verifier(fenetresVisibles(app).size() == 2, "rien n'est fermé");
        question(app, "ctrl+q");
        question(app, nullptr, reponse, pop);
    }
    attendre([&] { return fenetresVisibles(app).empty(); }, 20, "l'application finie");
}

// é è à ç ù typed directly, ê and ï through the dead keys.
const char* const accents[] = {"type 'éèàçù'", "dead_circumflex e dead_diaeresis i"};
const char* const connectee = "!!document.querySelector('a[href*=\"do=logout\"]')";

void dokuwiki(ApplicationGtk& app) {
    // Once connected: the X server resets its keyboard when its last client leaves.
    verifier(g_spawn_command_line_sync("setxkbmap fr", nullptr, nullptr, nullptr, nullptr), "fr");
    const std::string wiki = variable("BRINDEX_E2E_WIKI");
    WebKitWebView* vue = attendreEspace(app, wiki);
    // Signed in, remembered; keys only, since WebKit lets a click overtake keys it still queues.
    aller(vue, wiki, "doku.php?id=essai&do=login");
    cliquerDans(vue, "#focus__this");
    for (const char* t : {"type anne", "Tab", "type motdepasse", "Tab", "space", "Return"})
        touches(principale(app), t);
    quand(vue, connectee);
    // The editor: reloading asks, the text stays and is saved as typed.
    aller(vue, wiki, "doku.php?id=essai&do=edit");
    cliquerDans(vue, "#wiki__text");
    for (const char* t : accents) touches(principale(app), t);
    quand(vue, "wiki__text.value == 'éèàçùêï'");
    question(app, "ctrl+r", "Return");
    quand(vue, "wiki__text.value == 'éèàçùêï'");
    cliquerDans(vue, "#edbtn__save");
    const std::string page = variable("BRINDEX_E2E_PROFIL") + "/wiki/donnees/pages/essai.txt";
    attendre([&] { return lireFichier(page) == "éèàçùêï"; }, 20, "page enregistrée");
    // New edits: quitting asks and stays, a change of space asks and leaves.
    aller(vue, wiki, "doku.php?id=essai&do=edit");
    cliquerDans(vue, "#wiki__text");
    touches(principale(app), "type encore");
    quand(vue, "wiki__text.value.includes('encore')");
    question(app, "ctrl+q", "Escape");
    question(app, "ctrl+shift+k");
    // The address field takes the same keys.
    GtkWidget* champ = exiger(app, "champ");
    attendre([&] { return gtk_widget_get_width(champ) > 0; }, 10, "le champ affiché");
    cliquerWidget(champ);
    touches(principale(app), "ctrl+a");
    for (const char* t : accents) touches(principale(app), t);
    verifier(texte(champ) == "éèàçùêï", texte(champ));
    touches(principale(app), "ctrl+q");
    attendre([&] { return fenetresVisibles(app).empty(); }, 20, "l'application finie");
}

// TiddlyWiki exports a tiddler through a file it builds in the page.
void tiddlywiki(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, variable("BRINDEX_E2E_WIKI"));
    for (const std::string bouton :
         {"button[class*=more-tiddler-actions]", "button[class*=export-tiddler]",
          ".tc-drop-down .tc-drop-down button"}) {
        quand(vue, "!!document.querySelector('" + bouton + "')");
        cliquerDans(vue, bouton);
    }
    attendreJournal("telechargement OK GettingStarted.");
}

void wikiStocke() {
    stockerAdresse(variable("BRINDEX_E2E_WIKI"));
}

const Enregistrement inscrits[] = {
    // After a quit: the page's cookie for a year is sent, the session's is gone.
    {"departs",
     {espaceStocke, departs,
      [](ApplicationGtk&) {
          attendre([] { return requeteVue("/", "\"cookie\": \"garde=1\"}"); }, 20, "cookie");
      }}},
    {"dokuwiki",
     {wikiStocke, dokuwiki, [](ApplicationGtk& app) { quand(vueWebPrincipale(app), connectee); }}},
    {"tiddlywiki", {wikiStocke, tiddlywiki}},
};

}  // namespace
}  // namespace brindex::e2e
