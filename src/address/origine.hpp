#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "address/url.hpp"

namespace brindex {

// Scheme, host and port: what keeps each web view on its space's site.
class Origine {
  public:
    // Gives nothing unless the URL is http or https with a non-empty host.
    static std::optional<Origine> depuis(const Url& url);
    // From a URL text an engine reported (see Url::depuisMoteur).
    static std::optional<Origine> depuis(std::string_view texteMoteur);

    const std::string& scheme() const { return scheme_; }
    const std::string& host() const { return host_; }
    std::int64_t port() const { return port_; }

    friend bool operator==(const Origine& a, const Origine& b) {
        return a.scheme_ == b.scheme_ && a.host_ == b.host_ && a.port_ == b.port_;
    }

  private:
    Origine(std::string scheme, std::string host, std::int64_t port)
        : scheme_(std::move(scheme)), host_(std::move(host)), port_(port) {}

    std::string scheme_;
    std::string host_;
    std::int64_t port_;
};

}  // namespace brindex
