#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>

#include "brand/reglages.hpp"
#include "container/ports.hpp"
#include "ecrans_gtk.hpp"
#include "outils_gtk.hpp"
#include "recherche_gtk.hpp"
#include "vue_web_gtk.hpp"

namespace brindex::gtk {

// What every window of the application does, over a GtkApplicationWindow.
template <typename Interface>
class FenetreGtk : public Interface {
  public:
    FenetreGtk(GtkApplication* application, const ParametresFenetre& parametres,
               std::function<void()> vaFermer);
    ~FenetreGtk() override;
    FenetreGtk(const FenetreGtk&) = delete;
    FenetreGtk& operator=(const FenetreGtk&) = delete;

    GtkWindow* fenetre() const { return GTK_WINDOW(fenetre_.get()); }
    // The strip above the page, where the window's own bars stack (empty and hidden by default
    // as GTK hides an empty box's space): it stays with the window while pages come and go.
    GtkBox* bandeau() const { return GTK_BOX(bandeau_.get()); }

    void definirTitre(const std::string& titre) override;
    bool estCle() const override;
    void devant() override;
    void oublierFermeture() override {
        vaFermer_ = nullptr;
        retenue_ = nullptr;
    }
    void retenirFermeture(std::function<bool()> demande) override { retenue_ = std::move(demande); }
    void fermer() override;
    using Interface::feuille;
    void feuille(const Alerte& alerte, std::function<void(ReponseAlerte)> reponse) override;
    void barreConnexion(const std::optional<std::string>& texte,
                        std::function<void()> annuler) override;
    void attacherRecherche(std::shared_ptr<RechercheDansPage> recherche) override;

  protected:
    // Runs before the window goes, whoever closes it.
    virtual void avantFermeture() {}

  private:
    static gboolean surDemandeFermeture(GtkWindow*, gpointer donnees);

    Ref<GtkWidget> fenetre_;
    Ref<GtkWidget> bandeau_;
    // The sign-in bar in the strip, while it shows, and what its button does.
    GtkWidget* barreConnexion_ = nullptr;
    std::function<void()> annulerConnexion_;
    std::unique_ptr<BarreRechercheGtk> recherche_;
    std::function<void()> vaFermer_;
    std::function<bool()> retenue_;
    bool detruite_ = false;
};

// The main window: one of three screens, its size kept between runs.
class FenetrePrincipaleGtk : public FenetreGtk<FenetrePrincipale> {
  public:
    FenetrePrincipaleGtk(GtkApplication* application, const ParametresFenetre& parametres,
                         std::function<void()> vaFermer, Reglages& reglages);
    ~FenetrePrincipaleGtk() override;

    void montrerConfiguration(std::shared_ptr<VueConfiguration> vue) override;
    void montrerEspace(std::shared_ptr<VueWeb> vue) override;
    void montrerErreur(std::shared_ptr<VueErreur> vue) override;
    void progression(double valeur, bool visible) override;

    // The screen shown now, for tests that look at it.
    Ecran* ecran() const { return ecran_.get(); }
    GtkWidget* barre() const { return barre_; }

  protected:
    void avantFermeture() override;

  private:
    void remplacer(std::unique_ptr<Ecran> ecran);

    Reglages& reglages_;
    std::string nomSauvegarde_;
    std::unique_ptr<Ecran> ecran_;
    GtkWidget* barre_ = nullptr;
};

// A window around a popup's web view; it shows once the page is ready.
class FenetreSecondaireGtk : public FenetreGtk<Fenetre> {
  public:
    FenetreSecondaireGtk(GtkApplication* application, const ParametresFenetre& parametres,
                         std::shared_ptr<VueWeb> vue, std::function<void()> vaFermer);
    ~FenetreSecondaireGtk() override;

  private:
    std::shared_ptr<VueWeb> vue_;
};

}  // namespace brindex::gtk
