#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "container/ports.hpp"
#include "outils_gtk.hpp"

namespace brindex::gtk {

// Makes a window's content wait for a dialog, as a sheet does, until it goes. Several dialogs
// may hold one window: its content comes back with the last.
class VerrouContenu {
  public:
    explicit VerrouContenu(GtkWindow* fenetre);
    ~VerrouContenu();
    VerrouContenu(const VerrouContenu&) = delete;
    VerrouContenu& operator=(const VerrouContenu&) = delete;

  private:
    Ref<GtkWidget> contenu_;
};

// An alert over `parent`: a heading, the explanation, an optional one-line field and the
// buttons, the first one rightmost and pressed by Return, Escape dismissing. `reponse` runs
// exactly once, when the alert closes (with no button when it is dismissed). Modal to the whole
// application, or, as a sheet, to `parent` alone: the other windows stay usable.
enum class Modalite { application, feuille };
void montrerAlerte(GtkWindow* parent, const Alerte& alerte,
                   std::function<void(ReponseAlerte)> reponse,
                   Modalite modalite = Modalite::application);

// The system's file chooser, free-standing: the application stays usable while it is open.
// `reponse` gets the chosen paths, or nothing when cancelled.
void choisirFichiers(GtkWindow* parent, const DemandeFichiers& demande,
                     std::function<void(FichiersChoisis)> reponse);

}  // namespace brindex::gtk
