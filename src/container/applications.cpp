#include "container/applications.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <sstream>

#include "address/url.hpp"
#include "brand/adresse_stockee.hpp"

namespace brindex {

namespace {

constexpr std::size_t longueurSchemeMax = 32;
constexpr std::size_t schemesApprouvesMax = 32;
constexpr int zoomPourcentMin = 50;
constexpr int zoomPourcentMax = 300;

}  // namespace

bool schemeVersApplication(std::string_view scheme) {
    static constexpr std::array interdits{"http",     "https",      "mailto",     "tel",
                                          "file",     "javascript", "vbscript",   "data",
                                          "blob",     "about",      "filesystem", "view-source",
                                          "resource", "ws",         "wss",        "brindex"};
    if (scheme.empty() || scheme.size() > longueurSchemeMax) return false;
    if (schemeDe(std::string(scheme) + ":") != scheme) return false;
    // The engine's own pages (webkit-pdfjs-viewer, webkit-extension…).
    if (scheme.starts_with("webkit")) return false;
    return std::none_of(interdits.begin(), interdits.end(),
                        [&](std::string_view i) { return i == scheme; });
}

ChoixLienApplication deciderLienApplication(std::string_view scheme, bool application,
                                            bool retenu) {
    if (!schemeVersApplication(scheme) || !application) return ChoixLienApplication::refuser;
    return retenu ? ChoixLienApplication::ouvrir : ChoixLienApplication::demander;
}

std::vector<std::string> schemesApprouves(const Reglages& reglages) {
    std::vector<std::string> schemes;
    std::istringstream texte(reglages.lire(std::string(CleEspace::schemesApprouves)).value_or(""));
    for (std::string scheme; texte >> scheme && schemes.size() < schemesApprouvesMax;) {
        if (schemeVersApplication(scheme) &&
            std::find(schemes.begin(), schemes.end(), scheme) == schemes.end()) {
            schemes.push_back(scheme);
        }
    }
    return schemes;
}

void approuverScheme(Reglages& reglages, std::string_view scheme) {
    auto schemes = schemesApprouves(reglages);
    if (!schemeVersApplication(scheme) ||
        std::find(schemes.begin(), schemes.end(), scheme) != schemes.end()) {
        return;
    }
    // The oldest approval makes room.
    if (schemes.size() == schemesApprouvesMax) schemes.erase(schemes.begin());
    std::string texte;
    for (const auto& s : schemes) texte += s + " ";
    reglages.ecrire(std::string(CleEspace::schemesApprouves), texte + std::string(scheme));
}

std::optional<double> zoomRetenu(const Reglages& reglages) {
    const auto texte = reglages.lire(std::string(CleEspace::zoom));
    if (!texte) return std::nullopt;
    int pourcent = 0;
    const char* fin = texte->data() + texte->size();
    const auto [p, erreur] = std::from_chars(texte->data(), fin, pourcent);
    if (erreur != std::errc() || p != fin || pourcent < zoomPourcentMin ||
        pourcent > zoomPourcentMax) {
        return std::nullopt;
    }
    return pourcent / 100.0;
}

void retenirZoom(Reglages& reglages, double zoom) {
    if (!std::isfinite(zoom)) return;
    const long pourcent = std::lround(zoom * 100);
    reglages.ecrire(std::string(CleEspace::zoom),
                    std::to_string(std::clamp<long>(pourcent, zoomPourcentMin, zoomPourcentMax)));
}

}  // namespace brindex
