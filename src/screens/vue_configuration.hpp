#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "address/sonde.hpp"
#include "address/url.hpp"
#include "brand/marque.hpp"

namespace brindex {

// The widgets a platform draws for the configuration view; the view's logic drives them.
class ControlesConfiguration {
  public:
    virtual ~ControlesConfiguration() = default;
    virtual std::string texteChamp() const = 0;
    virtual void definirTexteChamp(const std::string& texte) = 0;
    virtual void activerChamp(bool actif) = 0;
    virtual void activerBouton(bool actif) = 0;
    // The spinner: drawn only while it turns, but it keeps its place.
    virtual void tournerRoue(bool enMarche) = 0;
    virtual void couleurMessage(const Couleur& couleur) = 0;
    virtual void texteMessage(const std::string& texte) = 0;
    // "Enregistrer quand même"; takes no room while hidden.
    virtual void montrerForcer(bool visible) = 0;
    virtual void focaliserChamp() = 0;
};

// Starts a probe of a URL; the answer comes later, once, on the main thread.
using Sondeur = std::function<void(const Url&, std::function<void(ResultatSonde)>)>;

// Where the user gives the address of their space: checks it, probes it, explains what it
// found, and hands the URL to keep to its owner.
class VueConfiguration : public std::enable_shared_from_this<VueConfiguration> {
  public:
    static std::shared_ptr<VueConfiguration> creer(std::optional<std::string> adresseActuelle,
                                                   Sondeur sondeur);

    // The text the field starts with: the current address, or empty.
    const std::string& texteInitial() const { return texteInitial_; }

    // Called by the platform once it has built the widgets; puts them in the ready state.
    void attacher(ControlesConfiguration& controles);
    ControlesConfiguration* controles() const { return controles_; }

    // Set by the owner; called with the address to keep.
    std::function<void(const Url&)> onConnexion;

    // Tries the built-in addresses one after another when the field is empty.
    void detecterAdresseParDefaut();
    // Return in the field, or "Se connecter".
    void valider();
    // "Enregistrer quand même".
    void forcer();
    // Every edit the user makes in the field.
    void texteModifie();

  private:
    VueConfiguration(std::optional<std::string> adresseActuelle, Sondeur sondeur);
    void suivante(std::shared_ptr<std::vector<std::string>> restantes);

    std::string texteInitial_;
    Sondeur sondeur_;
    ControlesConfiguration* controles_ = nullptr;
    std::optional<Url> urlEnAttente_;
};

}  // namespace brindex
