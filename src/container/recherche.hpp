#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "address/origine.hpp"
#include "container/ports.hpp"

namespace brindex {

// Beyond this many matches the engine stops counting.
inline constexpr unsigned resultatsRechercheMax = 1000;

// The find bar's words.
inline constexpr const char* texteChampRecherche = "Rechercher dans la page";
inline constexpr const char* texteResultatPrecedent = "Résultat précédent";
inline constexpr const char* texteResultatSuivant = "Résultat suivant";
inline constexpr const char* texteFermerRecherche = "Fermer la recherche";
inline constexpr const char* texteTermineRecherche = "Terminé";

// The widgets of a window's find bar, which the platform draws above the page.
class ControlesRecherche {
  public:
    virtual ~ControlesRecherche() = default;
    virtual void montrer(bool visible) = 0;
    // The keyboard focus in the field, its whole text selected.
    virtual void focaliserChamp() = 0;
    virtual std::string texteChamp() const = 0;
    // "2 sur 7", "Aucun résultat" (`echec`), or nothing.
    virtual void statut(const std::string& texte, bool echec) = 0;
};

// One window's find bar: searches that window's page as the user types and steps through the
// matches, wrapping around. Engines count the matches (where they can) but never say which one
// is selected: a new search starts from the top of the page, so that its match is the first,
// and each step moves one on.
class RechercheDansPage {
  public:
    // The bar's widgets, or none once they are gone.
    void attacher(ControlesRecherche* controles) { controles_ = controles; }
    // The page this bar searches; none, or another page, closes the bar.
    void definirVue(std::shared_ptr<VueWeb> vue);
    const std::shared_ptr<VueWeb>& vue() const { return vue_; }
    bool visible() const { return visible_; }

    // The menu's commands. Next and previous open the bar on the last search, or start one.
    void ouvrir();
    void suivant();
    void precedent();
    // Escape or the bar's close button: the page gets the keyboard back.
    void fermer();
    // The field's text changed.
    void texteChange(const std::string& texte);
    // The engine's answer to the oldest search not yet answered: found or not, and the number
    // of matches where the engine counts them.
    void resultat(bool trouve, std::optional<unsigned> nombre);
    // The page finished loading `url`: a page of another site closes the bar, one of the same
    // site is searched anew.
    void pageChargee(const std::optional<std::string>& url);

  private:
    void montrer();
    void cacher();
    void chercher(SensRecherche sens);
    void pas(SensRecherche sens);
    void afficherStatut();

    ControlesRecherche* controles_ = nullptr;
    std::shared_ptr<VueWeb> vue_;
    bool visible_ = false;
    // The site of the page when the bar opened.
    std::optional<Origine> origine_;
    std::string texte_;
    // The last answer: nothing while the search runs.
    std::optional<bool> trouve_;
    // Matches counted (above resultatsRechercheMax: too many), or nothing where not counted.
    std::optional<unsigned> total_;
    unsigned index_ = 0;
    // Searches sent and not yet answered, oldest first.
    std::deque<SensRecherche> attentes_;
};

}  // namespace brindex
