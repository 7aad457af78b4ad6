#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "outils_gtk.hpp"
#include "screens/vue_configuration.hpp"
#include "screens/vue_erreur.hpp"

namespace brindex::gtk {

// One screen of the main window: a widget tree that fills it.
class Ecran {
  public:
    virtual ~Ecran() = default;
    GtkWidget* racine() const { return racine_.get(); }
    // The widget that takes the focus when the screen is shown.
    virtual GtkWidget* focusInitial() const { return nullptr; }

  protected:
    Ref<GtkWidget> racine_;
};

// The configuration view drawn with GTK widgets; its logic drives them through the controls.
class EcranConfiguration : public Ecran, public ControlesConfiguration {
  public:
    explicit EcranConfiguration(std::shared_ptr<VueConfiguration> vue);
    ~EcranConfiguration() override;

    std::string texteChamp() const override;
    void definirTexteChamp(const std::string& texte) override;
    void activerChamp(bool actif) override;
    void activerBouton(bool actif) override;
    void tournerRoue(bool enMarche) override;
    void couleurMessage(const Couleur& couleur) override;
    void texteMessage(const std::string& texte) override;
    void montrerForcer(bool visible) override;
    void focaliserChamp() override;

    const Couleur& couleurActuelle() const { return couleur_; }

  private:
    static void surModification(GtkEditable*, gpointer donnees);
    static void surValider(GtkWidget*, gpointer donnees);
    static void surForcer(GtkButton*, gpointer donnees);

    std::shared_ptr<VueConfiguration> vue_;
    GtkWidget* champ_ = nullptr;
    GtkWidget* bouton_ = nullptr;
    GtkWidget* roue_ = nullptr;
    GtkWidget* message_ = nullptr;
    GtkWidget* forcer_ = nullptr;
    Ref<GtkCssProvider> styleMessage_;
    Couleur couleur_ = Marque::erreur;
    // Set while the program itself writes into the field, which is not an edit by the user.
    bool ecritureInterne_ = false;
};

// The error view: a sign, a title, the explanation and two buttons.
class EcranErreur : public Ecran {
  public:
    explicit EcranErreur(std::shared_ptr<VueErreur> vue);
    ~EcranErreur() override;
    // Return presses "Réessayer" wherever the focus is; it starts there.
    GtkWidget* focusInitial() const override { return reessayer_; }

  private:
    static void surReessayer(GtkWidget*, gpointer donnees);
    static void surChanger(GtkButton*, gpointer donnees);

    std::shared_ptr<VueErreur> vue_;
    GtkWidget* reessayer_ = nullptr;
    GtkWidget* changer_ = nullptr;
};

// A box whose width is exactly, or at most, the given number of pixels; a wrapping label
// inside it wraps within that width.
GtkWidget* largeurBornee(GtkWidget* enfant, int largeur, bool exacte);

}  // namespace brindex::gtk
