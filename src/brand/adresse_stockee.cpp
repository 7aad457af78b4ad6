#include "brand/adresse_stockee.hpp"

#include <string>

#include "address/normalisation.hpp"
#include "brand/marque.hpp"

namespace brindex {

std::optional<Url> lireAdresseEspace(const Reglages& reglages) {
    const auto texte = reglages.lire(std::string(Marque::cleEspace));
    if (!texte) return std::nullopt;
    return normaliserAdresse(*texte);
}

void ecrireAdresseEspace(Reglages& reglages, const std::optional<Url>& url) {
    const std::string cle(Marque::cleEspace);
    const auto nouvelle = url ? std::optional<std::string>(url->texte()) : std::nullopt;
    if (reglages.lire(cle) != nouvelle) {
        for (const auto propre : CleEspace::tout)
            reglages.ecrire(std::string(propre), std::nullopt);
    }
    reglages.ecrire(cle, nouvelle);
}

}  // namespace brindex
