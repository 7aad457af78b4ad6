#pragma once

// The layout of the two native screens, as data both platforms draw from: texts, fonts,
// colours by their brand name, widths and spacings, in points.

#include <optional>
#include <string_view>

#include "brand/marque.hpp"

namespace brindex::Disposition {

enum class Graisse { normale, legere, moyenne, demiGrasse };
enum class TailleControle { petite, normale, grande };

struct Police {
    double taille;
    Graisse graisse = Graisse::normale;
};

struct Texte {
    std::string_view texte;
    Police police;
    Couleur couleur;
    double opacite = 1.0;
    bool centre = false;
    // Wraps at word boundaries within this width; none: one line, its natural width.
    std::optional<double> largeur = std::nullopt;
};

struct Bouton {
    std::string_view titre;
    TailleControle taille;
    // Return presses it; drawn on the accent colour with white text.
    bool parDefaut;
};

// Between the items of a column, unless an item names its own space below.
inline constexpr double espacementColonne = 12;

namespace Configuration {
inline constexpr double cote = 96;  // the application's icon, square
inline constexpr double sousLogo = 20;
inline constexpr Texte titre{"Brindex", {30, Graisse::demiGrasse}, Marque::texte, 1.0, true};
inline constexpr double sousTitre = 8;
inline constexpr Texte intro{
    "Votre espace est un serveur privé dédié. Saisissez son adresse pour ouvrir la mémoire de "
    "l'entreprise.",
    {13.5},
    Marque::attenue,
    1.0,
    true,
    460};
inline constexpr double sousIntro = 34;
// Its leading edge lines up with the entry row's.
inline constexpr Texte libelle{"Adresse de votre espace", {12.5, Graisse::moyenne}, Marque::texte};
inline constexpr double sousLibelle = 8;
inline constexpr std::string_view prefixeExemple = "ex. ";  // + Marque::hoteExemple
inline constexpr Police policeChamp{14};
inline constexpr double largeurChamp = 330;
inline constexpr Bouton connexion{"Se connecter", TailleControle::grande, true};
inline constexpr Police policeConnexion{13.5, Graisse::demiGrasse};
inline constexpr double espacementSaisie = 10;  // between the field and the button
inline constexpr double sousSaisie = 14;
// The spinner keeps its place while stopped; the message shows at most two lines.
inline constexpr TailleControle roue = TailleControle::petite;
inline constexpr Texte message{"", {12}, Marque::erreur, 1.0, true, 430};
inline constexpr int lignesMessage = 2;
inline constexpr double espacementEtat = 8;  // between the spinner and the message
inline constexpr double sousEtat = 10;
// Takes no room while hidden.
inline constexpr Bouton forcer{"Enregistrer quand même", TailleControle::normale, false};
inline constexpr std::string_view aide =
    "L'adresse vous a été remise à la mise en place de votre espace. Besoin d'aide ? ";  // + site
inline constexpr Texte texteAide{"", {11.5}, Marque::attenue, 0.75, true, 460};
// The column's centre lies this far above the view's centre.
inline constexpr double decalageVertical = 24;
}  // namespace Configuration

namespace Erreur {
inline constexpr Texte signe{"\u26A0\uFE0E", {44, Graisse::legere}, Marque::attenue};
// Its text is the view's own ("Espace injoignable" unless it says otherwise).
inline constexpr Texte titre{"", {22, Graisse::demiGrasse}, Marque::texte};
inline constexpr Texte explication{"", {13}, Marque::attenue, 1.0, true, 440};
inline constexpr double sousExplication = 22;
// Left to right.
inline constexpr Bouton changer{"Changer d'adresse…", TailleControle::grande, false};
inline constexpr Bouton reessayer{"Réessayer", TailleControle::grande, true};
inline constexpr double espacementBoutons = 10;
inline constexpr double decalageVertical = 20;
}  // namespace Erreur

}  // namespace brindex::Disposition
