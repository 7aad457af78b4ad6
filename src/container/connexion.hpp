#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "address/origine.hpp"
#include "container/ports.hpp"

// Signing in elsewhere: the sites where a space may send its users to sign in, the round trip
// a web view makes through them, and the HTTP authentication a server asks for.

namespace brindex {

// ---- Sign-in sites ----

// What an administrator sets for every user, under these keys (a system key file on Linux,
// managed preferences on macOS); the user can neither change nor remove it.
namespace CleAdministration {
inline constexpr std::string_view originesConnexion = "originesConnexion";
inline constexpr std::string_view questionConnexion = "questionConnexion";
}  // namespace CleAdministration

// The origin of a sign-in site written by an administrator or stored for the user: an http(s)
// origin and nothing else (no user info, path, query or fragment); http only for a local or
// private host, as for the space itself. Its host is compared in the form the engine gives it.
std::optional<Origine> siteConnexion(std::string_view texte);
// "https://login.example.com", with the port only when it isn't the scheme's own.
std::string texteOrigine(const Origine& origine);
// The host as the user reads it: "login.example.com", "127.0.0.2:8443".
std::string hoteAffiche(const Origine& origine);

// Where a space may send its users to sign in.
struct SitesConnexion {
    std::vector<Origine> administrateur;
    std::vector<Origine> approuves;
    // The administrator may forbid asking the user about a site that isn't listed.
    bool question = true;

    bool contient(const Origine& origine) const;
};

// The sites of a space: the administrator's list, then the user's approvals as stored (one
// origin text per line). What can't be read is skipped, and said in the log.
SitesConnexion lireSitesConnexion(const Administration& administration,
                                  const std::optional<std::string>& approuves);
// The stored approvals with one more, at most approbationsMax of them, newest kept.
std::string ajouterApprobation(const std::optional<std::string>& approuves, const Origine& site);
inline constexpr std::size_t approbationsMax = 32;

// ---- The round trip ----

// How long a round trip may last, and how many navigations of the view it may take.
struct BornesConnexion {
    std::chrono::steady_clock::duration duree = std::chrono::minutes(10);
    unsigned navigations = 30;
};

// A round trip through sign-in sites under way in one web view: from the moment the view left
// its space for a sign-in site until a page of the space loads in it again.
struct TrajetConnexion {
    Origine site;  // the sign-in site it went to last
    std::chrono::steady_clock::time_point debut;
    unsigned navigations = 0;  // of the view's main frame since the start
    unsigned numero = 0;       // tells a later trip of the same view from this one
};

struct DecisionConnexion {
    enum class Choix {
        horsConnexion,  // not a sign-in matter: the view's ordinary rules decide
        entrer,         // allowed: the round trip starts, or goes on, at `site`
        demander,       // ask the user whether `site` may sign them in
        refuser,        // during a round trip, an automatic navigation elsewhere: refused
        expirer,        // the round trip is past its bounds: back to the space's home
    };
    Choix choix = Choix::horsConnexion;
    std::optional<Origine> site;
};

// Decides a navigation of a view's main frame (or a request for a new window) on a view held to
// `espace`: a sign-in site may be entered, automatically or by a click; during a round trip
// nothing but sign-in sites and the space may fill the view (a click elsewhere still goes to the
// browser); a sign-in request to a site that isn't listed, made without the user, asks first.
// `lienClique`: the user's own click on a link; `demande`: the navigation (or the chain of
// redirects that led to it) is a sign-in request (demandeDeConnexion).
DecisionConnexion deciderConnexion(const ActionNavigation& action, const Origine& espace,
                                   const std::optional<TrajetConnexion>& trajet,
                                   const SitesConnexion& sites, bool lienClique, bool demande,
                                   std::chrono::steady_clock::time_point maintenant,
                                   const BornesConnexion& bornes);

// What a navigation looks like when it asks a site to sign the user in: an OAuth 2.0 or OpenID
// Connect authorization request, a SAML request, a WS-Federation sign-in, or a form posted.
// Only these ask the question: any other automatic navigation elsewhere stays refused as it is.
bool demandeDeConnexion(const ActionNavigation& action);

// How many steps back "Page précédente" takes to reach the last page of the space, skipping the
// sign-in sites' pages; `arriere` holds the view's back list, most recent first. Nothing when no
// page of the space lies behind.
std::optional<std::size_t> pasVersEspace(const std::vector<std::string>& arriere,
                                         const Origine& espace);
// How far back the view's history is looked at.
inline constexpr std::size_t historiqueMax = 50;

// ---- Texts ----

Alerte questionConnexion(const Origine& site);
// "Connexion via login.example.com", with "non sécurisée" over http: the bar and the title.
std::string texteBarreConnexion(const Origine& site);
// The bar's one button.
inline constexpr const char* boutonBarreConnexion = "Annuler";
// Why a round trip was ended, for the sheet.
Alerte alerteExpiration(const Origine& site, bool parDuree);
inline constexpr std::string_view titreConnexionRefusee = "Connexion refusée";
std::string detailConnexionRefusee(const Origine& site);
// Why the window shows nothing of the space: its first page sent it to another site, which isn't
// one of its sign-in sites.
std::string detailSiteRefuse(const Origine& site);

// ---- HTTP authentication ----

// Only the space and its sign-in sites may ask; a proxy always may, since it stands between
// the user and every site.
bool authentificationPermise(const DemandeAuthentification& demande, const Origine& espace,
                             const SitesConnexion& sites);
// The native dialog: fields "Identifiant" and "Mot de passe", "Mémoriser", "Se connecter".
Alerte alerteAuthentification(const DemandeAuthentification& demande);

}  // namespace brindex
