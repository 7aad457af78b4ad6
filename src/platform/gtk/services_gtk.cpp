#include "services_gtk.hpp"

#include <epoxy/gl.h>

#include <gio/gio.h>
#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include "brand/marque.hpp"

namespace brindex::gtk {

void ouvrirUriParDefaut(const std::string& uri) {
    // Asynchronous: a slow handler never holds up the window.
    g_app_info_launch_default_for_uri_async(uri.c_str(), nullptr, nullptr, nullptr, nullptr);
}

std::optional<std::string> applicationPourUri(const std::string& uri) {
    const char* scheme = g_uri_peek_scheme(uri.c_str());
    GAppInfo* application = scheme ? g_app_info_get_default_for_uri_scheme(scheme) : nullptr;
    if (!application) return std::nullopt;
    const char* id = g_app_info_get_id(application);
    const char* nom = g_app_info_get_display_name(application);
    std::optional<std::string> resultat;
    if (!id || std::string(id) != std::string(Marque::identifiant) + ".desktop") {
        resultat = nom && *nom ? nom : scheme;
    }
    g_object_unref(application);
    return resultat;
}

std::vector<std::string> activerOrthographe(const std::vector<std::string>& langues) {
    WebKitWebContext* contexte = webkit_web_context_get_default();
    webkit_web_context_set_spell_checking_enabled(contexte, TRUE);
    std::vector<const char*> liste;
    for (const auto& l : langues) liste.push_back(l.c_str());
    liste.push_back(nullptr);
    webkit_web_context_set_spell_checking_languages(contexte, liste.data());
    std::vector<std::string> retenues;
    if (const char* const* enUsage = webkit_web_context_get_spell_checking_languages(contexte)) {
        for (; *enUsage; ++enUsage) retenues.emplace_back(*enUsage);
    }
    return retenues;
}

std::vector<std::string> nomsLocale() {
    std::vector<std::string> noms;
    for (const char* const* n = g_get_language_names(); *n; ++n) noms.emplace_back(*n);
    return noms;
}

namespace {

void ouvrirDossierDe(const std::string& chemin) {
    GFile* fichier = g_file_new_for_path(chemin.c_str());
    GFile* dossier = g_file_get_parent(fichier);
    if (dossier) {
        char* uri = g_file_get_uri(dossier);
        ouvrirUriParDefaut(uri);
        g_free(uri);
        g_object_unref(dossier);
    }
    g_object_unref(fichier);
}

}  // namespace

void revelerFichier(const std::string& chemin) {
    GFile* fichier = g_file_new_for_path(chemin.c_str());
    char* uri = g_file_get_uri(fichier);
    g_object_unref(fichier);
    const char* uris[] = {uri, nullptr};
    GVariant* parametres = g_variant_new("(^ass)", uris, "");
    g_free(uri);
    // The file manager's own interface selects the file; without one, its folder opens.
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!bus) {
        g_variant_unref(g_variant_ref_sink(parametres));
        ouvrirDossierDe(chemin);
        return;
    }
    g_dbus_connection_call(
        bus, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
        "org.freedesktop.FileManager1", "ShowItems", parametres, nullptr, G_DBUS_CALL_FLAGS_NONE,
        5000, nullptr,
        [](GObject* source, GAsyncResult* resultat, gpointer donnees) {
            auto* c = static_cast<std::string*>(donnees);
            GError* erreur = nullptr;
            GVariant* reponse =
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), resultat, &erreur);
            if (reponse) {
                g_variant_unref(reponse);
            } else {
                g_clear_error(&erreur);
                ouvrirDossierDe(*c);
            }
            delete c;
        },
        new std::string(chemin));
    g_object_unref(bus);
}

std::optional<std::string> dossierTelechargementsGtk() {
    const char* dossier = g_get_user_special_dir(G_USER_DIRECTORY_DOWNLOAD);
    if (!dossier || !*dossier) return std::nullopt;
    return std::string(dossier);
}

