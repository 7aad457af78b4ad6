// What a company's staff must not lose: a page's unsaved edits, a sign-in, a file the page made.
// Against the test space, and against real wikis nobody here wrote (Debian's DokuWiki, npm's
// TiddlyWiki, see scenario.py), typed with a French keyboard where text is typed.

#include <filesystem>

#include "pilote.hpp"

namespace brindex::e2e {
namespace {

using gtk::ApplicationGtk;
namespace fs = std::filesystem;

// The question before a page is left, on `fenetre`: answered with a key, or by a click on
// "Quitter la page".
void question(ApplicationGtk& app, GtkWindow* fenetre, const char* touche = nullptr) {
    GtkWidget* f = alerte(app);
    verifier(texte(chercher(f, "titre-alerte")) == "Quitter cette page ?" &&
                 gtk_window_get_transient_for(GTK_WINDOW(f)) == fenetre,
             "la question, sur la fenêtre de la page");
    capturer("question");
    touche ? touches(GTK_WINDOW(f), touche) : cliquerWidget(chercher(f, "bouton-1"));
    attendre([&] { return std::ranges::count(fenetresVisibles(app), GTK_WINDOW(f)) == 0; }, 10,
             "question répondue");
}

void fin(ApplicationGtk& app) {
    attendre([&] { return fenetresVisibles(app).empty(); }, 20, "l'application finie");
}

// The page at `chemin` of the main view's site, loaded.
void aller(WebKitWebView* vue, const std::string& base, const std::string& chemin) {
    script(vue, "location.href = '" + chemin + "'; 'ok'");
    attendreJournal("navigation OK " + base + chemin, compter(journal(), base + chemin) + 1);
}

void departs(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    aller(vue, espace(), "hostile/quitter");
    cliquerDans(vue, "#texte");
    touches(principale(app), "End type nouveau");
    // Reload, history and a change of space ask first; Return and Escape stay.
    for (const auto& [commande, reponse] : {std::pair("ctrl+r", "Return"),
                                            {"ctrl+bracketleft", "Escape"},
                                            {"ctrl+shift+k", "Return"}}) {
        touches(principale(app), commande);
        question(app, principale(app), reponse);
    }
    patienter(0.5);
    verifier(script(vue, "texte.value") == "À relirenouveau" && vueWebPrincipale(app) == vue &&
                 compter(journal(), "hostile/quitter") == 1,
             "la page et son texte restent");
    touches(principale(app), "ctrl+bracketleft");
    question(app, principale(app));
    attendre([&] { return webkit_web_view_get_uri(vue) == espace(); }, 10, "page précédente");

    // Quitting asks each page in turn; "Rester sur la page" on the popup keeps everything.
    aller(vue, espace(), "hostile/quitter");
    cliquerDans(vue, "#fenetre");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre secondaire");
    GtkWindow* pop = fenetresVisibles(app)[fenetresVisibles(app)[0] == principale(app) ? 1 : 0];
    attendreJournal("navigation OK " + espace() + "hostile/quitter", 3);
    cliquerDans(vueWebDe(GTK_WIDGET(pop)), "#texte");
    touches(principale(app), "ctrl+q");
    question(app, principale(app));
    question(app, pop, "Return");
    patienter(0.5);
    verifier(fenetresVisibles(app).size() == 2, "rien n'est fermé");
    // Closing the popup asks its page; then quitting asks the main page again.
    touches(pop, "ctrl+w");
    question(app, pop);
    attendre([&] { return fenetresVisibles(app).size() == 1; }, 10, "fenêtre secondaire fermée");
    touches(principale(app), "ctrl+q");
    question(app, principale(app));
    fin(app);
}

// A cookie for a year survives a quit, the pages' session cookie doesn't.
void biscuits(ApplicationGtk& app) {
    aller(attendreEspace(app), espace(), "hostile/biscuit");
    touches(principale(app), "ctrl+q");
    fin(app);
}

void biscuitsRelance(ApplicationGtk&) {
    // The space's page asked again, by this launch.
    std::vector<std::string> accueils;
    attendre(
        [&] {
            accueils.clear();
            std::ranges::copy_if(requetes(), std::back_inserter(accueils),
                                 [](const auto& l) { return contient(l, "\"path\": \"/\","); });
            return accueils.size() == 2;
        },
        20, "l'espace demandé");
    verifier(contient(accueils[1], "garde=1") && !contient(accueils[1], "session="), accueils[1]);
}

void exports(ApplicationGtk& app) {
    const fs::path dossier = variable("BRINDEX_E2E_TELECHARGEMENTS");
    WebKitWebView* vue = attendreEspace(app);
    // The page's own attempt, without the user, is refused; so is showing the file.
    aller(vue, espace(), "hostile/export");
    attendreJournal("navigation REFUSEE scheme=blob");
    cliquerDans(vue, "#blob");
    attendreJournal("telechargement OK export.txt");
    cliquerDans(vue, "#data");
    attendreJournal("telechargement OK tableau.csv");
    cliquerDans(vue, "#voir");
    attendreJournal("navigation REFUSEE scheme=blob", 2);
    verifier(lireFichier(dossier / "export.txt") == "Exporté par la page\n" &&
                 lireFichier(dossier / "tableau.csv") == "a;b" &&
                 !fs::exists(dossier / "automatique.txt") &&
                 webkit_web_view_get_uri(vue) == espace() + "hostile/export",
             "les fichiers de la page enregistrés, la page reste");
}

// é è à ç ù typed directly, ê and ï through the dead keys of a French keyboard.
void accents(GtkWindow* fenetre) {
    touches(fenetre, "type 'éèàçù'");
    touches(fenetre, "dead_circumflex e dead_diaeresis i");
}

bool connectee(WebKitWebView* vue) {
    return script(vue, "!!document.querySelector('a[href*=\"do=logout\"]')") == "true";
}

void dokuwiki(ApplicationGtk& app) {
    // While the application is connected: the X server resets its keyboard when its last client
    // leaves.
    verifier(g_spawn_command_line_sync("setxkbmap fr", nullptr, nullptr, nullptr, nullptr),
             "setxkbmap");
    const std::string wiki = variable("BRINDEX_E2E_APPLICATION");
    GtkWidget* champ = exiger(app, "champ");
    attendre([&] { return !gtk_spinner_get_spinning(GTK_SPINNER(exiger(app, "roue"))); }, 40,
             "fin de la recherche");
    cliquerWidget(champ);
    accents(principale(app));
    verifier(texte(champ) == "éèàçùêï", texte(champ));
    // Not a Brindex space: kept all the same.
    gtk_editable_set_text(GTK_EDITABLE(champ), wiki.c_str());
    touches(principale(app), "Return");
    attendre([&] { return gtk_widget_get_visible(exiger(app, "boutonForcer")); }, 20, "forcer");
    cliquer(exiger(app, "boutonForcer"));
    WebKitWebView* vue = attendreEspace(app, wiki);
    // Signed in, remembered.
    aller(vue, wiki, "doku.php?id=essai&do=login");
    // Keys only: WebKit lets a click overtake the keys it still has to hand to the page.
    cliquerDans(vue, "#focus__this");
    for (const char* t : {"type anne", "Tab", "type motdepasse", "Tab", "space", "Return"}) {
        touches(principale(app), t);
    }
    attendre([&] { return connectee(vue); }, 20, "connectée");
    // The editor: reloading asks, and the text typed stays, then is saved as typed.
    aller(vue, wiki, "doku.php?id=essai&do=edit");
    cliquerDans(vue, "#wiki__text");
    accents(principale(app));
    const auto tape = [&](const std::string& t) {
        attendre([&] { return contient(script(vue, "wiki__text.value"), t); }, 10, "tapé : " + t);
    };
    tape("éèàçùêï");
    touches(principale(app), "ctrl+r");
    question(app, principale(app), "Return");
    tape("éèàçùêï");
    cliquerDans(vue, "#edbtn__save");
    const fs::path page =
        fs::path(variable("BRINDEX_E2E_DONNEES_APPLICATION")) / "donnees" / "pages" / "essai.txt";
    attendre([&] { return lireFichier(page) == "éèàçùêï"; }, 20, "page enregistrée telle quelle");
    // Quitting with edits asks; Escape stays.
    aller(vue, wiki, "doku.php?id=essai&do=edit");
    cliquerDans(vue, "#wiki__text");
    touches(principale(app), "type encore");
    tape("encore");
    for (const char* reponse : {"Escape", static_cast<const char*>(nullptr)}) {
        touches(principale(app), "ctrl+q");
        question(app, principale(app), reponse);
    }
    fin(app);
}

void dokuwikiRelance(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, variable("BRINDEX_E2E_APPLICATION"));
    attendre([&] { return connectee(vue); }, 20, "toujours connectée");
}

// TiddlyWiki exports a tiddler through a file it builds in the page.
void tiddlywiki(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app, variable("BRINDEX_E2E_APPLICATION"));
    for (const std::string quoi : {"more-tiddler-actions", "export-tiddler", "JSON"}) {
        attendre(
            [&] {
                return script(vue,
                              "(() => { const b = [...document.querySelectorAll('button')]"
                              ".find(b => (b.className + b.textContent).includes('" +
                                  quoi + "')); if (b) b.id = 'e2e-" + quoi +
                                  "'; return !!b; })()") == "true";
            },
            20, quoi);
        cliquerDans(vue, "#e2e-" + quoi);
    }
    attendreJournal(".json");
    const std::string ligne = lignes(Journal::chemin()).back();
    const std::string nom = ligne.substr(ligne.find("telechargement OK ") + 18);
    verifier(
        contient(lireFichier(fs::path(variable("BRINDEX_E2E_TELECHARGEMENTS")) / nom), "\"title\""),
        ligne);
}

const Enregistrement inscrits[] = {
    {"departs", {espaceStocke, departs}},
    {"biscuits", {espaceStocke, biscuits, {biscuitsRelance}}},
    {"exports", {espaceStocke, exports}},
    {"dokuwiki", {nullptr, dokuwiki, {dokuwikiRelance}}},
    {"tiddlywiki", {[] { stockerAdresse(variable("BRINDEX_E2E_APPLICATION")); }, tiddlywiki}},
};

}  // namespace
}  // namespace brindex::e2e
