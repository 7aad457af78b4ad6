#include "address/origine.hpp"

namespace brindex {

std::optional<Origine> Origine::depuis(const Url& url) {
    std::string scheme = enMinuscules(url.scheme());
    if (scheme != "http" && scheme != "https") return std::nullopt;
    std::string host = enMinuscules(url.hote());
    if (!url.aAutorite() || host.empty()) return std::nullopt;
    const std::int64_t port = url.port().value_or(scheme == "https" ? 443 : 80);
    return Origine(std::move(scheme), std::move(host), port);
}

std::optional<Origine> Origine::depuis(std::string_view texteMoteur) {
    const auto url = Url::depuisMoteur(texteMoteur);
    if (!url) return std::nullopt;
    return depuis(*url);
}

}  // namespace brindex