std::string dossierPersonnelGtk() {
    return g_get_home_dir();
}

std::string cheminJournalGtk() {
    char* dossier = g_build_filename(g_get_user_state_dir(), "brindex", nullptr);
    g_mkdir_with_parents(dossier, 0700);
    char* chemin = g_build_filename(dossier, "Brindex.log", nullptr);
    std::string resultat = chemin;
    g_free(chemin);
    g_free(dossier);
    return resultat;
}

std::optional<std::string> rendeurGlGtk() {
    GdkDisplay* affichage = gdk_display_get_default();
    if (!affichage) return std::nullopt;
    GdkGLContext* contexte = gdk_display_create_gl_context(affichage, nullptr);
    if (!contexte) return std::nullopt;
    std::optional<std::string> rendeur;
    if (gdk_gl_context_realize(contexte, nullptr)) {
        gdk_gl_context_make_current(contexte);
        if (const auto* texte = reinterpret_cast<const char*>(glGetString(GL_RENDERER))) {
            rendeur = texte;
        }
        gdk_gl_context_clear_current();
    }
    g_object_unref(contexte);
    return rendeur;
}

bool carteGraphiquePresente() {
    if (g_file_test("/dev/nvidia0", G_FILE_TEST_EXISTS)) return true;
    GDir* dossier = g_dir_open("/dev/dri", 0, nullptr);
    if (!dossier) return false;
    bool trouve = false;
    while (const char* nom = g_dir_read_name(dossier)) {
        const std::string_view n(nom);
        trouve = trouve || n.starts_with("renderD") || n.starts_with("card");
    }
    g_dir_close(dossier);
    return trouve;
}

SurveillanceReprise::SurveillanceReprise(std::function<void(bool)> rappel)
    : rappel_(std::move(rappel)),
      moniteur_(static_cast<GNetworkMonitor*>(g_object_ref(g_network_monitor_get_default()))),
      annulation_(g_cancellable_new()) {
    g_signal_connect(moniteur_, "network-changed",
                     G_CALLBACK(+[](GNetworkMonitor*, gboolean disponible, gpointer soi) {
                         if (disponible) static_cast<SurveillanceReprise*>(soi)->rappel_(false);
                     }),
                     this);
    // The system bus is reached without holding up the launch; a machine without logind (or
    // without a system bus) simply never reports waking up.
    g_bus_get(
        G_BUS_TYPE_SYSTEM, annulation_,
        [](GObject*, GAsyncResult* resultat, gpointer donnees) {
            GDBusConnection* bus = g_bus_get_finish(resultat, nullptr);
            if (!bus) return;  // also when cancelled: `donnees` may be gone
            auto* soi = static_cast<SurveillanceReprise*>(donnees);
            soi->bus_ = bus;
            soi->abonnement_ = g_dbus_connection_signal_subscribe(
                bus, "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                "/org/freedesktop/login1", nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
                [](GDBusConnection*, const char*, const char*, const char*, const char*,
                   GVariant* parametres, gpointer s) {
                    gboolean avant = TRUE;
                    if (g_variant_is_of_type(parametres, G_VARIANT_TYPE("(b)"))) {
                        g_variant_get(parametres, "(b)", &avant);
                    }
                    // FALSE: the machine has just woken up.
                    if (!avant) static_cast<SurveillanceReprise*>(s)->rappel_(true);
                },
                soi, nullptr);
        },
        this);
}

SurveillanceReprise::~SurveillanceReprise() {
    g_cancellable_cancel(annulation_);
    g_object_unref(annulation_);
    g_signal_handlers_disconnect_by_data(moniteur_, this);
    g_object_unref(moniteur_);
    if (bus_) {
        g_dbus_connection_signal_unsubscribe(bus_, abonnement_);
        g_object_unref(bus_);
    }
}

}  // namespace brindex::gtk
