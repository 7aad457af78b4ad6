// Feeds arbitrary text to the address functions and to the navigation policy that judges what
// pages hand over, and traps on any broken invariant.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "address/hote.hpp"
#include "address/normalisation.hpp"
#include "address/origine.hpp"
#include "address/url.hpp"
#include "container/politique.hpp"

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

// Canonicalising a canonical host changes nothing.
void verifierHote(std::string_view hote, bool ipv6) {
    if (const auto canonique = hoteCanonique(hote, ipv6)) {
        const auto encore = hoteCanonique(*canonique, ipv6);
        exiger(encore.has_value() && *encore == *canonique);
    }
}

// An origin survives the engine's round trip: the engine writes back scheme://host:port/ with
// the canonical host, and that text has the same origin.
void verifierOrigine(const Origine& origine) {
    const bool ipv6 = origine.host().find(':') != std::string::npos;
    const std::string hote = ipv6 ? "[" + origine.host() + "]" : origine.host();
    const std::string texte =
        origine.scheme() + "://" + hote + ":" + std::to_string(origine.port()) + "/";
    const auto encore = Origine::depuis(std::string_view(texte));
    exiger(encore.has_value() && *encore == origine);
}

// Whatever a page hands over: only http(s), and files the page made itself (its own blob:, a
// data: URL) behind the user's link, ever pass; nothing leaves the application without the user;
// a response for such a file is always refused.
void verifierPolitique(std::string_view texte) {
    static const auto vue = Origine::depuis(std::string_view("https://espace.example/"));
    const std::string url(texte);
    const auto scheme = schemeDe(url);
    const std::string s = scheme ? enMinuscules(*scheme) : std::string();
    const bool fichier = s == "blob" || s == "data";
    for (const auto type : {TypeNavigation::lienActive, TypeNavigation::autre}) {
        for (const bool utilisateur : {true, false}) {
            for (const auto telechargement :
                 {std::optional<bool>(true), std::optional<bool>(false), std::optional<bool>()}) {
                const auto decision =
                    deciderAction({url, type, CadreCible::inconnu, telechargement, std::nullopt},
                                  vue, utilisateur);
                const bool passe = decision.politique != Politique::annuler;
                exiger(!passe || s == "http" || s == "https" ||
                       (fichier && utilisateur && type == TypeNavigation::lienActive));
                exiger(!passe || s != "blob" ||
                       Origine::depuis(std::string_view(url).substr(5)) == vue);
                exiger(utilisateur || !decision.effet.urlAOuvrir);
            }
        }
    }
    exiger(!fichier || reponseRefusee({true, std::nullopt, true, url}).has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* donnees, std::size_t taille) {
    const std::string_view texte(reinterpret_cast<const char*>(donnees), taille);

    (void)estHoteLocalOuPrive(texte);
    verifierPolitique(texte);
    verifierHote(texte, false);
    verifierHote(texte, true);
    if (const auto url = Url::analyser(texte)) {
        verifierStable(*url);
        verifierHote(url->hote(), url->hoteEstIPv6());
        if (const auto origine = Origine::depuis(*url)) verifierOrigine(*origine);
    }
    if (const auto url = Url::depuisMoteur(texte)) verifierStable(*url);
    if (const auto origine = Origine::depuis(texte)) verifierOrigine(*origine);

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
        // A typed address the engine would refuse, or read through IDNA, gets no origin.
        exiger(Origine::depuis(*url).has_value() ==
               hoteCanonique(url->hote(), url->hoteEstIPv6()).has_value());
    }
    return 0;
}
