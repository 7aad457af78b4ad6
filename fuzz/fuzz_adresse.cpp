// Feeds arbitrary text to the address functions and traps on any broken invariant.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "address/normalisation.hpp"
#include "address/origine.hpp"
#include "address/url.hpp"

using namespace brindex;

namespace {

void exiger(bool condition) {
    if (!condition) __builtin_trap();
}

void verifierStable(const Url& url) {
    const auto encore = Url::analyser(url.texte());
    exiger(encore.has_value());
    exiger(encore->scheme() == url.scheme() && encore->hote() == url.hote() &&
           encore->port() == url.port() && encore->chemin() == url.chemin() &&
           encore->requete() == url.requete() && encore->fragment() == url.fragment() &&
           encore->utilisateur() == url.utilisateur() && encore->motDePasse() == url.motDePasse());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* donnees, std::size_t taille) {
    const std::string_view texte(reinterpret_cast<const char*>(donnees), taille);

    (void)estHoteLocalOuPrive(texte);
    if (const auto url = Url::analyser(texte)) verifierStable(*url);
    if (const auto url = Url::depuisMoteur(texte)) verifierStable(*url);

    if (const auto url = normaliserAdresse(texte)) {
        const std::string scheme = enMinuscules(url->scheme());
        exiger(scheme == "http" || scheme == "https");
        exiger(!url->hote().empty());
        exiger(!url->utilisateur() && !url->motDePasse());
        exiger(!url->requete() || url->requete()->empty());
        exiger(!url->fragment() || url->fragment()->empty());
        exiger(!url->port() || (*url->port() >= 1 && *url->port() <= 65535));
        const auto encore = normaliserAdresse(url->texte());
        exiger(encore.has_value() && *encore == *url);
        exiger(Origine::depuis(*url).has_value());
    }
    return 0;
}
