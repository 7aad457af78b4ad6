#pragma once

#include <optional>
#include <string>

#include "address/url.hpp"
#include "container/ports.hpp"

namespace brindex {

// A cancelled load and a load interrupted by a policy decision are not failures for the user.
bool echecIgnore(const ErreurChargement& erreur);

// The network is down, or the server can't be reached: worth trying again once the network
// comes back.
bool echecReseau(const ErreurChargement& erreur);

// "navigation ECHEC domain/code description".
std::string ligneEchec(const ErreurChargement& erreur);

// The French explanation of a failure. A host that can't be found is named after the stored
// space address, not the failing request.
std::string detailLisible(const ErreurChargement& erreur, const std::optional<Url>& adresseEspace);

// "navigation OK url", or "?" when the view has no URL.
std::string ligneSucces(const std::optional<std::string>& url);

}  // namespace brindex
