#include "screens/vue_configuration.hpp"

#include "address/normalisation.hpp"
#include "address/texte.hpp"

namespace brindex {

namespace {

const std::string texteRecherche = "Recherche de votre espace…";
const std::string texteTrouve = "Espace trouvé à cette adresse.";
const std::string texteVerification = "Vérification de l'adresse…";
const std::string textePasUnEspace =
    "Cette adresse répond, mais ce n'est pas un espace Brindex (c'est peut-être le site public).";

}  // namespace

VueConfiguration::VueConfiguration(std::optional<std::string> adresseActuelle, Sondeur sondeur)
    : texteInitial_(adresseActuelle.value_or(std::string())), sondeur_(std::move(sondeur)) {}

std::shared_ptr<VueConfiguration> VueConfiguration::creer(
    std::optional<std::string> adresseActuelle, Sondeur sondeur) {
    return std::shared_ptr<VueConfiguration>(
        new VueConfiguration(std::move(adresseActuelle), std::move(sondeur)));
}

void VueConfiguration::attacher(ControlesConfiguration& controles) {
    controles_ = &controles;
    controles.definirTexteChamp(texteInitial_);
    controles.activerChamp(true);
    controles.activerBouton(true);
    controles.tournerRoue(false);
    controles.couleurMessage(Marque::erreur);
    controles.texteMessage("");
    controles.montrerForcer(false);
}

void VueConfiguration::detecterAdresseParDefaut() {
    if (!controles_) return;
    // Spaces and tabs only: a field holding a line break is not empty.
    if (!retirerBlancs(controles_->texteChamp(), Blancs::espaces).empty()) return;
    auto restantes = std::make_shared<std::vector<std::string>>(Marque::adressesParDefaut.begin(),
                                                                Marque::adressesParDefaut.end());
    controles_->tournerRoue(true);
    controles_->couleurMessage(Marque::attenue);
    controles_->texteMessage(texteRecherche);
    suivante(std::move(restantes));
}

void VueConfiguration::suivante(std::shared_ptr<std::vector<std::string>> restantes) {
    // One address after another, never two probes at a time.
    while (!restantes->empty()) {
        const std::string adresse = restantes->front();
        restantes->erase(restantes->begin());
        const auto url = normaliserAdresse(adresse);
        if (!url) continue;
        std::weak_ptr<VueConfiguration> faible = weak_from_this();
        sondeur_(*url, [faible, restantes, adresse](ResultatSonde resultat) {
            const auto vue = faible.lock();
            if (!vue || !vue->controles_) return;
            if (resultat.cas() != ResultatSonde::Cas::ok) {
                vue->suivante(restantes);
                return;
            }
            auto& c = *vue->controles_;
            c.tournerRoue(false);
            c.definirTexteChamp(adresse);
            c.couleurMessage(Marque::accent);
            c.texteMessage(texteTrouve);
            c.activerBouton(true);
        });
        return;
    }
    if (controles_) {
        controles_->tournerRoue(false);
        controles_->texteMessage("");
    }
}

void VueConfiguration::valider() {
    if (!controles_) return;
    const auto url = normaliserAdresse(controles_->texteChamp());
    if (!url) {
        controles_->couleurMessage(Marque::erreur);
        controles_->texteMessage("Adresse invalide — exemple : " +
                                 std::string(Marque::hoteExemple));
        return;
    }
    urlEnAttente_ = url;
    controles_->activerBouton(false);
    controles_->activerChamp(false);
    controles_->montrerForcer(false);
    controles_->tournerRoue(true);
    controles_->couleurMessage(Marque::attenue);
    controles_->texteMessage(texteVerification);
    std::weak_ptr<VueConfiguration> faible = weak_from_this();
    const Url sondee = *url;
    sondeur_(sondee, [faible, sondee](ResultatSonde resultat) {
        const auto vue = faible.lock();
        if (!vue || !vue->controles_) return;
        auto& c = *vue->controles_;
        c.tournerRoue(false);
        c.activerBouton(true);
        c.activerChamp(true);
        switch (resultat.cas()) {
            case ResultatSonde::Cas::ok:
                c.couleurMessage(Marque::attenue);
                c.texteMessage("");
                if (vue->onConnexion) vue->onConnexion(sondee);
                return;
            case ResultatSonde::Cas::pasUnEspace:
                c.couleurMessage(Marque::erreur);
                c.texteMessage(textePasUnEspace);
                c.montrerForcer(true);
                return;
            case ResultatSonde::Cas::injoignable:
                c.couleurMessage(Marque::erreur);
                c.texteMessage(resultat.texte());
                c.montrerForcer(true);
                return;
        }
    });
}

void VueConfiguration::forcer() {
    if (urlEnAttente_ && onConnexion) onConnexion(*urlEnAttente_);
}

void VueConfiguration::texteModifie() {
    if (!controles_) return;
    controles_->texteMessage("");
    controles_->montrerForcer(false);
}

}  // namespace brindex
