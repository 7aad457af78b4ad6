#include "support/plateforme_test.hpp"

#include <filesystem>

namespace brindex::test {

std::optional<std::string> ReglagesMemoire::lire(const std::string& cle) const {
    const auto it = valeurs.find(cle);
    if (it == valeurs.end()) return std::nullopt;
    return it->second;
}

void ReglagesMemoire::ecrire(const std::string& cle, const std::optional<std::string>& valeur) {
    if (valeur) {
        valeurs[cle] = *valeur;
    } else {
        valeurs.erase(cle);
    }
}

void TransportTest::envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) {
    requetes.push_back(requete);
    enAttente.push_back(std::move(fin));
}

void TransportTest::repondre(EchangeTermine echange) {
    auto fin = std::move(enAttente.front());
    enAttente.pop_front();
    fin(std::move(echange));
}

void TransportTest::repondreEspace() {
    EchangeTermine e;
    e.reponse = EchangeTermine::Reponse::http;
    e.statut = 200;
    e.corps = "{\"service\":\"brindex\"}";
    repondre(e);
}

void TransportTest::repondreErreur(std::int64_t code) {
    EchangeTermine e;
    e.erreur = ErreurTransport{code, "erreur " + std::to_string(code)};
    repondre(e);
}

void VueWebTest::charger(const std::string& u, double delai) {
    chargements.emplace_back(u, delai);
}

void FenetreTest::definirTitre(const std::string& t) {
    titre = t;
    plateforme.trace("titre " + t);
}

void FenetreTest::devant() {
    ++passagesDevant;
    plateforme.rendreCle(this);
    plateforme.trace("devant");
}

void FenetreTest::fermer() {
    if (fermee) return;
    fermee = true;
    plateforme.trace("fermer " + parametres.titre);
    if (cle) cle = false;
    if (auto rappel = std::move(vaFermer_)) rappel();
}

void FenetreTest::fermerParUtilisateur() {
    fermer();
}

void FenetreTest::montrerConfiguration(std::shared_ptr<VueConfiguration> vue) {
    ecran = Ecran::configuration;
    espace.reset();
    erreur.reset();
    configuration = std::move(vue);
    controles = ControlesTest{};
    configuration->attacher(controles);
    plateforme.trace("ecran configuration");
}

void FenetreTest::montrerEspace(std::shared_ptr<VueWeb> vue) {
    ecran = Ecran::espace;
    configuration.reset();
    erreur.reset();
    espace = std::move(vue);
    barreVisible = false;
    plateforme.trace("ecran espace");
}

void FenetreTest::montrerErreur(std::shared_ptr<VueErreur> vue) {
    ecran = Ecran::erreur;
    configuration.reset();
    espace.reset();
    erreur = std::move(vue);
    plateforme.trace("ecran erreur");
}

std::shared_ptr<FenetrePrincipale> PlateformeTest::creerFenetrePrincipale(
    const ParametresFenetre& p, std::function<void()> vaFermer) {
    auto fenetre = std::make_shared<FenetreTest>(*this, p, std::move(vaFermer));
    principales.push_back(fenetre);
    return fenetre;
}

std::shared_ptr<VueWeb> PlateformeTest::creerVueWeb(const ParametresVueWeb& p,
                                                    const ConfigurationMoteur* configuration) {
    auto vue = std::make_shared<VueWebTest>(p, configuration != nullptr);
    vues.push_back(vue);
    trace(p.principale ? "vue principale" : "vue secondaire");
    return vue;
}

std::shared_ptr<Fenetre> PlateformeTest::creerFenetreSecondaire(const ParametresFenetre& p,
                                                                std::shared_ptr<VueWeb> vue,
                                                                std::function<void()> vaFermer) {
    auto fenetre = std::make_shared<FenetreTest>(*this, p, std::move(vaFermer));
    fenetre->espace = std::move(vue);
    fenetre->ecran = FenetreTest::Ecran::espace;
    secondaires.push_back(fenetre);
    trace("fenetre secondaire");
    fenetre->devant();
    return fenetre;
}

void PlateformeTest::alerte(const Alerte& a, std::function<void(ReponseAlerte)> reponse) {
    alertes.push_back(a);
    if (reponsesAlertes.empty()) return;
    auto r = reponsesAlertes.front();
    reponsesAlertes.pop_front();
    reponse(r);
}

void PlateformeTest::choisirFichiers(const DemandeFichiers& d,
                                     std::function<void(FichiersChoisis)> reponse) {
    demandesFichiers.push_back(d);
    if (reponsesFichiers.empty()) return;
    auto r = reponsesFichiers.front();
    reponsesFichiers.pop_front();
    reponse(r);
}

bool PlateformeTest::existe(const std::string& chemin) {
    if (systemeDeFichiers) return std::filesystem::exists(chemin);
    return chemins.count(chemin) > 0;
}

void PlateformeTest::rendreCle(Fenetre* fenetre) {
    for (auto& f : principales) f->cle = f.get() == fenetre;
    for (auto& f : secondaires) f->cle = f.get() == fenetre;
}

}  // namespace brindex::test
