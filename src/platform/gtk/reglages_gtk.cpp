#include "reglages_gtk.hpp"

#include "container/connexion.hpp"

#include <glib.h>
#include <glib/gstdio.h>

namespace brindex::gtk {

namespace {

constexpr const char* groupe = "brindex";

struct FichierCles {
    GKeyFile* cles = g_key_file_new();
    ~FichierCles() { g_key_file_free(cles); }
};

// Loads the file; a missing file is an empty one. An unreadable or corrupt file is moved
// aside, once, and read as empty.
void charger(const std::string& chemin, GKeyFile* cles) {
    GError* erreur = nullptr;
    if (g_key_file_load_from_file(cles, chemin.c_str(), G_KEY_FILE_KEEP_COMMENTS, &erreur)) return;
    const bool absent = g_error_matches(erreur, G_FILE_ERROR, G_FILE_ERROR_NOENT);
    g_clear_error(&erreur);
    if (absent) return;
    const std::string copie = chemin + ".bak";
    if (!g_file_test(copie.c_str(), G_FILE_TEST_EXISTS)) g_rename(chemin.c_str(), copie.c_str());
}

}  // namespace

ReglagesGtk ReglagesGtk::parDefaut() {
    char* chemin = g_build_filename(g_get_user_config_dir(), "brindex", "brindex.conf", nullptr);
    ReglagesGtk reglages(chemin);
    g_free(chemin);
    return reglages;
}

std::optional<std::string> ReglagesGtk::lire(const std::string& cle) const {
    FichierCles f;
    charger(chemin_, f.cles);
    char* valeur = g_key_file_get_string(f.cles, groupe, cle.c_str(), nullptr);
    if (!valeur) return std::nullopt;
    std::string texte = valeur;
    g_free(valeur);
    return texte;
}

void ReglagesGtk::ecrire(const std::string& cle, const std::optional<std::string>& valeur) {
    FichierCles f;
    charger(chemin_, f.cles);
    if (valeur) {
        g_key_file_set_string(f.cles, groupe, cle.c_str(), valeur->c_str());
    } else if (!g_key_file_remove_key(f.cles, groupe, cle.c_str(), nullptr)) {
        return;  // nothing to remove
    }
    char* dossier = g_path_get_dirname(chemin_.c_str());
    g_mkdir_with_parents(dossier, 0700);
    g_free(dossier);
    // Written to a temporary file then renamed: never half a file.
    g_key_file_save_to_file(f.cles, chemin_.c_str(), nullptr);
}

Administration administrationGtk() {
    Administration administration;
    bool origines = false;
    for (const char* const* dossier = g_get_system_config_dirs(); *dossier; ++dossier) {
        char* chemin = g_build_filename(*dossier, "brindex", "brindex.conf", nullptr);
        FichierCles f;
        const bool lu = g_key_file_load_from_file(f.cles, chemin, G_KEY_FILE_NONE, nullptr);
        g_free(chemin);
        if (!lu) continue;
        const std::string cleOrigines(CleAdministration::originesConnexion);
        if (!origines && g_key_file_has_key(f.cles, groupe, cleOrigines.c_str(), nullptr)) {
            origines = true;
            if (char** liste = g_key_file_get_string_list(f.cles, groupe, cleOrigines.c_str(),
                                                          nullptr, nullptr)) {
                for (char** o = liste; *o; ++o) administration.originesConnexion.emplace_back(*o);
                g_strfreev(liste);
            }
        }
        const std::string cleQuestion(CleAdministration::questionConnexion);
        GError* erreur = nullptr;
        const gboolean question =
            g_key_file_get_boolean(f.cles, groupe, cleQuestion.c_str(), &erreur);
        if (!administration.questionConnexion && !erreur) {
            administration.questionConnexion = question != FALSE;
        }
        g_clear_error(&erreur);
    }
    return administration;
}

}  // namespace brindex::gtk
