#pragma once

#include <optional>
#include <string>

namespace brindex::gtk {

// Hands a URI to the desktop's default handler (browser, mail, telephone, file manager).
void ouvrirUriParDefaut(const std::string& uri);

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

}  // namespace brindex::gtk
