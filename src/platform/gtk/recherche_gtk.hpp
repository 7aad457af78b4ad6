#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "container/recherche.hpp"
#include "outils_gtk.hpp"

namespace brindex::gtk {

// A window's find bar, in the window's strip above the page: the search field, the count,
// previous and next, and a button that closes it. Return goes to the next match, Shift+Return
// to the previous one, Escape closes.
class BarreRechercheGtk : public ControlesRecherche {
  public:
    BarreRechercheGtk(GtkBox* bandeau, std::shared_ptr<RechercheDansPage> recherche);
    ~BarreRechercheGtk() override;
    BarreRechercheGtk(const BarreRechercheGtk&) = delete;
    BarreRechercheGtk& operator=(const BarreRechercheGtk&) = delete;

    void montrer(bool visible) override;
    void focaliserChamp() override;
    std::string texteChamp() const override;
    void statut(const std::string& texte, bool echec) override;

  private:
    static gboolean surTouche(GtkEventControllerKey*, guint touche, guint, GdkModifierType etat,
                              gpointer donnees);

    std::shared_ptr<RechercheDansPage> recherche_;
    Ref<GtkWidget> barre_;
    GtkWidget* champ_ = nullptr;
    GtkWidget* statut_ = nullptr;
};

}  // namespace brindex::gtk
