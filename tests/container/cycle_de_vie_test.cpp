#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

using Ecran = FenetreTest::Ecran;

TEST_F(ControleurTest, DemarrerSansAdresseMontreLaConfiguration) {
    EXPECT_EQ(fenetre().ecran, Ecran::initial) << "built hidden";
    EXPECT_EQ(fenetre().passagesDevant, 0);
    controleur->demarrer();
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
    EXPECT_EQ(fenetre().controles.champ, "");
    EXPECT_EQ(fenetre().controles.focalisations, 1);
    EXPECT_EQ(fenetre().passagesDevant, 1);
    // The empty field starts the search for a default space.
    ASSERT_EQ(p.transport_.requetes.size(), 1u);
    EXPECT_EQ(p.transport_.requetes[0].url, "https://espace.brindex.example/health");
}

TEST_F(ControleurTest, DemarrerAvecUneAdresseIllisibleMontreLaConfiguration) {
    stocker("ftp://espace.example");
    controleur->demarrer();
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
    EXPECT_EQ(fenetre().controles.champ, "");
    EXPECT_FALSE(controleur->webView());
}

TEST_F(ControleurTest, DemarrerOuvreLEspaceStockeAvecToutLeChemin) {
    stocker("intranet:8080/wiki/");
    controleur->demarrer();
    ASSERT_EQ(fenetre().ecran, Ecran::espace);
    auto& vue = principale();
    EXPECT_TRUE(vue.parametres.principale);
    EXPECT_TRUE(vue.parametres.gestesHistorique);
    EXPECT_TRUE(vue.parametres.grossissement);
    EXPECT_EQ(vue.parametres.agentSuffixe, "Brindex-Desktop/1.0.0");
    ASSERT_EQ(vue.chargements.size(), 1u);
    EXPECT_EQ(vue.chargements[0].first, "https://intranet:8080/wiki/");
    EXPECT_EQ(vue.chargements[0].second, 60);
    EXPECT_EQ(controleur->originesWebView().at(&vue),
              *Origine::depuis(std::string_view("https://intranet:8080")));
    EXPECT_EQ(fenetre().titre, "Brindex") << "the title waits for the page";
    EXPECT_EQ(p.evenements.back(), "devant");
    EXPECT_TRUE(p.transport_.requetes.empty()) << "a stored address is not probed again";
}

TEST_F(ControleurTest, OuvrirDeuxFoisLaisseUneSeuleVue) {
    auto& premiere = espaceCharge();
    controleur->ouvrirEspace(*normaliserAdresse("https://espace.example/"));
    EXPECT_TRUE(premiere.detachee);
    EXPECT_EQ(premiere.arrets, 1);
    EXPECT_EQ(controleur->originesWebView().size(), 1u);
    EXPECT_FALSE(controleur->principaleADejaCharge());
    EXPECT_NE(&principale(), &premiere);
}

TEST_F(ControleurTest, UrlSansOrigineRevientALaConfiguration) {
    controleur->ouvrirEspace(*Url::analyser("ftp://espace.example/"));
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
    EXPECT_TRUE(p.vues.empty());
}

TEST_F(ControleurTest, ConnexionStockeEtOuvre) {
    controleur->demarrer();
    p.transport_.repondreErreur(-1003);
    p.transport_.repondreErreur(-1003);
    fenetre().controles.champ = "localhost:3000/wiki";
    fenetre().configuration->valider();
    p.transport_.repondreEspace();
    EXPECT_EQ(p.reglages_.valeurs.at("espaceURL"), "http://localhost:3000/wiki");
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    EXPECT_EQ(principale().chargements.at(0).first, "http://localhost:3000/wiki");
}

