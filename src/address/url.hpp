#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindex {

// An absolute URL split as RFC 3986 splits it. The text is kept as it was given, so that a
// space URL reads back exactly as the user typed it.
class Url {
  public:
    // Splits an absolute URL; gives nothing for text that RFC 3986 refuses (spaces, characters
    // outside the grammar, bad percent-encoding, an unclosed bracket, a port that is not digits)
    // or for a relative reference.
    static std::optional<Url> analyser(std::string_view texte);

    // Splits a URL handed over by a web engine. Engines serialise URLs the WHATWG way, which
    // leaves characters such as "|", "^" or non-ASCII bytes unescaped after the authority;
    // those are percent-encoded first so that such a URL still has its scheme, host and port.
    static std::optional<Url> depuisMoteur(std::string_view texte);

    const std::string& texte() const { return texte_; }
    const std::string& scheme() const { return scheme_; }
    const std::optional<std::string>& utilisateur() const { return utilisateur_; }
    const std::optional<std::string>& motDePasse() const { return motDePasse_; }
    // The authority is present ("//" follows the scheme), even when the host is empty.
    bool aAutorite() const { return aAutorite_; }
    // The host as written, without the brackets of an IPv6 literal.
    const std::string& hote() const { return hote_; }
    bool hoteEstIPv6() const { return hoteIPv6_; }
    // The explicit port; an empty port ("host:") counts as none. Ports beyond 64 bits are
    // refused by the parser.
    std::optional<std::int64_t> port() const { return port_; }
    const std::string& chemin() const { return chemin_; }
    const std::optional<std::string>& requete() const { return requete_; }
    const std::optional<std::string>& fragment() const { return fragment_; }

    // The same URL with one path component added behind its path, with a "/" between them
    // unless the path already ends in one.
    Url avecComposant(std::string_view composant) const;

    friend bool operator==(const Url& a, const Url& b) { return a.texte_ == b.texte_; }

  private:
    Url() = default;

    std::string texte_;
    std::string scheme_;
    std::optional<std::string> utilisateur_;
    std::optional<std::string> motDePasse_;
    bool aAutorite_ = false;
    std::string hote_;
    bool hoteIPv6_ = false;
    std::optional<std::int64_t> port_;
    std::string chemin_;
    std::optional<std::string> requete_;
    std::optional<std::string> fragment_;
};

// The scheme of a URL text (the letters before the first ":" when they follow the scheme
// grammar), or nothing.
std::optional<std::string> schemeDe(std::string_view texte);

// Full lower-casing of ASCII letters; other bytes are kept (hosts and schemes are compared
// after this folding).
std::string enMinuscules(std::string_view texte);

}  // namespace brindex
