#pragma once

#include "address/sonde.hpp"

namespace brindex::gtk {

// The probe's HTTP client over libsoup 3: a fresh session per request, so no cookie and no
// cache; redirects followed, certificates verified, the request's time-out applied to the
// whole exchange, name resolution included; the body read only as far as the probe needs it.
class TransportSoup : public TransportHttp {
  public:
    void envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) override;
};

}  // namespace brindex::gtk
