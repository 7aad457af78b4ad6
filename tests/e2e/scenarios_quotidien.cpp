// Everyday use of the space: finding a word in the page, printing, spelling, a meeting link and
// the zoom kept, driven with real keys and clicks.

#include <gtk/gtkunixprint.h>

#include <cmath>
#include <filesystem>

#include "pilote.hpp"

namespace brindex::e2e {
namespace {

using gtk::ApplicationGtk;

const std::string bureau = "hostile/bureau";

WebKitWebView* ouvrirBureau(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    script(vue, "location.href = '/" + bureau + "'; 'ok'");
    attendreJournal("navigation OK " + espace() + bureau);
    return vue;
}

// The print dialogs on screen.
std::vector<GtkWindow*> dialoguesImpression() {
    std::vector<GtkWindow*> dialogues;
    GListModel* toutes = gtk_window_get_toplevels();
    for (guint i = 0; i < g_list_model_get_n_items(toutes); ++i) {
        auto* w = GTK_WINDOW(g_list_model_get_item(toutes, i));
        if (GTK_IS_PRINT_UNIX_DIALOG(w) && gtk_widget_get_visible(GTK_WIDGET(w))) {
            dialogues.push_back(w);
        }
        g_object_unref(w);
    }
    return dialogues;
}

// The label of that text under `racine`.
GtkWidget* libelle(GtkWidget* racine, const std::string& texte) {
    if (GTK_IS_LABEL(racine) && texte == gtk_label_get_text(GTK_LABEL(racine))) return racine;
    for (GtkWidget* e = gtk_widget_get_first_child(racine); e; e = gtk_widget_get_next_sibling(e)) {
        if (GtkWidget* l = libelle(e, texte)) return l;
    }
    return nullptr;
}

// One print dialog comes, and only one.
GtkWindow* unDialogue() {
    attendre([] { return !dialoguesImpression().empty(); }, 20, "dialogue d'impression");
    patienter(0.5);
    verifier(dialoguesImpression().size() == 1, "un seul dialogue d'impression");
    return dialoguesImpression().front();
}

void fermerDialogue(GtkWindow* dialogue) {
    touches(dialogue, "Escape");
    attendre([] { return dialoguesImpression().empty(); }, 10, "dialogue fermé");
}

// What a command writes on its standard output.
std::string sortie(const std::string& commande) {
    gchar* texte = nullptr;
    g_spawn_command_line_sync(commande.c_str(), &texte, nullptr, nullptr, nullptr);
    std::string resultat = texte ? texte : "";
    g_free(texte);
    return resultat;
}

void impression(ApplicationGtk& app) {
    WebKitWebView* vue = ouvrirBureau(app);
    // The menu's key, then the page's button: one dialog each.
    touches(principale(app), "ctrl+p");
    fermerDialogue(unDialogue());
    cliquerDans(vue, "#imprimer");
    fermerDialogue(unDialogue());
    // A page printing in a loop gets one dialog; printed to a file, the page's text is there.
    cliquerDans(vue, "#boucle");
    GtkWindow* d = unDialogue();
    cliquerWidget(libelle(GTK_WIDGET(d), "Print to File"));
    capturer("impression");
    touches(d, "alt+p");
    const auto pdf =
        std::filesystem::path(variable("BRINDEX_E2E_TELECHARGEMENTS")) / "Compte rendu.pdf";
    std::string texte;
    attendre(
        [&] {
            texte = sortie("pdftotext '" + pdf.string() + "' -");
            return contient(texte, "BRINDILLE");
        },
        30, "le PDF imprimé");
    verifier(contient(texte, "Une brindille au départ."), texte);
    // Without the user, a page prints once a minute: the next time is refused, and logged.
    script(vue, "setTimeout(() => print(), 0); 'ok'");
    fermerDialogue(unDialogue());
    script(vue, "setTimeout(() => print(), 0); 'ok'");
    attendreJournal("impression REFUSEE sans action de l'utilisateur");
    patienter(0.5);
    verifier(dialoguesImpression().empty(), "aucun dialogue de plus");
}

std::string statut(ApplicationGtk& app) {
    return texte(exiger(app, "statut-recherche"));
}

void recherche(ApplicationGtk& app) {
    WebKitWebView* vue = ouvrirBureau(app);
    GtkWidget* barre = exiger(app, "barre-recherche");
    const auto selection = [&] {
        return script(vue, "getSelection() + ' ' + getSelection().anchorNode?.parentElement.id");
    };
    const auto apres = [&](const std::string& combinaison, const std::string& attendu,
                           const std::string& choisi) {
        if (!combinaison.empty()) touches(principale(app), combinaison);
        attendre([&] { return statut(app) == attendu && selection() == choisi; }, 10,
                 attendu + " : " + statut(app) + ", " + selection());
    };
    touches(principale(app), "ctrl+f");
    verifier(gtk_widget_get_visible(barre), "barre de recherche");
    xdotool("type --delay 40 brindille");
    apres("", "1 sur 3", "brindille m1");
    apres("ctrl+g ctrl+g", "3 sur 3", "BRINDILLE m3");
    apres("Return", "1 sur 3", "brindille m1");
    apres("shift+Return", "3 sur 3", "BRINDILLE m3");
    capturer("recherche");
    // Escape: the bar goes, the page has the keyboard.
    touches(principale(app), "Escape");
    verifier(!gtk_widget_get_visible(barre), "barre fermée");
    xdotool("type --delay 40 xyz");
    attendre([&] { return script(vue, "window.touches").ends_with("xyz"); }, 10, "frappe");
    touches(principale(app), "ctrl+f");
    xdotool("type --delay 40 introuvable");
    attendre([&] { return statut(app) == "Aucun résultat"; }, 10, "aucun résultat");
    // Another window has a bar of its own.
    cliquerDans(vue, "#fenetre");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre secondaire");
    GtkWindow* autre = gtk_application_get_active_window(app.application());
    verifier(autre != principale(app), "la fenêtre secondaire devant");
    attendreJournal("navigation OK " + espace() + bureau, 2);
    touches(autre, "ctrl+f");
    GtkWidget* sienne = chercher(GTK_WIDGET(autre), "barre-recherche");
    verifier(sienne && sienne != barre && gtk_widget_get_visible(sienne), "sa propre barre");
}

// The reddish pixels of the page as drawn: WebKit underlines misspelt words in red.
long rouges(WebKitWebView* vue) {
    GdkTexture* image = nullptr;
    webkit_web_view_get_snapshot(
        vue, WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, nullptr,
        [](GObject* o, GAsyncResult* r, gpointer d) {
            *static_cast<GdkTexture**>(d) =
                webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(o), r, nullptr);
        },
        &image);
    attendre([&] { return image != nullptr; }, 10, "capture de la page");
    const int largeur = gdk_texture_get_width(image);
    const int hauteur = gdk_texture_get_height(image);
    std::vector<guchar> pixels(static_cast<std::size_t>(largeur) * hauteur * 4);
    // Blue, green, red, alpha in memory.
    gdk_texture_download(image, pixels.data(), static_cast<gsize>(largeur) * 4);
    g_object_unref(image);
    long n = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        n += pixels[i + 2] > 180 && pixels[i + 1] < 100 && pixels[i] < 100;
    }
    return n;
}

