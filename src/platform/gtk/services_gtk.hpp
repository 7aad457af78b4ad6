#pragma once

#include <gio/gio.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindex::gtk {

// Hands a URI to the desktop's default handler (browser, mail, telephone, file manager).
void ouvrirUriParDefaut(const std::string& uri);

// The name of the desktop's default application for the URI's scheme, unless it is this one.
std::optional<std::string> applicationPourUri(const std::string& uri);

// Spell-checking on in every page, in these languages where a dictionary is installed; gives
// the languages the engine took.
std::vector<std::string> activerOrthographe(const std::vector<std::string>& langues);

// The locale's language names, from the most precise ("fr_CA.UTF-8") to "C".
std::vector<std::string> nomsLocale();

// Shows the file selected in the file manager, or at least its folder.
void revelerFichier(const std::string& chemin);

std::optional<std::string> dossierTelechargementsGtk();
std::string dossierPersonnelGtk();

// $XDG_STATE_HOME/brindex/Brindex.log, its folder created.
std::string cheminJournalGtk();

// The renderer string of a GL context made on the default display, or nothing when GL can't
// be had at all.
std::optional<std::string> rendeurGlGtk();

// Whether the machine has a graphics device GL could run on: a DRM node, or the device of
// NVIDIA's own driver. Asked before GTK opens the display.
bool carteGraphiquePresente();

// Tells when the network comes back (GIO's network monitor) and when the machine wakes up
// (logind's PrepareForSleep on the system bus); `reveil` says which.
class SurveillanceReprise {
  public:
    explicit SurveillanceReprise(std::function<void(bool reveil)> rappel);
    ~SurveillanceReprise();
    SurveillanceReprise(const SurveillanceReprise&) = delete;
    SurveillanceReprise& operator=(const SurveillanceReprise&) = delete;

  private:
    std::function<void(bool)> rappel_;
    GNetworkMonitor* moniteur_;
    GCancellable* annulation_;
    GDBusConnection* bus_ = nullptr;
    guint abonnement_ = 0;
};

}  // namespace brindex::gtk
