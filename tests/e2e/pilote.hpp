#pragma once

// Drives the real Linux application from inside its own process: waits by turning the main
// loop, finds widgets by name, runs scripts in pages, clicks and types for real through the X
// server (xdotool), and reads what the application left behind (its log, its settings, the
// test space's requests, the URIs given to other apps).

#include <gdk/x11/gdkx.h>
#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "application_gtk.hpp"
#include "log/journal.hpp"
#include "reglages_gtk.hpp"

namespace brindex::e2e {

struct Echec : std::runtime_error {
    using std::runtime_error::runtime_error;
};

[[noreturn]] inline void echouer(const std::string& message) {
    throw Echec(message);
}

inline void verifier(bool condition, const std::string& message) {
    if (!condition) echouer(message);
}

// Turns the main loop until `condition` holds; fails after `secondes`.
inline void attendre(const std::function<bool()>& condition, double secondes,
                     const std::string& quoi) {
    const gint64 limite = g_get_monotonic_time() + static_cast<gint64>(secondes * 1e6);
    while (!condition()) {
        if (g_get_monotonic_time() > limite) echouer("délai dépassé : " + quoi);
        if (!g_main_context_iteration(nullptr, FALSE)) g_usleep(5000);
    }
}

inline void patienter(double secondes) {
    const gint64 limite = g_get_monotonic_time() + static_cast<gint64>(secondes * 1e6);
    while (g_get_monotonic_time() < limite) {
        if (!g_main_context_iteration(nullptr, FALSE)) g_usleep(5000);
    }
}

inline std::string variable(const char* nom) {
    const char* valeur = g_getenv(nom);
    if (!valeur) echouer(std::string("variable manquante : ") + nom);
    return valeur;
}

inline std::vector<GtkWindow*> fenetresVisibles(gtk::ApplicationGtk& application) {
    std::vector<GtkWindow*> fenetres;
    for (GList* l = gtk_application_get_windows(application.application()); l; l = l->next) {
        if (gtk_widget_get_visible(GTK_WIDGET(l->data))) {
            fenetres.push_back(GTK_WINDOW(l->data));
        }
    }
    return fenetres;
}

inline GtkWidget* chercher(GtkWidget* racine, const std::string& nom) {
    if (!racine) return nullptr;
    if (nom == gtk_widget_get_name(racine)) return racine;
    for (GtkWidget* e = gtk_widget_get_first_child(racine); e; e = gtk_widget_get_next_sibling(e)) {
        if (GtkWidget* trouve = chercher(e, nom)) return trouve;
    }
    return nullptr;
}

// The widget of that name in any visible window.
inline GtkWidget* chercherPartout(gtk::ApplicationGtk& application, const std::string& nom) {
    for (GtkWindow* f : fenetresVisibles(application)) {
        if (GtkWidget* w = chercher(GTK_WIDGET(f), nom)) return w;
    }
    return nullptr;
}

// A label's, an entry's or a button's text.
inline std::string texte(GtkWidget* widget) {
    verifier(widget != nullptr, "widget introuvable");
    if (GTK_IS_LABEL(widget)) return gtk_label_get_text(GTK_LABEL(widget));
    if (GTK_IS_EDITABLE(widget)) return gtk_editable_get_text(GTK_EDITABLE(widget));
    if (GTK_IS_BUTTON(widget)) {
        const char* l = gtk_button_get_label(GTK_BUTTON(widget));
        return l ? l : "";
    }
    // A wrapper around one label.
    if (GtkWidget* enfant = gtk_widget_get_first_child(widget)) return texte(enfant);
    return "";
}

inline void cliquer(GtkWidget* bouton) {
    verifier(bouton != nullptr, "bouton introuvable");
    verifier(gtk_widget_get_sensitive(bouton), "bouton désactivé");
    g_signal_emit_by_name(bouton, "clicked");
}

// The web view a window shows, if any.
inline WebKitWebView* vueWebDe(GtkWidget* racine) {
    if (!racine) return nullptr;
    if (WEBKIT_IS_WEB_VIEW(racine)) return WEBKIT_WEB_VIEW(racine);
    for (GtkWidget* e = gtk_widget_get_first_child(racine); e; e = gtk_widget_get_next_sibling(e)) {
        if (WebKitWebView* vue = vueWebDe(e)) return vue;
    }
    return nullptr;
}

// The main window's web view, when the space is shown.
inline WebKitWebView* vueWebPrincipale(gtk::ApplicationGtk& application) {
    const auto fenetre = application.plateforme()->fenetrePrincipale();
    return fenetre ? vueWebDe(gtk_window_get_child(fenetre->fenetre())) : nullptr;
}

// Runs a script in a page and gives its result as text.
inline std::string script(WebKitWebView* vue, const std::string& source) {
    verifier(vue != nullptr, "pas de vue web");
    struct Resultat {
        bool fini = false;
        std::string texte;
        std::string erreur;
    } resultat;
    webkit_web_view_evaluate_javascript(
        vue, source.c_str(), -1, nullptr, nullptr, nullptr,
        [](GObject* objet, GAsyncResult* r, gpointer d) {
            auto* res = static_cast<Resultat*>(d);
            GError* erreur = nullptr;
            JSCValue* valeur =
                webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(objet), r, &erreur);
            if (valeur) {
                char* t = jsc_value_to_string(valeur);
                res->texte = t ? t : "";
                g_free(t);
                g_object_unref(valeur);
            } else {
                res->erreur = erreur ? erreur->message : "?";
                g_clear_error(&erreur);
            }
            res->fini = true;
        },
        &resultat);
    attendre([&] { return resultat.fini; }, 20, "script " + source);
    if (!resultat.erreur.empty()) echouer("script " + source + " : " + resultat.erreur);
    return resultat.texte;
}

