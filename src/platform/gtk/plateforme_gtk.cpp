#include "plateforme_gtk.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "container/regles.hpp"
#include "dialogues_gtk.hpp"
#include "log/journal.hpp"
#include "services_gtk.hpp"
#include "vue_web_gtk.hpp"

namespace brindex::gtk {

namespace {

bool orthographeActivee = false;

// Loading the dictionaries holds the main thread a tenth of a second: not while the first page
// loads, but half a second after it has (or failed), its first image drawn. Once for the run.
void surChargementPourOrthographe(WebKitWebView* vue, WebKitLoadEvent evenement, gpointer) {
    if (evenement != WEBKIT_LOAD_FINISHED) return;
    g_signal_handlers_disconnect_by_func(
        vue, reinterpret_cast<gpointer>(surChargementPourOrthographe), nullptr);
    if (orthographeActivee) return;
    orthographeActivee = true;
    g_timeout_add_full(
        G_PRIORITY_LOW, 500,
        +[](gpointer) -> gboolean {
            Journal::ecrire(ligneOrthographe(activerOrthographe(languesOrthographe(nomsLocale()))));
            return G_SOURCE_REMOVE;
        },
        nullptr, nullptr);
}

// The application's own network session: site data in $XDG_DATA_HOME/brindex, the cache in
// $XDG_CACHE_HOME/brindex, and the cookies in an SQLite file beside the data, since WebKit keeps
// them in memory only unless told where to store them. Session cookies still end with the run.
Ref<WebKitNetworkSession> sessionPersistante() {
    char* donnees = g_build_filename(g_get_user_data_dir(), "brindex", nullptr);
    char* cache = g_build_filename(g_get_user_cache_dir(), "brindex", nullptr);
    char* biscuits = g_build_filename(donnees, "cookies.sqlite", nullptr);
    g_mkdir_with_parents(donnees, 0700);
    auto session = Ref<WebKitNetworkSession>::adopter(webkit_network_session_new(donnees, cache));
    webkit_cookie_manager_set_persistent_storage(
        webkit_network_session_get_cookie_manager(session.get()), biscuits,
        WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    // Nothing but the user removes site data: no tracking prevention purging the cookies of a
    // sign-in site the user hasn't visited for a while.
    webkit_network_session_set_itp_enabled(session.get(), FALSE);
    g_free(biscuits);
    g_free(cache);
    g_free(donnees);
    return session;
}

}  // namespace

PlateformeGtk::PlateformeGtk(GtkApplication* application)
    : application_(application),
      session_(sessionPersistante()),
      reglages_(ReglagesGtk::parDefaut()) {
    // Every download of every view goes through the one persistent session.
    g_signal_connect(session_.get(), "download-started", G_CALLBACK(surTelechargement), this);
}

PlateformeGtk::~PlateformeGtk() {
    g_signal_handlers_disconnect_by_data(session_.get(), this);
    for (const auto& [telechargement, entree] : telechargements_) {
        g_signal_handlers_disconnect_by_data(telechargement, this);
    }
}

void PlateformeGtk::definirControleur(std::weak_ptr<Controleur> controleur) {
    controleur_ = std::move(controleur);
    reprise_ = std::make_unique<SurveillanceReprise>([faible = controleur_](bool reveil) {
        if (const auto c = faible.lock()) {
            c->reprise(reveil ? Controleur::Reprise::reveil : Controleur::Reprise::reseau);
        }
    });
}

std::shared_ptr<FenetrePrincipale> PlateformeGtk::creerFenetrePrincipale(
    const ParametresFenetre& parametres, std::function<void()> vaFermer) {
    auto fenetre = std::make_shared<FenetrePrincipaleGtk>(application_, parametres,
                                                          std::move(vaFermer), reglages_);
    principale_ = fenetre;
    return fenetre;
}

std::shared_ptr<VueWeb> PlateformeGtk::creerVueWeb(const ParametresVueWeb& parametres,
                                                   const ConfigurationMoteur* configuration) {
    const auto* gtkConfiguration = dynamic_cast<const ConfigurationGtk*>(configuration);
    auto vue = std::make_shared<VueWebGtk>(parametres,
                                           gtkConfiguration ? gtkConfiguration->ouvreur : nullptr,
                                           session_.get(), controleur_, sansComposition_);
    if (!orthographeActivee) {
        g_signal_connect(vue->webView(), "load-changed", G_CALLBACK(surChargementPourOrthographe),
                         nullptr);
    }
    return vue;
}

std::shared_ptr<Fenetre> PlateformeGtk::creerFenetreSecondaire(const ParametresFenetre& parametres,
                                                               std::shared_ptr<VueWeb> vue,
                                                               std::function<void()> vaFermer) {
    return std::make_shared<FenetreSecondaireGtk>(application_, parametres, std::move(vue),
                                                  std::move(vaFermer));
}

void PlateformeGtk::ouvrirUrl(const std::string& url) {
    ouvrirUriParDefaut(url);
}

std::optional<std::string> PlateformeGtk::applicationPour(const std::string& url) {
    return applicationPourUri(url);
}

void PlateformeGtk::reveler(const std::string& chemin) {
    revelerFichier(chemin);
}

void PlateformeGtk::plusTard(std::chrono::milliseconds delai, std::function<void()> action) {
    using Action = std::function<void()>;
    const auto ms = static_cast<guint>(std::clamp<std::int64_t>(delai.count(), 0, G_MAXUINT));
    g_timeout_add_full(
        G_PRIORITY_DEFAULT, ms,
        [](gpointer donnees) {
            (*static_cast<Action*>(donnees))();
            return G_SOURCE_REMOVE;
        },
        new Action(std::move(action)),
        [](gpointer donnees) { delete static_cast<Action*>(donnees); });
}

Administration PlateformeGtk::administration() const {
    return administrationGtk();
}

GtkWindow* PlateformeGtk::fenetreParente() const {
    if (GtkWindow* active = gtk_application_get_active_window(application_)) return active;
    if (const auto principale = principale_.lock()) return principale->fenetre();
    return nullptr;
}

void PlateformeGtk::alerte(const Alerte& alerte, std::function<void(ReponseAlerte)> reponse) {
    montrerAlerte(fenetreParente(), alerte, std::move(reponse));
}

void PlateformeGtk::choisirFichiers(const DemandeFichiers& demande,
                                    std::function<void(FichiersChoisis)> reponse) {
    gtk::choisirFichiers(fenetreParente(), demande, std::move(reponse));
}

std::optional<std::string> PlateformeGtk::dossierTelechargements() {
    return dossierTelechargementsGtk();
}

std::string PlateformeGtk::dossierPersonnel() {
    return dossierPersonnelGtk();
}

bool PlateformeGtk::existe(const std::string& chemin) {
    // A dangling link still takes the name.
    std::error_code erreur;
    const auto etat = std::filesystem::symlink_status(chemin, erreur);
    return !erreur && etat.type() != std::filesystem::file_type::not_found;
}

std::vector<std::string> PlateformeGtk::suffixesTemporairesTelechargement() const {
    // WebKitGTK writes "<destination>.wkdownload" while a download runs, and GIO sets an
    // existing file of that name aside as "<name>~" before replacing it.
    return {".wkdownload", ".wkdownload~"};
}

bool PlateformeGtk::balayagePossible() const {
    GdkDisplay* affichage = gdk_display_get_default();
    GdkSeat* siege = affichage ? gdk_display_get_default_seat(affichage) : nullptr;
    if (!siege) return false;
    GList* appareils = gdk_seat_get_devices(siege, GDK_SEAT_CAPABILITY_ALL_POINTING);
    bool trouve = false;
    for (GList* a = appareils; a; a = a->next) {
        const GdkInputSource source = gdk_device_get_source(GDK_DEVICE(a->data));
        trouve = trouve || source == GDK_SOURCE_TOUCHPAD || source == GDK_SOURCE_TOUCHSCREEN;
    }
    g_list_free(appareils);
    return trouve;
}

// ---- Downloads ----

std::shared_ptr<TelechargementGtk> PlateformeGtk::entree(WebKitDownload* telechargement) const {
    const auto trouve = telechargements_.find(telechargement);
    return trouve == telechargements_.end() ? nullptr : trouve->second;
}

void PlateformeGtk::surTelechargement(WebKitNetworkSession*, WebKitDownload* telechargement,
                                      gpointer donnees) {
    auto* soi = static_cast<PlateformeGtk*>(donnees);
    soi->telechargements_.emplace(telechargement,
                                  std::make_shared<TelechargementGtk>(telechargement));
    // WebKit refuses an existing destination rather than overwriting it.
    webkit_download_set_allow_overwrite(telechargement, FALSE);
    g_signal_connect(telechargement, "decide-destination", G_CALLBACK(surDestination), soi);
    g_signal_connect(telechargement, "failed", G_CALLBACK(surEchecTelechargement), soi);
    g_signal_connect(telechargement, "finished", G_CALLBACK(surFinTelechargement), soi);
}

gboolean PlateformeGtk::surDestination(WebKitDownload* telechargement, char* nomSuggere,
                                       gpointer donnees) {
    auto* soi = static_cast<PlateformeGtk*>(donnees);
    const auto c = soi->controleur_.lock();
    const auto t = soi->entree(telechargement);
    if (!c || !t) {
        webkit_download_cancel(telechargement);
        return TRUE;
    }
    const auto destination = c->destinationTelechargement(t, nomSuggere ? nomSuggere : "");
    if (!destination) {
        webkit_download_cancel(telechargement);
        return TRUE;
    }
    webkit_download_set_destination(telechargement, destination->c_str());
    return TRUE;
}

void PlateformeGtk::surEchecTelechargement(WebKitDownload* telechargement, GError* erreur,
                                           gpointer donnees) {
    auto* soi = static_cast<PlateformeGtk*>(donnees);
    const auto t = soi->entree(telechargement);
    if (!t) return;
    t->echoue = true;
    if (const auto c = soi->controleur_.lock()) {
        c->telechargementEchoue(*t, erreur && erreur->message ? erreur->message : "");
    }
}

void PlateformeGtk::surFinTelechargement(WebKitDownload* telechargement, gpointer donnees) {
    auto* soi = static_cast<PlateformeGtk*>(donnees);
    const auto t = soi->entree(telechargement);
    if (!t) return;
    // WebKit reports a failed download as finished too, after the failure.
    if (!t->echoue) {
        if (const auto c = soi->controleur_.lock()) c->telechargementTermine(*t);
    }
    g_signal_handlers_disconnect_by_data(telechargement, soi);
    soi->telechargements_.erase(telechargement);
}

}  // namespace brindex::gtk
