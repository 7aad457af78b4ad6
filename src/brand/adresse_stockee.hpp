#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "address/url.hpp"
#include "brand/reglages.hpp"

namespace brindex {

// The stored space address, normalised again at every read and never cached: a stored text
// that no longer normalises reads as no address.
std::optional<Url> lireAdresseEspace(const Reglages& reglages);

// What the user keeps for one space, stored beside its address under these keys, and forgotten
// whenever the stored address changes: the sign-in sites the user approved, the page zoom, the
// company schemes always opened with their application.
namespace CleEspace {
inline constexpr std::string_view connexionsApprouvees = "connexionsApprouvees";
inline constexpr std::string_view zoom = "zoomEspace";
inline constexpr std::string_view schemesApprouves = "schemesApprouves";
inline constexpr std::array tout{connexionsApprouvees, zoom, schemesApprouves};
}  // namespace CleEspace

// Stores the URL's text, or removes the stored address when given none; what was kept for
// another space is forgotten.
void ecrireAdresseEspace(Reglages& reglages, const std::optional<Url>& url);

}  // namespace brindex
