#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "container/ports.hpp"

namespace brindex::gtk {

// A modal alert over `parent`: a heading, the explanation, an optional one-line field and the
// buttons, the first one rightmost and pressed by Return. `reponse` runs exactly once, when
// the alert closes (with no button when it is dismissed).
void montrerAlerte(GtkWindow* parent, const Alerte& alerte,
                   std::function<void(ReponseAlerte)> reponse);

// The system's file chooser; `reponse` gets the chosen paths, or nothing when cancelled.
void choisirFichiers(GtkWindow* parent, const DemandeFichiers& demande,
                     std::function<void(FichiersChoisis)> reponse);

}  // namespace brindex::gtk
