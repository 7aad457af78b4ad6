#include "container/politique.hpp"

#include "address/url.hpp"
#include "log/journal.hpp"

namespace brindex {

namespace {

const std::string ligneExterneRefusee = "navigation externe automatique REFUSEE vers ";
const std::string ligneSchemeRefuse = "navigation REFUSEE scheme=";

DecisionAction etapeFinale(const ActionNavigation& action) {
    return {action.telechargementDemande == true ? Politique::telecharger : Politique::autoriser,
            {},
            {}};
}

// A file the page made itself and the user's link asks to save: a blob: of the view's own origin
// (what the page holds, not another site's), or a data: URL. Saved, never shown: an engine that
// says the link asks for a download gets that answer, one that says it doesn't is refused; one
// that doesn't say turns such a link into a download by itself, and a response that comes instead
// (a plain navigation) is refused.
std::optional<DecisionAction> fichierDeLaPage(const ActionNavigation& action,
                                              const std::string& scheme,
                                              const std::optional<Origine>& origineVue,
                                              bool parUtilisateur) {
    if (action.type != TypeNavigation::lienActive || !parUtilisateur) return std::nullopt;
    const bool duSite = scheme == "blob" && origineVue &&
                        Origine::depuis(std::string_view(*action.url).substr(5)) == origineVue;
    if ((scheme != "data" && !duSite) || action.telechargementDemande == false) return std::nullopt;
    return etapeFinale(action);
}

}  // namespace

DecisionAction deciderAction(const ActionNavigation& action,
                             const std::optional<Origine>& origineVue, bool parUtilisateur) {
    if (!action.url) return {};
    const auto schemeBrut = schemeDe(*action.url);
    if (!schemeBrut) return {};
    const std::string scheme = enMinuscules(*schemeBrut);

    const bool lienClique = action.type == TypeNavigation::lienActive && parUtilisateur;
    if (scheme == "mailto" || scheme == "tel") {
        DecisionAction decision;
        if (lienClique) {
            decision.effet.urlAOuvrir = *action.url;
        } else if (action.type == TypeNavigation::lienActive) {
            decision.effet.ligneJournal = ligneExterneRefusee + Journal::adresse(*action.url);
        }
        return decision;
    }
    if (scheme != "http" && scheme != "https") {
        if (auto fichier = fichierDeLaPage(action, scheme, origineVue, parUtilisateur)) {
            return *fichier;
        }
        DecisionAction refus{Politique::annuler, {{}, ligneSchemeRefuse + scheme}, {}};
        if (lienClique) refus.lienApplication = *action.url;
        return refus;
    }
    // Embedded frames may show any site; only what fills the view is held to its origin.
    if (action.cible == CadreCible::sousCadre) return etapeFinale(action);
    if (!origineVue) return etapeFinale(action);
    const auto destination = Origine::depuis(*action.url);
    if (!destination || *destination == *origineVue) return etapeFinale(action);

    const Detournement detournement =
        lienClique ? Detournement{*action.url, {}}
                   : Detournement{{}, ligneExterneRefusee + destination->host(), destination};
    if (action.cible == CadreCible::inconnu) {
        DecisionAction provisoire = etapeFinale(action);
        provisoire.siCadrePrincipal = detournement;
        return provisoire;
    }
    return {Politique::annuler, detournement, {}};
}

std::optional<std::string> reponseRefusee(const ReponseNavigation& reponse) {
    const auto scheme = reponse.url ? schemeDe(*reponse.url) : std::nullopt;
    const std::string s = scheme ? enMinuscules(*scheme) : std::string();
    if (s != "blob" && s != "data") return std::nullopt;
    return ligneSchemeRefuse + s;
}

Politique deciderReponse(const ReponseNavigation& reponse) {
    if (reponse.http && reponse.contentDisposition &&
        enMinuscules(*reponse.contentDisposition).find("attachment") != std::string::npos) {
        return Politique::telecharger;
    }
    return reponse.typeAffichable ? Politique::autoriser : Politique::telecharger;
}

DecisionFenetre deciderFenetre(const std::optional<Origine>& origineOuvreur,
                               const std::optional<std::string>& url, bool parUtilisateur) {
    using Choix = DecisionFenetre::Choix;
    DecisionFenetre decision;
    if (!origineOuvreur) return decision;
    // An empty address is none: engines give one for window.open('').
    if (!url || url->empty() || *url == "about:blank") {
        decision.choix = Choix::ouvrir;
    } else if (const auto origine = Origine::depuis(*url); origine && *origine == *origineOuvreur) {
        decision.choix = Choix::ouvrir;
    } else if (const auto scheme = schemeDe(*url)) {
        const std::string s = enMinuscules(*scheme);
        if (s == "http" || s == "https") decision = {Choix::navigateur, *url, false};
    }
    if (decision.choix != Choix::rien && !parUtilisateur) return {Choix::rien, {}, true};
    return decision;
}

}  // namespace brindex