inline void xdotool(const std::string& arguments) {
    gchar* sortie = nullptr;
    gint statut = 0;
    const std::string commande = "xdotool " + arguments;
    if (!g_spawn_command_line_sync(commande.c_str(), nullptr, &sortie, &statut, nullptr) ||
        !g_spawn_check_wait_status(statut, nullptr)) {
        g_free(sortie);
        echouer("xdotool impossible : " + commande);
    }
    g_free(sortie);
}

// A point of a widget, in its window's X coordinates.
inline void cliquerA(GtkWidget* widget, double x, double y) {
    GtkNative* native = gtk_widget_get_native(widget);
    verifier(native != nullptr, "widget sans fenêtre");
    graphene_point_t dans{};
    const graphene_point_t point =
        GRAPHENE_POINT_INIT(static_cast<float>(x), static_cast<float>(y));
    verifier(gtk_widget_compute_point(widget, GTK_WIDGET(native), &point, &dans), "point");
    double dx = 0;
    double dy = 0;
    gtk_native_get_surface_transform(native, &dx, &dy);
    const auto xid = gdk_x11_surface_get_xid(gtk_native_get_surface(native));
    // No --sync: a pointer already at the spot never reports the move it waits for.
    xdotool("mousemove --window " + std::to_string(xid) + " " +
            std::to_string(static_cast<int>(dans.x + dx)) + " " +
            std::to_string(static_cast<int>(dans.y + dy)) + " click 1");
    patienter(0.05);
}

// A real click in the middle of the page's element.
inline void cliquerDans(WebKitWebView* vue, const std::string& selecteur) {
    const std::string centre = script(
        vue, "(() => { const e = document.querySelector('" + selecteur +
                 "'); e.scrollIntoView({block: 'nearest'}); const r = e.getBoundingClientRect();"
                 " return (r.left + r.width / 2) + ' ' + (r.top + r.height / 2); })()");
    const auto espace = centre.find(' ');
    // The page's pixels are the view's, zoomed.
    const double zoom = webkit_web_view_get_zoom_level(vue);
    cliquerA(GTK_WIDGET(vue), std::stod(centre.substr(0, espace)) * zoom,
             std::stod(centre.substr(espace + 1)) * zoom);
}

inline void cliquerWidget(GtkWidget* widget) {
    verifier(widget != nullptr, "widget introuvable");
    cliquerA(widget, gtk_widget_get_width(widget) / 2.0, gtk_widget_get_height(widget) / 2.0);
}

// Real key presses into the window, in xdotool's words ("Return", "ctrl+r").
inline void touches(GtkWindow* fenetre, const std::string& combinaison) {
    const auto xid = gdk_x11_surface_get_xid(gtk_native_get_surface(GTK_NATIVE(fenetre)));
    xdotool("windowfocus --sync " + std::to_string(xid) + " key --clearmodifiers " + combinaison);
    patienter(0.05);
}

