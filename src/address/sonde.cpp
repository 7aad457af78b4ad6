#include "address/sonde.hpp"

#include <cstdint>
#include <memory>
#include <string_view>

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

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool estUtf8(std::string_view t) {
    std::size_t i = 0;
    while (i < t.size()) {
        const auto o = static_cast<std::uint8_t>(t[i]);
        std::size_t longueur;
        std::uint32_t valeur;
        if (o < 0x80) {
            ++i;
            continue;
        } else if (o >= 0xC2 && o <= 0xDF) {
            longueur = 2;
            valeur = o & 0x1F;
        } else if ((o & 0xF0) == 0xE0) {
            longueur = 3;
            valeur = o & 0x0F;
        } else if (o >= 0xF0 && o <= 0xF4) {
            longueur = 4;
            valeur = o & 0x07;
        } else {
            return false;
        }
        if (i + longueur > t.size()) return false;
        for (std::size_t k = 1; k < longueur; ++k) {
            const auto suite = static_cast<std::uint8_t>(t[i + k]);
            if ((suite & 0xC0) != 0x80) return false;
            valeur = (valeur << 6) | (suite & 0x3F);
        }
        if ((longueur == 3 && (valeur < 0x800 || (valeur >= 0xD800 && valeur <= 0xDFFF))) ||
            (longueur == 4 && (valeur < 0x10000 || valeur > 0x10FFFF))) {
            return false;
        }
        i += longueur;
    }
    return true;
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
            case -1200:
            case -1201:
            case -1202:
            case -1204:
                return ResultatSonde::injoignable(texteCertificat);
            default:
                return ResultatSonde::injoignable(echange.erreur->description);
        }
    }
    switch (echange.reponse) {
        case EchangeTermine::Reponse::http: {
            // A body that is not valid UTF-8 reads as empty text.
            const std::string_view corps = echange.corps && estUtf8(*echange.corps)
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
