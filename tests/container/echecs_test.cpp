#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

using Ecran = FenetreTest::Ecran;

ErreurChargement url(std::int64_t code) {
    return {"NSURLErrorDomain", code, "description " + std::to_string(code)};
}

struct CasDetail {
    ErreurChargement erreur;
    std::string texte;
    friend std::ostream& operator<<(std::ostream& o, const CasDetail& c) {
        return o << c.erreur.domaine << "/" << c.erreur.code;
    }
};

const std::string certificat =
    "Le certificat de sécurité du serveur n'est pas valide. Contactez la personne qui administre "
    "votre espace.";
const std::string coupee =
    "Votre connexion internet semble coupée. Vérifiez le réseau puis réessayez.";
const std::string silence =
    "Le serveur de votre espace ne répond pas. Il est peut-être en cours de maintenance — "
    "réessayez dans quelques instants.";

class Explications : public ControleurTest, public testing::WithParamInterface<CasDetail> {};

TEST_P(Explications, AvantLePremierChargementLaFenetreDevientLErreur) {
    stocker("https://Espace.example:8443/wiki");
    controleur->demarrer();
    auto& vue = principale();
    controleur->traiterEchec(GetParam().erreur, vue);
    ASSERT_EQ(fenetre().ecran, Ecran::erreur);
    EXPECT_EQ(fenetre().erreur->detail(), GetParam().texte);
    EXPECT_TRUE(vue.detachee);
    const auto& e = GetParam().erreur;
    EXPECT_EQ(lignesJournal().back(),
              "navigation ECHEC " + e.domaine + "/" + std::to_string(e.code) + " " + e.description);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Explications,
    testing::Values(
        CasDetail{url(-1200), certificat}, CasDetail{url(-1201), certificat},
        CasDetail{url(-1202), certificat}, CasDetail{url(-1204), certificat},
        CasDetail{url(-1022),
                  "Cette adresse exige une connexion sécurisée (https). Vérifiez l'adresse de "
                  "votre espace."},
        CasDetail{url(-1009), coupee}, CasDetail{url(-1005), coupee},
        CasDetail{url(-1004), silence}, CasDetail{url(-1001), silence},
        CasDetail{url(-1003),
                  "L'adresse « Espace.example » est introuvable. Vérifiez-la, ou contactez la "
                  "personne qui administre votre espace."},
        CasDetail{url(-1203), "description -1203"}, CasDetail{url(-1100), "description -1100"},
        CasDetail{{"WebKitErrorDomain", 101, "Requête annulée par le moteur"},
                  "Requête annulée par le moteur"},
        CasDetail{{"GIOErrorDomain", -1003, "autre domaine"}, "autre domaine"}));

TEST_F(ControleurTest, IntrouvableSansAdresseStockee) {
    stocker("https://espace.example/");
    controleur->demarrer();
    p.reglages_.valeurs.clear();
    controleur->traiterEchec(url(-1003), principale());
    EXPECT_EQ(fenetre().erreur->detail(),
              "L'adresse «  » est introuvable. Vérifiez-la, ou contactez la personne qui "
              "administre votre espace.");
}

TEST_F(ControleurTest, EchecsIgnoresSansTrace) {
    auto& vue = espaceCharge();
    auto pop = popup(vue, std::nullopt);
    const auto avant = lignesJournal().size();
    for (VueWeb* v : {static_cast<VueWeb*>(&vue), pop.get()}) {
        controleur->traiterEchec(url(-999), *v);
        controleur->traiterEchec({"WebKitErrorDomain", 102, "interrompu"}, *v);
    }
    EXPECT_EQ(lignesJournal().size(), avant);
    EXPECT_TRUE(fenetre().feuilles.empty());
    EXPECT_TRUE(p.secondaires.at(0)->feuilles.empty());
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
}

TEST_F(ControleurTest, ApresUnChargementUneFeuilleEtLaPageReste) {
    auto& vue = espaceCharge();
    EXPECT_EQ(lignesJournal().back(), "navigation OK https://espace.example/wiki");
    controleur->traiterEchec(url(-1009), vue);
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    ASSERT_EQ(fenetre().feuilles.size(), 1u);
    EXPECT_EQ(fenetre().feuilles[0].message, "Page inaccessible");
    EXPECT_EQ(fenetre().feuilles[0].informatif, coupee);
    EXPECT_EQ(fenetre().feuilles[0].boutons, std::vector<std::string>{"OK"});
}

TEST_F(ControleurTest, EchecDansUneFenetreSecondaireToujoursEnFeuille) {
    stocker("https://espace.example/");
    controleur->demarrer();
    auto pop = popup(principale(), std::nullopt);
    controleur->traiterEchec(url(-1004), *pop);
    EXPECT_EQ(fenetre().ecran, Ecran::espace) << "the main view had not loaded, yet stays";
    ASSERT_EQ(p.secondaires.at(0)->feuilles.size(), 1u);
    controleur->montrerErreur("x");
    controleur->traiterEchec(url(-1001), *pop);
    EXPECT_EQ(p.secondaires.at(0)->feuilles.size(), 2u);
}

TEST_F(ControleurTest, EchecDUneVueInconnueSeulementJournalise) {
    espaceCharge();
    VueWebTest inconnue({}, false);
    controleur->traiterEchec(url(-1004), inconnue);
    EXPECT_TRUE(fenetre().feuilles.empty());
    EXPECT_EQ(lignesJournal().back(), "navigation ECHEC NSURLErrorDomain/-1004 description -1004");
}

TEST_F(ControleurTest, ChargementTermineSansUrl) {
    auto& vue = espaceCharge();
    auto pop = popup(vue, std::nullopt);
    controleur->chargementTermine(*pop);
    EXPECT_EQ(lignesJournal().back(), "navigation OK ?");
}

TEST_F(ControleurTest, UnProcessusWebMortRechargeUneFoisPuisExplique) {
    auto& vue = espaceCharge();
    auto& pop = static_cast<VueWebTest&>(*popup(vue, std::nullopt));
    controleur->processusTermine(vue, FinProcessus::plantage);
    EXPECT_EQ(vue.actions, std::vector<std::string>{"recharger"});
    EXPECT_EQ(lignesJournal().back(), "processus web ECHEC plantage https://espace.example/wiki");
    p.horloge += delaiRechuteProcessus + std::chrono::seconds(1);
    controleur->processusTermine(vue, FinProcessus::memoire);
    EXPECT_EQ(vue.actions.size(), 2u) << "long after the last one: reloaded again";
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    p.horloge += std::chrono::seconds(5);
    controleur->processusTermine(vue, FinProcessus::plantage);
    EXPECT_EQ(fenetre().ecran, Ecran::erreur);
    EXPECT_EQ(fenetre().erreur->detail().rfind("La page de votre espace s'est arrêtée", 0), 0u);
    // A popup's page dies twice: its window says so and stays.
    controleur->processusTermine(pop, FinProcessus::plantage);
    controleur->processusTermine(pop, FinProcessus::plantage);
    EXPECT_EQ(pop.actions, std::vector<std::string>{"recharger"});
    ASSERT_EQ(p.secondaires.at(0)->feuilles.size(), 1u);
    EXPECT_EQ(p.secondaires.at(0)->feuilles[0].message, "Page inaccessible");
}

}  // namespace
}  // namespace brindex::test
