#pragma once

#include <optional>

#include "address/url.hpp"
#include "brand/reglages.hpp"

namespace brindex {

// The stored space address, normalised again at every read and never cached: a stored text
// that no longer normalises reads as no address.
std::optional<Url> lireAdresseEspace(const Reglages& reglages);

// Stores the URL's text, or removes the stored address when given none.
void ecrireAdresseEspace(Reglages& reglages, const std::optional<Url>& url);

}  // namespace brindex
