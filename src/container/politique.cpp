#include "container/politique.hpp"

#include "address/url.hpp"

namespace brindex {

namespace {

DecisionAction etapeFinale(const ActionNavigation& action) {
    return {action.telechargementDemande ? Politique::telecharger : Politique::autoriser, {}, {}};
}

}  // namespace

DecisionAction deciderAction(const ActionNavigation& action,
                             const std::optional<Origine>& origineVue) {
    if (!action.url) return {};
    const auto schemeBrut = schemeDe(*action.url);
    if (!schemeBrut) return {};
    const std::string scheme = enMinuscules(*schemeBrut);

    if (scheme == "mailto" || scheme == "tel") {
        DecisionAction decision;
        if (action.type == TypeNavigation::lienActive) decision.urlAOuvrir = *action.url;
        return decision;
    }
    if (scheme != "http" && scheme != "https") {
        return {Politique::annuler, {}, "navigation REFUSEE scheme=" + scheme};
    }
    // Embedded frames may show any site; only what fills the view is held to its origin.
    if (action.cible == CadreCible::sousCadre) return etapeFinale(action);
    if (!origineVue) return etapeFinale(action);
    const auto destination = Origine::depuis(*action.url);
    if (!destination || *destination == *origineVue) return etapeFinale(action);

    if (action.type == TypeNavigation::lienActive) {
        return {Politique::annuler, *action.url, {}};
    }
    return {Politique::annuler,
            {},
            "navigation externe automatique REFUSEE vers " + destination->host()};
}

Politique deciderReponse(const ReponseNavigation& reponse) {
    if (reponse.http && reponse.contentDisposition &&
        enMinuscules(*reponse.contentDisposition).find("attachment") != std::string::npos) {
        return Politique::telecharger;
    }
    return reponse.typeAffichable ? Politique::autoriser : Politique::telecharger;
}

DecisionFenetre deciderFenetre(const std::optional<Origine>& origineOuvreur,
                               const std::optional<std::string>& url) {
    using Choix = DecisionFenetre::Choix;
    if (!origineOuvreur) return {};
    // An empty address is none: engines give one for window.open('').
    if (!url || url->empty() || *url == "about:blank") return {Choix::ouvrir, {}};
    if (const auto origine = Origine::depuis(*url); origine && *origine == *origineOuvreur) {
        return {Choix::ouvrir, {}};
    }
    const auto scheme = schemeDe(*url);
    if (scheme) {
        const std::string s = enMinuscules(*scheme);
        if (s == "http" || s == "https") return {Choix::navigateur, *url};
    }
    return {};
}

}  // namespace brindex
