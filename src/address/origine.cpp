#include "address/origine.hpp"

#include "address/hote.hpp"

namespace brindex {

std::optional<Origine> Origine::depuis(const Url& url) {
    std::string scheme = enMinuscules(url.scheme());
    if (scheme != "http" && scheme != "https") return std::nullopt;
    if (!url.aAutorite()) return std::nullopt;
    // The host as the engine writes it, so that a space typed as "127.1" matches the URLs the
    // engine reports for its pages ("127.0.0.1").
    auto host = hoteCanonique(url.hote(), url.hoteEstIPv6());
    if (!host) return std::nullopt;
    const std::int64_t port = url.port().value_or(scheme == "https" ? 443 : 80);
    return Origine(std::move(scheme), std::move(*host), port);
}

std::optional<Origine> Origine::depuis(std::string_view texteMoteur) {
    const auto url = Url::depuisMoteur(texteMoteur);
    if (!url) return std::nullopt;
    return depuis(*url);
}

}  // namespace brindex