// A screenshot into the folder named by BRINDEX_E2E_CAPTURES, if set.
inline void capturer(const std::string& nom) {
    const char* dossier = g_getenv("BRINDEX_E2E_CAPTURES");
    if (!dossier) return;
    patienter(0.5);  // the last frame drawn
    const std::string commande =
        std::string("import -window root '") + dossier + "/" + nom + ".png'";
    if (!g_spawn_command_line_sync(commande.c_str(), nullptr, nullptr, nullptr, nullptr)) {
        std::cerr << "capture impossible : " << nom << "\n";
    }
}

inline std::string lireFichier(const std::string& chemin) {
    std::ifstream f(chemin, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

inline std::vector<std::string> lignes(const std::string& chemin) {
    std::vector<std::string> resultat;
    std::ifstream f(chemin);
    for (std::string l; std::getline(f, l);) resultat.push_back(l);
    return resultat;
}

inline bool contient(const std::string& texte, const std::string& morceau) {
    return texte.find(morceau) != std::string::npos;
}

inline std::string journal() {
    return lireFichier(Journal::chemin());
}

// The test space's request log, one JSON object per line.
inline std::vector<std::string> requetes() {
    return lignes(variable("BRINDEX_E2E_REQUETES"));
}

// URIs handed to the default handlers.
inline std::vector<std::string> ouverts() {
    return lignes(variable("BRINDEX_E2E_OUVERTS"));
}

// ---- Shared steps ----

inline std::string espace() {
    return variable("BRINDEX_E2E_ESPACE");
}

inline void stockerAdresse(const std::string& url) {
    gtk::ReglagesGtk::parDefaut().ecrire("espaceURL", url);
}

inline GtkWidget* exiger(gtk::ApplicationGtk& app, const std::string& nom, double secondes = 20) {
    GtkWidget* widget = nullptr;
    attendre([&] { return (widget = chercherPartout(app, nom)) != nullptr; }, secondes,
             "widget " + nom);
    return widget;
}

inline std::size_t compter(const std::string& texte, const std::string& morceau) {
    std::size_t n = 0;
    for (auto i = texte.find(morceau); i != std::string::npos; i = texte.find(morceau, i + 1)) ++n;
    return n;
}

inline void attendreJournal(const std::string& morceau, std::size_t fois = 1) {
    attendre([&] { return compter(journal(), morceau) >= fois; }, 30, "journal : " + morceau);
}

// The space shown and its first page loaded.
inline WebKitWebView* attendreEspace(gtk::ApplicationGtk& app, const std::string& url = espace()) {
    WebKitWebView* vue = nullptr;
    attendre([&] { return (vue = vueWebPrincipale(app)) != nullptr; }, 30, "l'espace");
    attendreJournal("navigation OK " + url);
    return vue;
}

inline GtkWindow* principale(gtk::ApplicationGtk& app) {
    return app.plateforme()->fenetrePrincipale()->fenetre();
}

inline void attendreOuvert(const std::function<bool(const std::string&)>& condition,
                           const std::string& quoi) {
    const std::function<bool()> vu = [&] { return std::ranges::any_of(ouverts(), condition); };
    attendre(vu, 20, quoi);
}

inline bool requeteVue(const std::string& chemin, const std::string& morceau) {
    return std::ranges::any_of(requetes(), [&](const std::string& ligne) {
        return contient(ligne, "\"" + chemin + "\"") && contient(ligne, morceau);
    });
}

inline double secondesDepuis(gint64 debut) {
    return static_cast<double>(g_get_monotonic_time() - debut) / G_USEC_PER_SEC;
}

// The alert that shows, once its first button is there.
inline GtkWidget* alerte(gtk::ApplicationGtk& app, double secondes = 20) {
    return GTK_WIDGET(gtk_widget_get_root(exiger(app, "bouton-0", secondes)));
}

// ---- Scenarios ----

// One scenario: what to prepare before the application starts, then what to do once its
// launch is over, and after a restart if asked.
struct Scenario {
    std::function<void()> avant;
    std::function<void(gtk::ApplicationGtk&)> deroulement;
    // Once the application has ended: started again in the same profile, and this done.
    std::function<void(gtk::ApplicationGtk&)> relance = nullptr;
};

inline std::map<std::string, Scenario>& scenarios() {
    static std::map<std::string, Scenario> tous;
    return tous;
}

// Registers a scenario from any file of the test program, by name.
struct Enregistrement {
    Enregistrement(const std::string& nom, Scenario scenario) {
        scenarios().emplace(nom, std::move(scenario));
    }
};

inline void espaceStocke() {
    stockerAdresse(espace());
}

}  // namespace brindex::e2e
