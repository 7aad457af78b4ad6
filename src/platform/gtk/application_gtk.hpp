#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>

#include "app/lancement.hpp"
#include "app/menus.hpp"
#include "app/rendu.hpp"
#include "container/commandes.hpp"
#include "container/controleur.hpp"
#include "outils_gtk.hpp"
#include "plateforme_gtk.hpp"

namespace brindex::gtk {

// The one application object: a GtkApplication holding the platform and the one controller.
class ApplicationGtk : public Coquille {
  public:
    ApplicationGtk();
    ~ApplicationGtk() override;
    ApplicationGtk(const ApplicationGtk&) = delete;
    ApplicationGtk& operator=(const ApplicationGtk&) = delete;

    // Runs until the main window closes; gives the exit status. The application takes no
    // arguments: whatever is given is ignored (a launcher may pass a file or an address), but
    // "--help", which prints one line.
    int executer(int argc, char** argv);

    void construireMenus() override;
    void activer() override;

    GtkApplication* application() const { return application_.get(); }
    Controleur* controleur() const { return controleur_.get(); }
    PlateformeGtk* plateforme() const { return plateforme_.get(); }

    // Runs once the launch is over (tests drive the application from there).
    std::function<void()> apresLancement;

  private:
    static void surActivation(GApplication*, gpointer donnees);
    GMenu* menuGtk(const Menu& menu);
    void commandeStandard(Commande commande);
    void aPropos();

    Ref<GtkApplication> application_;
    // Chosen before GTK opened the display, when no probe was needed.
    std::optional<ChoixRendu> renduSansCarte_;
    // The debug trace's SIGUSR1 source, which points at this object.
    guint sourceTables_ = 0;
    std::unique_ptr<PlateformeGtk> plateforme_;
    std::shared_ptr<Controleur> controleur_;
};

}  // namespace brindex::gtk
