#include "address/hote.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "address/url.hpp"

namespace brindex {

namespace {

// No IPv4 address reaches this; a longer number is held at it so that it cannot overflow.
constexpr std::uint64_t tropGrand = std::uint64_t{1} << 32;

bool estChiffre(char c) {
    return c >= '0' && c <= '9';
}

// The value of `c` as a digit in base 8, 10 or 16, or -1.
int chiffre(char c, int base) {
    int valeur = -1;
    if (estChiffre(c)) {
        valeur = c - '0';
    } else if (c >= 'a' && c <= 'f') {
        valeur = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'F') {
        valeur = c - 'A' + 10;
    }
    return valeur < base ? valeur : -1;
}

std::vector<std::string_view> parties(std::string_view texte) {
    std::vector<std::string_view> resultat;
    std::size_t debut = 0;
    while (true) {
        const auto point = texte.find('.', debut);
        if (point == std::string_view::npos) {
            resultat.push_back(texte.substr(debut));
            return resultat;
        }
        resultat.push_back(texte.substr(debut, point - debut));
        debut = point + 1;
    }
}

// One part of an IPv4 address: decimal, hexadecimal after "0x", octal after a leading "0";
// nothing after the prefix reads as 0.
std::optional<std::uint64_t> nombreIPv4(std::string_view partie) {
    if (partie.empty()) return std::nullopt;
    int base = 10;
    if (partie.size() >= 2 && partie[0] == '0' && (partie[1] == 'x' || partie[1] == 'X')) {
        partie.remove_prefix(2);
        base = 16;
    } else if (partie.size() >= 2 && partie[0] == '0') {
        partie.remove_prefix(1);
        base = 8;
    }
    std::uint64_t valeur = 0;
    for (const char c : partie) {
        const int n = chiffre(c, base);
        if (n < 0) return std::nullopt;
        valeur = std::min(valeur * static_cast<std::uint64_t>(base) + static_cast<unsigned>(n),
                          tropGrand);
    }
    return valeur;
}

// Whether the engine reads the host as an IPv4 address (and refuses it if it is not a valid
// one) rather than as a domain: its last label, a trailing dot aside, is a number.
bool finitParUnNombre(std::string_view domaine) {
    auto labels = parties(domaine);
    if (labels.back().empty()) {
        if (labels.size() == 1) return false;
        labels.pop_back();
    }
    const auto dernier = labels.back();
    if (!dernier.empty() && std::all_of(dernier.begin(), dernier.end(), estChiffre)) return true;
    return nombreIPv4(dernier).has_value();
}

// One to four numbers, the last one filling the bytes the others leave: "127.1" is 127.0.0.1.
std::optional<std::string> ipv4(std::string_view domaine) {
    auto labels = parties(domaine);
    if (labels.back().empty() && labels.size() > 1) labels.pop_back();
    if (labels.size() > 4) return std::nullopt;
    std::vector<std::uint64_t> nombres;
    for (const auto label : labels) {
        const auto n = nombreIPv4(label);
        if (!n) return std::nullopt;
        nombres.push_back(*n);
    }
    const std::size_t avantDernier = nombres.size() - 1;
    if (std::any_of(nombres.begin(), nombres.begin() + static_cast<std::ptrdiff_t>(avantDernier),
                    [](std::uint64_t n) { return n > 255; })) {
        return std::nullopt;
    }
    if (nombres.back() >= std::uint64_t{1} << (8 * (5 - nombres.size()))) return std::nullopt;
    std::uint64_t adresse = nombres.back();
    for (std::size_t i = 0; i < avantDernier; ++i) adresse += nombres[i] << (8 * (3 - i));

    std::string resultat;
    for (int decalage = 24; decalage >= 0; decalage -= 8) {
        if (!resultat.empty()) resultat += '.';
        resultat += std::to_string((adresse >> decalage) & 0xFF);
    }
    return resultat;
}

// Eight 16-bit pieces; "::" stands for the zero pieces it leaves out, and the last 32 bits may
// be written as an IPv4 address in plain decimal.
std::optional<std::array<std::uint16_t, 8>> piecesIPv6(std::string_view t) {
    std::array<std::uint16_t, 8> adresse{};
    std::size_t piece = 0;
    std::optional<std::size_t> compression;
    std::size_t i = 0;
    const auto car = [&t](std::size_t j) { return j < t.size() ? t[j] : '\0'; };
    const auto fin = [&t](std::size_t j) { return j >= t.size(); };

    if (car(0) == ':') {
        if (car(1) != ':') return std::nullopt;
        i = 2;
        compression = ++piece;
    }
    while (!fin(i)) {
        if (piece == 8) return std::nullopt;
        if (car(i) == ':') {
            if (compression) return std::nullopt;
            ++i;
            compression = ++piece;
            continue;
        }
        unsigned valeur = 0;
        std::size_t longueur = 0;
        while (longueur < 4 && !fin(i) && chiffre(car(i), 16) >= 0) {
            valeur = valeur * 16 + static_cast<unsigned>(chiffre(car(i), 16));
            ++i;
            ++longueur;
        }
        if (car(i) == '.') {
            if (longueur == 0 || piece > 6) return std::nullopt;
            i -= longueur;
            int nombresVus = 0;
            while (!fin(i)) {
                if (nombresVus > 0) {
                    if (car(i) != '.' || nombresVus >= 4) return std::nullopt;
                    ++i;
                }
                if (!estChiffre(car(i))) return std::nullopt;
                std::optional<unsigned> octet;
                while (estChiffre(car(i))) {
                    const auto n = static_cast<unsigned>(car(i) - '0');
                    if (octet == 0u) return std::nullopt;  // no leading zero
                    octet = octet ? *octet * 10 + n : n;
                    if (*octet > 255) return std::nullopt;
                    ++i;
                }
                adresse[piece] = static_cast<std::uint16_t>(adresse[piece] * 0x100 + *octet);
                ++nombresVus;
                if (nombresVus == 2 || nombresVus == 4) ++piece;
            }
            if (nombresVus != 4) return std::nullopt;
            break;
        }
        if (car(i) == ':') {
            ++i;
            if (fin(i)) return std::nullopt;
        } else if (!fin(i)) {
            return std::nullopt;
        }
        adresse[piece++] = static_cast<std::uint16_t>(valeur);
    }
    if (compression) {
        // The pieces written after "::" move to the end; zeros fill the gap.
        std::size_t deplacees = piece - *compression;
        for (std::size_t j = 7; j != 0 && deplacees > 0; --j, --deplacees) {
            std::swap(adresse[j], adresse[*compression + deplacees - 1]);
        }
    } else if (piece != 8) {
        return std::nullopt;
    }
    return adresse;
}

// Lower-case hex without leading zeros; the first longest run of two or more zero pieces
// becomes "::".
std::string ecrireIPv6(const std::array<std::uint16_t, 8>& adresse) {
    std::size_t debutZeros = 8;
    std::size_t longueurZeros = 1;
    for (std::size_t i = 0; i < 8;) {
        std::size_t j = i;
        while (j < 8 && adresse[j] == 0) ++j;
        if (j - i > longueurZeros) {
            debutZeros = i;
            longueurZeros = j - i;
        }
        i = j == i ? i + 1 : j;
    }
    std::string resultat;
    for (std::size_t i = 0; i < 8; ++i) {
        if (i == debutZeros) {
            resultat += i == 0 ? "::" : ":";
            i += longueurZeros - 1;
            continue;
        }
        std::string hex;
        unsigned valeur = adresse[i];
        do {
            hex.insert(hex.begin(), "0123456789abcdef"[valeur & 0xF]);
            valeur >>= 4;
        } while (valeur != 0);
        resultat += hex;
        if (i != 7) resultat += ':';
    }
    return resultat;
}

// Control characters, space, DEL, '%' and the characters that delimit parts of a URL: the
// engine refuses a domain that holds any of them once decoded.
bool estInterditDansUnDomaine(unsigned char c) {
    return c <= 0x20 || c == 0x7F ||
           std::string_view("#%/:<>?@[\\]^|").find(static_cast<char>(c)) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> hoteCanonique(std::string_view hote, bool ipv6) {
    if (ipv6) {
        const auto pieces = piecesIPv6(hote);
        if (!pieces) return std::nullopt;
        return ecrireIPv6(*pieces);
    }

    // "%" followed by anything but two hex digits stays as it is, and is then refused below.
    std::string domaine;
    for (std::size_t i = 0; i < hote.size(); ++i) {
        if (hote[i] == '%' && i + 2 < hote.size() && chiffre(hote[i + 1], 16) >= 0 &&
            chiffre(hote[i + 2], 16) >= 0) {
            domaine += static_cast<char>(chiffre(hote[i + 1], 16) * 16 + chiffre(hote[i + 2], 16));
            i += 2;
        } else {
            domaine += hote[i];
        }
    }
    domaine = enMinuscules(domaine);
    if (domaine.empty()) return std::nullopt;
    for (const char c : domaine) {
        const auto octet = static_cast<unsigned char>(c);
        if (octet >= 0x80 || estInterditDansUnDomaine(octet)) return std::nullopt;
    }
    if (finitParUnNombre(domaine)) return ipv4(domaine);
    return domaine;
}

}  // namespace brindex
