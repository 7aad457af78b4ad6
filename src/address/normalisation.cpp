#include "address/normalisation.hpp"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "address/texte.hpp"

namespace brindex {

namespace {

// A label counts as a number when it is an optional sign and ASCII digits that fit 64 bits.
std::optional<std::int64_t> nombreDe(std::string_view label) {
    bool negatif = false;
    if (!label.empty() && (label[0] == '+' || label[0] == '-')) {
        negatif = label[0] == '-';
        label.remove_prefix(1);
    }
    if (label.empty()) return std::nullopt;
    // Accumulated as a negative number so that INT64_MIN fits too.
    std::int64_t valeur = 0;
    constexpr auto minimum = std::numeric_limits<std::int64_t>::min();
    for (const char c : label) {
        if (c < '0' || c > '9') return std::nullopt;
        const int chiffre = c - '0';
        if (valeur < (minimum + chiffre) / 10) return std::nullopt;
        valeur = valeur * 10 - chiffre;
    }
    if (negatif) return valeur;
    if (valeur == minimum) return std::nullopt;
    return -valeur;
}

}  // namespace

bool estHoteLocalOuPrive(std::string_view hote) {
    std::string h = enMinuscules(hote);
    const auto debut = h.find_first_not_of("[]");
    if (debut == std::string::npos) {
        h.clear();
    } else {
        h = h.substr(debut, h.find_last_not_of("[]") - debut + 1);
    }
    if (h == "localhost" || h == "::1") return true;
    if (h.size() >= 6 && h.compare(h.size() - 6, 6, ".local") == 0) return true;

    std::vector<std::int64_t> nombres;
    std::size_t position = 0;
    while (position <= h.size()) {
        const auto point = h.find('.', position);
        const auto fin = point == std::string::npos ? h.size() : point;
        const std::string_view label(h.data() + position, fin - position);
        if (!label.empty()) {
            if (const auto n = nombreDe(label)) nombres.push_back(*n);
        }
        position = fin + 1;
    }
    if (nombres.size() != 4) return false;
    for (const auto n : nombres) {
        if (n < 0 || n > 255) return false;
    }
    const auto premier = nombres[0];
    const auto second = nombres[1];
    return premier == 10 || premier == 127 || (premier == 172 && second >= 16 && second <= 31) ||
           (premier == 192 && second == 168);
}

std::optional<Url> normaliserAdresse(std::string_view texte) {
    const std::string t(retirerBlancs(texte, Blancs::espacesEtLignes));
    if (t.empty()) return std::nullopt;

    std::string candidat;
    if (t.find("://") != std::string::npos) {
        candidat = t;
    } else {
        const std::string saisi = t == "::1" ? "[::1]" : t;
        const std::string hotePort = saisi.substr(0, saisi.find('/'));
        std::string hote;
        if (!hotePort.empty() && hotePort[0] == '[') {
            hote = hotePort.substr(1, hotePort.find(']') == std::string::npos
                                          ? std::string::npos
                                          : hotePort.find(']') - 1);
        } else {
            const auto debut = hotePort.find_first_not_of(':');
            hote = debut == std::string::npos
                       ? hotePort
                       : hotePort.substr(debut, hotePort.find(':', debut) == std::string::npos
                                                    ? std::string::npos
                                                    : hotePort.find(':', debut) - debut);
        }
        candidat = (estHoteLocalOuPrive(hote) ? "http://" : "https://") + saisi;
    }

    auto url = Url::analyser(candidat);
    if (!url) return std::nullopt;
    const std::string scheme = enMinuscules(url->scheme());
    if (scheme != "http" && scheme != "https") return std::nullopt;
    if (url->hote().empty()) return std::nullopt;
    if (url->utilisateur() || url->motDePasse()) return std::nullopt;
    if (url->requete() && !url->requete()->empty()) return std::nullopt;
    if (url->fragment() && !url->fragment()->empty()) return std::nullopt;
    if (url->port() && (*url->port() < 1 || *url->port() > 65535)) return std::nullopt;
    return url;
}

}  // namespace brindex
