#pragma once

#include <optional>
#include <string>

#include "address/origine.hpp"
#include "container/ports.hpp"

namespace brindex {

// What a navigation does instead of loading: at most one of the two.
struct Detournement {
    std::optional<std::string> urlAOuvrir;    // hand to the default browser or handler
    std::optional<std::string> ligneJournal;  // write to the diagnostic log
    // The other site an automatic navigation of the view was refused towards.
    std::optional<Origine> siteRefuse = std::nullopt;
};

// A navigation decision plus at most one side effect.
struct DecisionAction {
    Politique politique = Politique::annuler;
    Detournement effet;
    // For a frame the engine doesn't name: allowed as a sub-frame may be; if the response shows
    // that the main frame was navigating, it is refused then and this is done instead.
    std::optional<Detournement> siCadrePrincipal;
    // A link the user clicked, of a scheme some application of the system may take: the
    // controller looks for that application before the refusal stands.
    std::optional<std::string> lienApplication = std::nullopt;
};

// Keeps a web view on its recorded origin: clicked links elsewhere go to the default browser,
// other navigations elsewhere are refused, mailto/tel go to their handlers, and every scheme
// but http(s) is refused. `origineVue` is the origin the web view is held to, if any.
// `parUtilisateur`: the user's own action started this navigation; only then may anything
// leave the application (a script's click on a link is a link activation too).
DecisionAction deciderAction(const ActionNavigation& action,
                             const std::optional<Origine>& origineVue, bool parUtilisateur);

// Attachments and what the view can't show become downloads; a response is never cancelled.
Politique deciderReponse(const ReponseNavigation& reponse);

// A file the page made (blob:, data:) is only ever saved: a response for one, in any frame, is
// refused, with the log line to write.
std::optional<std::string> reponseRefusee(const ReponseNavigation& reponse);

// What to do when a page asks for a new window.
struct DecisionFenetre {
    enum class Choix { rien, ouvrir, navigateur };
    Choix choix = Choix::rien;
    std::optional<std::string> url;  // with `navigateur`
    // A window refused because no action of the user asked for it.
    bool refusee = false;
};

// `parUtilisateur`: an action of the user is there to be spent on this window; without one,
// neither a window nor the default browser opens.
DecisionFenetre deciderFenetre(const std::optional<Origine>& origineOuvreur,
                               const std::optional<std::string>& url, bool parUtilisateur);

}  // namespace brindex
