#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "address/url.hpp"

namespace brindex {

// What a probe found at an address.
class ResultatSonde {
  public:
    enum class Cas { ok, pasUnEspace, injoignable };

    static ResultatSonde ok() { return ResultatSonde(Cas::ok, {}); }
    static ResultatSonde pasUnEspace() { return ResultatSonde(Cas::pasUnEspace, {}); }
    static ResultatSonde injoignable(std::string texte) {
        return ResultatSonde(Cas::injoignable, std::move(texte));
    }

    Cas cas() const { return cas_; }
    // The French explanation of an unreachable address; empty for the other cases.
    const std::string& texte() const { return texte_; }

    friend bool operator==(const ResultatSonde&, const ResultatSonde&) = default;

  private:
    ResultatSonde(Cas cas, std::string texte) : cas_(cas), texte_(std::move(texte)) {}
    Cas cas_;
    std::string texte_;
};

// The one request a probe sends.
struct RequeteSonde {
    std::string url;
    std::string methode;
    std::string agentUtilisateur;  // the whole User-Agent header
    double delaiSecondes;
    bool ignorerCache;  // never answered from a local cache
};

RequeteSonde requeteSonde(const Url& espace);

// A transport failure, in the URL-loading vocabulary (-1001 timed out, -1003 host not found…).
struct ErreurTransport {
    std::int64_t code;
    std::string description;
};

// Everything a finished exchange hands over.
struct EchangeTermine {
    enum class Reponse { aucune, autre, http };
    std::optional<ErreurTransport> erreur;
    Reponse reponse = Reponse::aucune;
    int statut = 0;
    std::optional<std::string> corps;  // raw bytes
    // Reading stopped before the end of the body (see lectureSuffisante).
    bool corpsPartiel = false;
};

// The most of a probe's body that is ever read. A space answers its health address with a few
// dozen bytes of JSON, the marker among them, and even a page that carries the marker does so
// near its start; an endless or huge body then costs neither memory nor time.
inline constexpr std::size_t limiteCorpsSonde = 64 * 1024;

// Whether the transport may stop reading the body: the marker is in what was read, or the
// limit is reached. Transports read no further than limiteCorpsSonde in any case.
bool lectureSuffisante(std::string_view corpsLu);

// Sorts a finished exchange into the probe's outcome, with the French text to show.
ResultatSonde trierEchange(const EchangeTermine& echange);

// The platform's HTTP client: follows redirects, verifies certificates, keeps no cookie or
// cache, applies the request's time-out, and calls `fin` once, on the main thread.
class TransportHttp {
  public:
    virtual ~TransportHttp() = default;
    virtual void envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) = 0;
};

// Probes the health address of a space URL; `rappel` runs exactly once, on the main thread.
void sonderEspace(TransportHttp& transport, const Url& espace,
                  std::function<void(ResultatSonde)> rappel);

}  // namespace brindex
