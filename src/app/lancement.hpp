#pragma once

#include <string_view>

namespace brindex {

class Controleur;

// What the application object does for the launch sequence.
class Coquille {
  public:
    virtual ~Coquille() = default;
    virtual void construireMenus() = 0;
    // Brings the application to the front, taking the focus from whichever application has it.
    virtual void activer() = 0;
};

inline constexpr std::string_view ligneDemarrage = "demarrage v1.0.0";

// End of launch: menus, first screen, activation, then the start line in the log, last, so
// that it follows the first load request.
void lancer(Coquille& coquille, Controleur& controleur);

// The user asks to reopen the application (Dock icon, second launch): with no visible window
// the main window comes back to the front with whatever it showed. Always true.
bool reouvrir(Controleur& controleur, bool fenetresVisibles);

}  // namespace brindex
