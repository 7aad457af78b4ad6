#include "address/texte.hpp"

#include <cstdint>
#include <optional>

namespace brindex {

namespace {

struct Point {
    char32_t valeur;
    std::size_t longueur;
};

// Decodes the code point starting at `debut`; nothing for an invalid sequence (strict UTF-8:
// no overlong forms, no surrogates, nothing above U+10FFFF).
std::optional<Point> decoder(std::string_view t, std::size_t debut) {
    const auto octet = [&](std::size_t i) { return static_cast<std::uint8_t>(t[i]); };
    const std::uint8_t premier = octet(debut);
    std::size_t longueur;
    char32_t valeur;
    if (premier < 0x80) return Point{premier, 1};
    if (premier >= 0xC2 && premier <= 0xDF) {
        longueur = 2;
        valeur = premier & 0x1F;
    } else if ((premier & 0xF0) == 0xE0) {
        longueur = 3;
        valeur = premier & 0x0F;
    } else if (premier >= 0xF0 && premier <= 0xF4) {
        longueur = 4;
        valeur = premier & 0x07;
    } else {
        return std::nullopt;
    }
    if (debut + longueur > t.size()) return std::nullopt;
    for (std::size_t i = 1; i < longueur; ++i) {
        if ((octet(debut + i) & 0xC0) != 0x80) return std::nullopt;
        valeur = (valeur << 6) | (octet(debut + i) & 0x3F);
    }
    if ((longueur == 3 && (valeur < 0x800 || (valeur >= 0xD800 && valeur <= 0xDFFF))) ||
        (longueur == 4 && (valeur < 0x10000 || valeur > 0x10FFFF))) {
        return std::nullopt;
    }
    return Point{valeur, longueur};
}

bool estSeparateurEspace(char32_t c) {
    return c == 0x20 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

bool estBlanc(char32_t c, Blancs blancs) {
    if (c == 0x09 || estSeparateurEspace(c)) return true;
    if (blancs == Blancs::espaces) return false;
    return c == 0x2028 || c == 0x2029 || (c >= 0x0A && c <= 0x0D) || c == 0x85;
}

}  // namespace

std::size_t longueurUtf8(std::string_view texte, std::size_t debut) {
    const auto point = decoder(texte, debut);
    return point ? point->longueur : 0;
}

bool estUtf8(std::string_view texte) {
    for (std::size_t i = 0; i < texte.size();) {
        const std::size_t longueur = longueurUtf8(texte, i);
        if (longueur == 0) return false;
        i += longueur;
    }
    return true;
}

std::size_t coupureUtf8(std::string_view texte, std::size_t octets) {
    if (octets >= texte.size()) return texte.size();
    // Back over continuation bytes, so that the cut falls before a sequence, not inside it.
    std::size_t fin = octets;
    while (fin > 0 && octets - fin < 3 && (static_cast<std::uint8_t>(texte[fin]) & 0xC0) == 0x80) {
        --fin;
    }
    return (static_cast<std::uint8_t>(texte[fin]) & 0xC0) == 0x80 ? octets : fin;
}

std::string extrait(std::string_view texte, std::size_t caracteres, std::size_t lignes) {
    std::string resultat;
    std::size_t compte = 0;
    std::size_t sauts = 0;
    for (std::size_t i = 0; i < texte.size();) {
        if (compte == caracteres || sauts == lignes) {
            // What remains is only blank: the text was not really cut.
            if (!retirerBlancs(texte.substr(i), Blancs::espacesEtLignes).empty()) {
                resultat += "\u2026";
            }
            break;
        }
        const auto point = decoder(texte, i);
        if (point) {
            resultat.append(texte.substr(i, point->longueur));
            i += point->longueur;
            if (point->valeur == '\n' && ++sauts == lignes) resultat.pop_back();
        } else {
            resultat += "\uFFFD";
            ++i;
        }
        ++compte;
    }
    return resultat;
}

std::string_view retirerBlancs(std::string_view texte, Blancs blancs) {
    std::size_t debut = 0;
    while (debut < texte.size()) {
        const auto point = decoder(texte, debut);
        if (!point || !estBlanc(point->valeur, blancs)) break;
        debut += point->longueur;
    }
    std::size_t fin = texte.size();
    while (fin > debut) {
        // Step back to the start of the last code point: at most three continuation bytes.
        std::size_t depart = fin - 1;
        while (depart > debut && fin - depart < 4 &&
               (static_cast<std::uint8_t>(texte[depart]) & 0xC0) == 0x80) {
            --depart;
        }
        const auto point = decoder(texte, depart);
        if (!point || depart + point->longueur != fin || !estBlanc(point->valeur, blancs)) break;
        fin = depart;
    }
    return texte.substr(debut, fin - debut);
}

}  // namespace brindex
