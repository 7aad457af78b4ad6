#include "pilote.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>

#include <gdk/x11/gdkx.h>

#include "log/journal.hpp"

namespace brindex::e2e {

void echouer(const std::string& message) {
    throw Echec(message);
}

void verifier(bool condition, const std::string& message) {
    if (!condition) echouer(message);
}

void attendre(const std::function<bool()>& condition, double secondes, const std::string& quoi) {
    const gint64 limite = g_get_monotonic_time() + static_cast<gint64>(secondes * 1e6);
    while (!condition()) {
        if (g_get_monotonic_time() > limite) echouer("délai dépassé : " + quoi);
        if (!g_main_context_iteration(nullptr, FALSE)) g_usleep(5000);
    }
}

void patienter(double secondes) {
    const gint64 limite = g_get_monotonic_time() + static_cast<gint64>(secondes * 1e6);
    while (g_get_monotonic_time() < limite) {
        if (!g_main_context_iteration(nullptr, FALSE)) g_usleep(5000);
    }
}

std::string variable(const char* nom) {
    const char* valeur = g_getenv(nom);
    if (!valeur) echouer(std::string("variable manquante : ") + nom);
    return valeur;
}

std::vector<GtkWindow*> fenetresVisibles(gtk::ApplicationGtk& application) {
    std::vector<GtkWindow*> fenetres;
    for (GList* l = gtk_application_get_windows(application.application()); l; l = l->next) {
        if (gtk_widget_get_visible(GTK_WIDGET(l->data))) {
            fenetres.push_back(GTK_WINDOW(l->data));
        }
    }
    return fenetres;
}

GtkWidget* chercher(GtkWidget* racine, const std::string& nom) {
    if (!racine) return nullptr;
    if (nom == gtk_widget_get_name(racine)) return racine;
    for (GtkWidget* e = gtk_widget_get_first_child(racine); e; e = gtk_widget_get_next_sibling(e)) {
        if (GtkWidget* trouve = chercher(e, nom)) return trouve;
    }
    return nullptr;
}

GtkWidget* chercherPartout(gtk::ApplicationGtk& application, const std::string& nom) {
    for (GtkWindow* f : fenetresVisibles(application)) {
        if (GtkWidget* w = chercher(GTK_WIDGET(f), nom)) return w;
    }
    return nullptr;
}

std::string texte(GtkWidget* widget) {
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

void cliquer(GtkWidget* bouton) {
    verifier(bouton != nullptr, "bouton introuvable");
    verifier(gtk_widget_get_sensitive(bouton), "bouton désactivé");
    g_signal_emit_by_name(bouton, "clicked");
}

WebKitWebView* vueWebPrincipale(gtk::ApplicationGtk& application) {
    const auto fenetre = application.plateforme()->fenetrePrincipale();
    if (!fenetre) return nullptr;
    GtkWidget* contenu = gtk_window_get_child(fenetre->fenetre());
    if (!contenu || !GTK_IS_OVERLAY(contenu)) return nullptr;
    GtkWidget* enfant = gtk_overlay_get_child(GTK_OVERLAY(contenu));
    return enfant && WEBKIT_IS_WEB_VIEW(enfant) ? WEBKIT_WEB_VIEW(enfant) : nullptr;
}

std::string script(WebKitWebView* vue, const std::string& source) {
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

namespace {

void xdotool(const std::string& arguments) {
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
void cliquerA(GtkWidget* widget, double x, double y) {
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
    xdotool("mousemove --sync --window " + std::to_string(xid) + " " +
            std::to_string(static_cast<int>(dans.x + dx)) + " " +
            std::to_string(static_cast<int>(dans.y + dy)) + " click 1");
    patienter(0.05);
}

}  // namespace

void cliquerDans(WebKitWebView* vue, const std::string& selecteur) {
    const std::string centre = script(
        vue, "(() => { const r = document.querySelector('" + selecteur +
                 "').getBoundingClientRect(); return (r.left + r.width / 2) + ' ' + (r.top + "
                 "r.height / 2); })()");
    const auto espace = centre.find(' ');
    cliquerA(GTK_WIDGET(vue), std::stod(centre.substr(0, espace)),
             std::stod(centre.substr(espace + 1)));
}

void cliquerWidget(GtkWidget* widget) {
    verifier(widget != nullptr, "widget introuvable");
    cliquerA(widget, gtk_widget_get_width(widget) / 2.0, gtk_widget_get_height(widget) / 2.0);
}

void touches(GtkWindow* fenetre, const std::string& combinaison) {
    const auto xid = gdk_x11_surface_get_xid(gtk_native_get_surface(GTK_NATIVE(fenetre)));
    xdotool("windowfocus --sync " + std::to_string(xid) + " key --clearmodifiers " + combinaison);
    patienter(0.05);
}

void capturer(const std::string& nom) {
    const char* dossier = g_getenv("BRINDEX_E2E_CAPTURES");
    if (!dossier) return;
    patienter(0.5);  // the last frame drawn
    const std::string commande =
        std::string("import -window root '") + dossier + "/" + nom + ".png'";
    if (!g_spawn_command_line_sync(commande.c_str(), nullptr, nullptr, nullptr, nullptr)) {
        std::cerr << "capture impossible : " << nom << "\n";
    }
}

std::string lireFichier(const std::string& chemin) {
    std::ifstream f(chemin, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

std::vector<std::string> lignes(const std::string& chemin) {
    std::vector<std::string> resultat;
    std::ifstream f(chemin);
    for (std::string l; std::getline(f, l);) resultat.push_back(l);
    return resultat;
}

bool contient(const std::string& texte, const std::string& morceau) {
    return texte.find(morceau) != std::string::npos;
}

std::string journal() {
    return lireFichier(Journal::chemin());
}

std::vector<std::string> requetes() {
    return lignes(variable("BRINDEX_E2E_REQUETES"));
}

std::vector<std::string> ouverts() {
    return lignes(variable("BRINDEX_E2E_OUVERTS"));
}

Serveur::Serveur(int port) {
    const std::string serveur = variable("BRINDEX_E2E_SERVEUR");
    const std::string textePort = std::to_string(port);
    const std::string requetes = variable("BRINDEX_E2E_REQUETES");
    gchar* arguments[] = {const_cast<gchar*>("python3"),
                          const_cast<gchar*>(serveur.c_str()),
                          const_cast<gchar*>("--port"),
                          const_cast<gchar*>(textePort.c_str()),
                          const_cast<gchar*>("--journal"),
                          const_cast<gchar*>(requetes.c_str()),
                          nullptr};
    gint sortie = -1;
    GError* erreur = nullptr;
    if (!g_spawn_async_with_pipes(nullptr, arguments, nullptr, G_SPAWN_SEARCH_PATH, nullptr,
                                  nullptr, &pid_, nullptr, &sortie, nullptr, &erreur)) {
        const std::string message = erreur->message;
        g_clear_error(&erreur);
        echouer("serveur : " + message);
    }
    // Its first line says it listens.
    std::string ligne;
    char c = 0;
    while (read(sortie, &c, 1) == 1 && c != '\n') ligne += c;
    close(sortie);
    verifier(ligne.rfind("PORT ", 0) == 0, "le serveur n'a pas démarré : " + ligne);
}

Serveur::~Serveur() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
        g_spawn_close_pid(pid_);
    }
}

int portLibre() {
    const int s = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in adresse{};
    adresse.sin_family = AF_INET;
    adresse.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    adresse.sin_port = 0;
    bind(s, reinterpret_cast<sockaddr*>(&adresse), sizeof adresse);
    socklen_t taille = sizeof adresse;
    getsockname(s, reinterpret_cast<sockaddr*>(&adresse), &taille);
    const int port = ntohs(adresse.sin_port);
    close(s);
    return port;
}

}  // namespace brindex::e2e
