#include "address/url.hpp"

#include <cstddef>

namespace brindex {

namespace {

bool estAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool estChiffre(char c) {
    return c >= '0' && c <= '9';
}
bool estHex(char c) {
    return estChiffre(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool estNonReserve(char c) {
    return estAlpha(c) || estChiffre(c) || c == '-' || c == '.' || c == '_' || c == '~';
}
bool estSousDelimiteur(char c) {
    switch (c) {
        case '!':
        case '$':
        case '&':
        case '\'':
        case '(':
        case ')':
        case '*':
        case '+':
        case ',':
        case ';':
        case '=':
            return true;
        default:
            return false;
    }
}

// Every character is unreserved, a sub-delimiter, one of `autres`, or a valid "%XX".
bool composeDe(std::string_view texte, std::string_view autres) {
    for (std::size_t i = 0; i < texte.size(); ++i) {
        const char c = texte[i];
        if (c == '%') {
            if (i + 2 >= texte.size() || !estHex(texte[i + 1]) || !estHex(texte[i + 2])) {
                return false;
            }
            i += 2;
        } else if (!estNonReserve(c) && !estSousDelimiteur(c) &&
                   autres.find(c) == std::string_view::npos) {
            return false;
        }
    }
    return true;
}

bool estSchemeValide(std::string_view s) {
    if (s.empty() || !estAlpha(s[0])) return false;
    for (const char c : s) {
        if (!estAlpha(c) && !estChiffre(c) && c != '+' && c != '-' && c != '.') return false;
    }
    return true;
}

bool estIPv4(std::string_view t) {
    int parties = 0;
    std::size_t debut = 0;
    while (true) {
        const auto fin = t.find('.', debut);
        const auto partie = t.substr(debut, fin == std::string_view::npos ? t.npos : fin - debut);
        if (partie.empty() || partie.size() > 3) return false;
        if (partie.size() > 1 && partie[0] == '0') return false;
        int valeur = 0;
        for (const char c : partie) {
            if (!estChiffre(c)) return false;
            valeur = valeur * 10 + (c - '0');
        }
        if (valeur > 255) return false;
        ++parties;
        if (fin == std::string_view::npos) break;
        debut = fin + 1;
    }
    return parties == 4;
}

bool estIPv6(std::string_view t) {
    int groupes = 0;
    bool compression = false;
    std::size_t i = 0;
    if (t.substr(0, 2) == "::") {
        compression = true;
        i = 2;
        if (i == t.size()) return true;
    } else if (!t.empty() && t[0] == ':') {
        return false;
    }
    while (i < t.size()) {
        std::size_t j = i;
        while (j < t.size() && estHex(t[j]) && j - i < 5) ++j;
        if (j < t.size() && t[j] == '.') {
            // An IPv4 address ends the literal and counts as two groups.
            if (!estIPv4(t.substr(i))) return false;
            groupes += 2;
            break;
        }
        if (j == i || j - i > 4) return false;
        ++groupes;
        if (j == t.size()) break;
        if (t[j] != ':') return false;
        if (j + 1 < t.size() && t[j + 1] == ':') {
            if (compression) return false;
            compression = true;
            i = j + 2;
            if (i == t.size()) break;
        } else {
            i = j + 1;
            if (i == t.size()) return false;
        }
    }
    return compression ? groupes < 8 : groupes == 8;
}

bool estIPvFutur(std::string_view t) {
    if (t.size() < 4 || (t[0] != 'v' && t[0] != 'V')) return false;
    std::size_t i = 1;
    while (i < t.size() && estHex(t[i])) ++i;
    if (i == 1 || i >= t.size() || t[i] != '.' || i + 1 == t.size()) return false;
    for (const char c : t.substr(i + 1)) {
        if (!estNonReserve(c) && !estSousDelimiteur(c) && c != ':') return false;
    }
    return true;
}

char chiffreHex(unsigned valeur) {
    return "0123456789ABCDEF"[valeur & 0xF];
}

}  // namespace

std::optional<std::string> schemeDe(std::string_view texte) {
    const auto deuxPoints = texte.find(':');
    if (deuxPoints == std::string_view::npos) return std::nullopt;
    const auto scheme = texte.substr(0, deuxPoints);
    if (!estSchemeValide(scheme)) return std::nullopt;
    return std::string(scheme);
}

std::string enMinuscules(std::string_view texte) {
    std::string resultat(texte);
    for (char& c : resultat) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return resultat;
}

std::optional<Url> Url::analyser(std::string_view texte) {
    const auto scheme = schemeDe(texte);
    if (!scheme) return std::nullopt;
    Url url;
    url.texte_ = std::string(texte);
    url.scheme_ = *scheme;
    std::string_view reste = texte.substr(scheme->size() + 1);

    if (const auto diese = reste.find('#'); diese != std::string_view::npos) {
        const auto fragment = reste.substr(diese + 1);
        if (!composeDe(fragment, ":@/?")) return std::nullopt;
        url.fragment_ = std::string(fragment);
        reste = reste.substr(0, diese);
    }
    if (const auto question = reste.find('?'); question != std::string_view::npos) {
        const auto requete = reste.substr(question + 1);
        if (!composeDe(requete, ":@/?")) return std::nullopt;
        url.requete_ = std::string(requete);
        reste = reste.substr(0, question);
    }

    if (reste.substr(0, 2) == "//") {
        url.aAutorite_ = true;
        reste = reste.substr(2);
        const auto finAutorite = reste.find('/');
        std::string_view autorite = reste.substr(0, finAutorite);
        reste =
            finAutorite == std::string_view::npos ? std::string_view() : reste.substr(finAutorite);

        if (const auto arobase = autorite.find('@'); arobase != std::string_view::npos) {
            const auto infos = autorite.substr(0, arobase);
            if (!composeDe(infos, ":")) return std::nullopt;
            const auto separation = infos.find(':');
            url.utilisateur_ = std::string(infos.substr(0, separation));
            if (separation != std::string_view::npos) {
                url.motDePasse_ = std::string(infos.substr(separation + 1));
            }
            autorite = autorite.substr(arobase + 1);
        }

        std::string_view port;
        bool avecPort = false;
        if (!autorite.empty() && autorite[0] == '[') {
            const auto fermeture = autorite.find(']');
            if (fermeture == std::string_view::npos) return std::nullopt;
            const auto litteral = autorite.substr(1, fermeture - 1);
            if (!estIPv6(litteral) && !estIPvFutur(litteral)) return std::nullopt;
            url.hote_ = std::string(litteral);
            url.hoteIPv6_ = true;
            const auto apres = autorite.substr(fermeture + 1);
            if (!apres.empty()) {
                if (apres[0] != ':') return std::nullopt;
                avecPort = true;
                port = apres.substr(1);
            }
        } else {
            const auto deuxPoints = autorite.find(':');
            const auto hote = autorite.substr(0, deuxPoints);
            if (!composeDe(hote, "")) return std::nullopt;
            url.hote_ = std::string(hote);
            if (deuxPoints != std::string_view::npos) {
                avecPort = true;
                port = autorite.substr(deuxPoints + 1);
            }
        }
        if (avecPort && !port.empty()) {
            std::int64_t valeur = 0;
            for (const char c : port) {
                if (!estChiffre(c)) return std::nullopt;
                if (valeur > (INT64_MAX - (c - '0')) / 10) return std::nullopt;
                valeur = valeur * 10 + (c - '0');
            }
            url.port_ = valeur;
        }
    }

    if (!composeDe(reste, ":@/")) return std::nullopt;
    url.chemin_ = std::string(reste);
    return url;
}

std::optional<Url> Url::depuisMoteur(std::string_view texte) {
    const auto scheme = schemeDe(texte);
    if (!scheme) return std::nullopt;
    std::size_t debut = scheme->size() + 1;
    if (texte.substr(debut, 2) == "//") {
        const auto fin = texte.find_first_of("/?#", debut + 2);
        debut = fin == std::string_view::npos ? texte.size() : fin;
    }
    std::string resultat(texte.substr(0, scheme->size() + 1));
    // A host may hold a few characters that RFC 3986 doesn't allow there but the engine leaves.
    for (const char c : texte.substr(scheme->size() + 1, debut - scheme->size() - 1)) {
        if (std::string_view("\"`{}").find(c) != std::string_view::npos) {
            resultat += '%';
            resultat += chiffreHex(static_cast<unsigned char>(c) >> 4);
            resultat += chiffreHex(static_cast<unsigned char>(c));
        } else {
            resultat += c;
        }
    }
    bool dansFragment = false;
    for (std::size_t i = debut; i < texte.size(); ++i) {
        const char c = texte[i];
        const auto octet = static_cast<unsigned char>(c);
        bool encoder = octet >= 0x80 || octet <= 0x20 || octet == 0x7F ||
                       std::string_view("\"<>\\^`{|}[]").find(c) != std::string_view::npos;
        if (c == '%') {
            encoder = i + 2 >= texte.size() || !estHex(texte[i + 1]) || !estHex(texte[i + 2]);
        } else if (c == '#') {
            encoder = dansFragment;
            dansFragment = true;
        }
        if (encoder) {
            resultat += '%';
            resultat += chiffreHex(octet >> 4);
            resultat += chiffreHex(octet);
        } else {
            resultat += c;
        }
    }
    return analyser(resultat);
}

Url Url::avecComposant(std::string_view composant) const {
    std::string suite;
    if (requete_) suite += "?" + *requete_;
    if (fragment_) suite += "#" + *fragment_;
    const std::string debut = texte_.substr(0, texte_.size() - suite.size() - chemin_.size());
    std::string chemin = chemin_;
    if (chemin.empty() || chemin.back() != '/') chemin += '/';
    chemin += composant;
    if (auto url = analyser(debut + chemin + suite)) return *url;
    return *this;
}

}  // namespace brindex