TEST_F(ControleurTest, TitreEtProgression) {
    auto& vue = espaceCharge();
    struct Cas {
        std::optional<std::string> page;
        std::string fenetre;
    };
    for (const auto& cas :
         {Cas{"  Accueil\t", "Accueil"}, Cas{" \t ", "Brindex"}, Cas{std::nullopt, "Brindex"},
          Cas{"\n\n", "\n\n"}, Cas{"\xC2\xA0Wiki\xE2\x80\x83", "Wiki"}}) {
        vue.titreCourant = cas.page;
        controleur->titreChange(vue);
        EXPECT_EQ(fenetre().titre, cas.fenetre);
    }
    vue.progressionCourante = 0.999;
    controleur->progressionChange(vue);
    EXPECT_TRUE(fenetre().barreVisible);
    EXPECT_EQ(fenetre().barre, 0.999);
    vue.progressionCourante = 1.0;
    controleur->progressionChange(vue);
    EXPECT_FALSE(fenetre().barreVisible);
}

TEST_F(ControleurTest, LaVueActiveEstCelleDeLaFenetreCle) {
    controleur->demarrer();
    EXPECT_FALSE(controleur->webViewActive());
    auto& vue = espaceCharge();
    auto pop = popup(vue, "https://espace.example/a");
    EXPECT_EQ(controleur->webViewActive(), pop) << "a new secondary window is key";
    p.rendreCle(&fenetre());
    EXPECT_EQ(controleur->webViewActive().get(), &vue);
    p.rendreCle(nullptr);
    EXPECT_EQ(controleur->webViewActive().get(), &vue);
    controleur->montrerErreur("x");
    EXPECT_FALSE(controleur->webViewActive()) << "no main web view, no key popup";
    p.rendreCle(p.secondaires.at(0).get());
    EXPECT_EQ(controleur->webViewActive(), pop) << "the error view leaves popups open";
}

TEST_F(ControleurTest, EntrerDansLEspaceFermeLesFenetresSecondairesAvantTout) {
    auto& vue = espaceCharge();
    popup(vue, std::nullopt);
    p.evenements.clear();
    controleur->ouvrirEspace(*normaliserAdresse("https://espace.example/"));
    const std::vector<std::string> attendus{"fermer Brindex", "vue principale", "ecran espace"};
    EXPECT_EQ(p.evenements, attendus);
    EXPECT_TRUE(controleur->fenetresSecondaires().empty());
}

TEST_F(ControleurTest, LErreurLaisseLesFenetresSecondaires) {
    auto& vue = espaceCharge();
    popup(vue, std::nullopt);
    controleur->montrerErreur("explication");
    EXPECT_EQ(fenetre().ecran, Ecran::erreur);
    EXPECT_EQ(fenetre().erreur->detail(), "explication");
    EXPECT_EQ(controleur->fenetresSecondaires().size(), 1u);
    EXPECT_FALSE(controleur->webView());
    EXPECT_EQ(controleur->originesWebView().size(), 1u) << "only the popup's entry is left";
}

TEST_F(ControleurTest, ReessayerEtChangerDAdresse) {
    stocker("https://espace.example/");
    controleur->montrerErreur("x");
    fenetre().erreur->reessayer();
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    controleur->montrerErreur("x");
    p.reglages_.valeurs.clear();
    fenetre().erreur->reessayer();
    EXPECT_EQ(fenetre().ecran, Ecran::erreur) << "nothing to retry";
    fenetre().erreur->changer();
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
}

TEST_F(ControleurTest, RappelsSansEffetApresLaFinDuControleur) {
    stocker("https://espace.example/");
    controleur->montrerErreur("x");
    auto erreur = fenetre().erreur;
    auto fenetrePrincipale = p.principales.at(0);
    controleur.reset();
    erreur->reessayer();
    erreur->changer();
    fenetrePrincipale->fermerParUtilisateur();
    EXPECT_EQ(fenetrePrincipale->ecran, Ecran::erreur);
}

TEST_F(ControleurTest, FermerLaFenetrePrincipale) {
    auto& vue = espaceCharge();
    popup(vue, std::nullopt);
    fenetre().fermerParUtilisateur();
    EXPECT_TRUE(p.secondaires.at(0)->fermee);
    EXPECT_TRUE(vue.detachee);
    EXPECT_FALSE(controleur->webView());
    EXPECT_TRUE(controleur->originesWebView().empty());
}

}  // namespace
}  // namespace brindex::test