void orthographe(ApplicationGtk& app) {
    WebKitWebView* vue = ouvrirBureau(app);
    verifier(contient(journal(), "orthographe OK fr_FR en_US"), journal());
    cliquerDans(vue, "#note");
    // French is French: an English dictionary alone would mark these words.
    xdotool("type --delay 30 'Bonjour tout le monde. '");
    patienter(1);
    verifier(rouges(vue) == 0, "aucun mot souligné");
    xdotool("type --delay 30 'Une erreure. '");
    attendre([&] { return rouges(vue) > 20; }, 10, "le mot mal écrit souligné");
    capturer("orthographe");
}

void application(ApplicationGtk& app) {
    WebKitWebView* vue = ouvrirBureau(app);
    const std::string reunion = "msteams:/l/meetup-join/19%3Areunion";
    // Without the user: refused, logged, and nothing asked.
    script(vue, "location.href = 'msteams:/auto'; 'ok'");
    attendreJournal("navigation REFUSEE scheme=msteams");
    cliquerDans(vue, "#reunion");
    GtkWidget* f = alerte(app);
    verifier(texte(chercher(f, "titre-alerte")) == "Ouvrir ce lien avec Enregistreur ?",
             texte(chercher(f, "titre-alerte")));
    capturer("application");
    cliquerWidget(chercher(f, "case-alerte"));
    cliquerWidget(chercher(f, "bouton-0"));
    attendreOuvert([&](const std::string& o) { return o == reunion; }, "le lien remis à Teams");
    // Remembered for the space: opened at once.
    cliquerDans(vue, "#reunion");
    attendre([&] { return std::ranges::count(ouverts(), reunion) == 2; }, 20, "ouvert de nouveau");
    verifier(!chercherPartout(app, "bouton-0"), "sans question");
    verifier(std::ranges::count(ouverts(), "msteams:/auto") == 0, "l'automatique jamais");
    verifier(gtk::ReglagesGtk::parDefaut().lire("schemesApprouves") == "msteams", "retenu");
}

double zoomDe(WebKitWebView* vue) {
    return webkit_web_view_get_zoom_level(vue);
}

void zoom(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    touches(principale(app), "ctrl+equal ctrl+equal ctrl+equal");
    attendre([&] { return std::abs(zoomDe(vue) - 1.3) < 1e-9; }, 10, "zoom 130 %");
    verifier(gtk::ReglagesGtk::parDefaut().lire("zoomEspace") == "130", "zoom retenu");
    cliquerDans(vue, "#ouvrir-fenetre");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre secondaire");
    WebKitWebView* autre =
        vueWebDe(GTK_WIDGET(gtk_application_get_active_window(app.application())));
    verifier(autre != vue && std::abs(zoomDe(autre) - 1.3) < 1e-9, "au zoom de l'espace");
}

void zoomApresRelance(ApplicationGtk& app) {
    const double z = zoomDe(attendreEspace(app));
    verifier(std::abs(z - 1.3) < 1e-9, "zoom après relance : " + std::to_string(z));
}

const Enregistrement inscrits[] = {
    {"recherche", {espaceStocke, recherche}},         {"impression", {espaceStocke, impression}},
    {"orthographe", {espaceStocke, orthographe}},     {"application", {espaceStocke, application}},
    {"zoom", {espaceStocke, zoom, zoomApresRelance}},
};

}  // namespace
}  // namespace brindex::e2e
