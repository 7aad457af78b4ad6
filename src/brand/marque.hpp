#pragma once

#include <array>
#include <string_view>

namespace brindex {

// An sRGB colour, components from 0 to 1; each platform turns it into its own colour object.
struct Couleur {
    double rouge;
    double vert;
    double bleu;
    double alpha;
    friend bool operator==(const Couleur&, const Couleur&) = default;
};

// The brand's fixed values.
namespace Marque {

inline constexpr std::string_view version = "1.0.0";
inline constexpr std::string_view cleEspace = "espaceURL";
inline constexpr std::string_view agentSuffixe = "Brindex-Desktop/1.0.0";
inline constexpr std::string_view nom = "Brindex";
// Reverse-DNS identifier of the application on every platform.
inline constexpr std::string_view identifiant = "example.brindex.Desktop";

// Tried in this order when the address field is empty: the product's own host first, then a
// wildcard-DNS name that spells one fixed server address.
inline constexpr std::array<std::string_view, 2> adressesParDefaut = {
    "espace.brindex.example",
    "203-0-113-42.joker-dns.example",
};

// Example host shown in the address field's placeholder and in the invalid-address text.
inline constexpr std::string_view hoteExemple = "espace.mon-entreprise.example";
// The product's public web site.
inline constexpr std::string_view domaineSite = "brindex.example";
inline constexpr std::string_view urlSite = "https://www.brindex.example/";

inline constexpr Couleur fond{0.031, 0.067, 0.098, 1.0};
inline constexpr Couleur carte{0.051, 0.102, 0.149, 1.0};
inline constexpr Couleur ligne{0.114, 0.192, 0.251, 1.0};
inline constexpr Couleur texte{0.906, 0.937, 0.957, 1.0};
inline constexpr Couleur attenue{0.557, 0.635, 0.694, 1.0};
inline constexpr Couleur accent{0.0, 0.698, 0.914, 1.0};
inline constexpr Couleur erreur{1.0, 0.475, 0.42, 1.0};

}  // namespace Marque
}  // namespace brindex
