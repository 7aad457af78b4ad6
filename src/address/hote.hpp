#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brindex {

// The host of an http(s) URL as a web engine writes it: WebKit hands over every URL with its
// host run through the WHATWG host parser, so "127.1", "0x7f.0.0.1" or "127.0.0.%31" come back
// as "127.0.0.1" and "[0:0:0:0:0:0:0:1]" as "[::1]". Origins compare on this form, or a space
// typed one way would never match the engine's URLs of its own pages.
//
// `hote` is the host as Url::hote() gives it (an IPv6 literal without its brackets, `ipv6`
// set); the result keeps that convention. Gives nothing where the engine refuses the host, and
// for a host that holds non-ASCII characters once percent-decoded: the engine maps those
// through IDNA, which this does not reproduce. Engines only ever hand over ASCII hosts, so
// such a host can only come from a typed address, which is then refused rather than given an
// origin that no page of its own would match.
std::optional<std::string> hoteCanonique(std::string_view hote, bool ipv6);

}  // namespace brindex
