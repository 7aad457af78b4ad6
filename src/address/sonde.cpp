#include "address/sonde.hpp"

#include <cstdint>
#include <memory>
#include <string_view>

#include "address/texte.hpp"
#include "brand/marque.hpp"

namespace brindex {

namespace {

constexpr std::string_view marqueur = "\"service\":\"brindex\"";

constexpr const char* texteSilence =
    "Le serveur ne répond pas. Il est peut-être arrêté, ou l'adresse est incomplète.";
constexpr const char* texteIntrouvable = "Cette adresse n'existe pas. Vérifiez l'orthographe.";
constexpr const char* texteHorsLigne = "Votre connexion internet semble coupée.";
constexpr const char* texteCertificat = "Le certificat de sécurité du serveur n'est pas valide.";
constexpr const char* texteInattendu = "Réponse inattendue du serveur.";
constexpr const char* texteHttps =
    "Cette adresse exige une connexion sécurisée (https). Vérifiez l'adresse de votre espace.";

// A body cut short may end inside a UTF-8 sequence: that tail doesn't make it invalid.
bool estUtf8Lu(std::string_view corps, bool partiel) {
    if (estUtf8(corps)) return true;
    for (std::size_t retire = 1; partiel && retire <= 3 && retire <= corps.size(); ++retire) {
        if (estUtf8(corps.substr(0, corps.size() - retire))) return true;
    }
    return false;
}

}  // namespace

RequeteSonde requeteSonde(const Url& espace) {
    return {espace.avecComposant("health").texte(), "GET", std::string(Marque::agentSuffixe), 8.0,
            true};
}

ResultatSonde trierEchange(const EchangeTermine& echange) {
    if (echange.erreur) {
        switch (echange.erreur->code) {
            case -1001:
            case -1004:
                return ResultatSonde::injoignable(texteSilence);
            case -1003:
                return ResultatSonde::injoignable(texteIntrouvable);
            case -1005:
            case -1009:
                return ResultatSonde::injoignable(texteHorsLigne);
            // The platform refuses http to this host (App Transport Security on macOS, which
            // exempts only IP addresses, unqualified and .local names).
            case -1022:
                return ResultatSonde::injoignable(texteHttps);
            case -1200:
            case -1201:
            case -1202:
            case -1204:
                return ResultatSonde::injoignable(texteCertificat);
            default:
                // The platform's wording, which may carry what a server sent.
                return ResultatSonde::injoignable(extrait(echange.erreur->description, 300, 3));
        }
    }
    switch (echange.reponse) {
        case EchangeTermine::Reponse::http: {
            // A body that is not valid UTF-8 reads as empty text.
            const std::string_view corps =
                echange.corps && estUtf8Lu(*echange.corps, echange.corpsPartiel)
                    ? std::string_view(*echange.corps)
                    : std::string_view();
            if (echange.statut == 200 && corps.find(marqueur) != std::string_view::npos) {
                return ResultatSonde::ok();
            }
            return ResultatSonde::pasUnEspace();
        }
        case EchangeTermine::Reponse::aucune:
        case EchangeTermine::Reponse::autre:
            break;
    }
    return ResultatSonde::injoignable(texteInattendu);
}

bool lectureSuffisante(std::string_view corpsLu) {
    return corpsLu.size() >= limiteCorpsSonde || corpsLu.find(marqueur) != std::string_view::npos;
}

void sonderEspace(TransportHttp& transport, const Url& espace,
                  std::function<void(ResultatSonde)> rappel) {
    // A transport that reports twice must not make the caller hear twice.
    auto enAttente = std::make_shared<std::function<void(ResultatSonde)>>(std::move(rappel));
    transport.envoyer(requeteSonde(espace), [enAttente](EchangeTermine echange) {
        if (!*enAttente) return;
        const auto rappelUnique = std::move(*enAttente);
        *enAttente = nullptr;
        rappelUnique(trierEchange(echange));
    });
}

}  // namespace brindex
