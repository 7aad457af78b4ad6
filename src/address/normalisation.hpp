#pragma once

#include <optional>
#include <string_view>

#include "address/url.hpp"

namespace brindex {

// True for the user's own machine, a multicast-DNS name of the local network, or a private
// IPv4 address: such hosts get "http" when no scheme was typed.
bool estHoteLocalOuPrive(std::string_view hote);

// The one gate through which any address text becomes a space URL: an absolute http(s) URL
// with a host, no user or password, no query or fragment text, a port in 1-65535, and the
// path and letter case as typed. Gives nothing for text that is not such an address.
std::optional<Url> normaliserAdresse(std::string_view texte);

}  // namespace brindex
