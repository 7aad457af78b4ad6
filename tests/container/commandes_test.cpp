#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

TEST_F(ControleurTest, SansVueLesCommandesDePageNeFontRien) {
    controleur->demarrer();
    for (const auto c :
         {Commande::recharger, Commande::rechargerOrigine, Commande::pagePrecedente,
          Commande::pageSuivante, Commande::zoomPlus, Commande::zoomMoins, Commande::zoomReel}) {
        EXPECT_TRUE(controleur->executer(c));
    }
    EXPECT_TRUE(p.vues.empty());
}

TEST_F(ControleurTest, LesCommandesVisentLaVueActive) {
    auto& vue = espaceCharge();
    controleur->executer(Commande::recharger);
    controleur->executer(Commande::rechargerOrigine);
    auto pop = popup(vue, std::nullopt);
    controleur->executer(Commande::pagePrecedente);
    controleur->executer(Commande::pageSuivante);
    controleur->executer(Commande::zoomPlus);
    EXPECT_EQ(vue.actions, (std::vector<std::string>{"recharger", "rechargerOrigine"}));
    auto& vuePopup = static_cast<VueWebTest&>(*pop);
    EXPECT_EQ(vuePopup.actions, (std::vector<std::string>{"reculer", "avancer"}));
    EXPECT_DOUBLE_EQ(vuePopup.zoom_, 1.1);
    EXPECT_EQ(vue.zoom_, 1.0);
}

TEST_F(ControleurTest, ZoomEnDoubleSansArrondi) {
    auto& vue = espaceCharge();
    controleur->zoomPlus();
    EXPECT_EQ(vue.zoom_, 1.1);
    controleur->zoomPlus();
    EXPECT_EQ(vue.zoom_, 1.2000000000000002);
    vue.zoom_ = 1.0;
    for (int i = 1; i <= 20; ++i) {
        controleur->zoomPlus();
        if (i < 20) {
            EXPECT_LT(vue.zoom_, 3.0) << i;
        }
    }
    EXPECT_EQ(vue.zoom_, 3.0) << "the 20th press is the first to reach 3.0";
    for (int i = 0; i < 5; ++i) controleur->zoomPlus();
    EXPECT_EQ(vue.zoom_, 3.0);
    vue.zoom_ = 1.0;
    for (int i = 0; i < 5; ++i) controleur->zoomMoins();
    EXPECT_EQ(vue.zoom_, 0.5000000000000001);
    controleur->zoomMoins();
    EXPECT_EQ(vue.zoom_, 0.5);
    for (int i = 0; i < 4; ++i) controleur->zoomMoins();
    EXPECT_EQ(vue.zoom_, 0.5);
    vue.zoom_ = 2.95;
    controleur->zoomPlus();
    EXPECT_EQ(vue.zoom_, 3.0);
    vue.zoom_ = 0.55;
    controleur->zoomMoins();
    EXPECT_EQ(vue.zoom_, 0.5);
    controleur->zoomReel();
    EXPECT_EQ(vue.zoom_, 1.0);
}

TEST_F(ControleurTest, AccueilChargeDansLaFenetrePrincipale) {
    auto& vue = espaceCharge("https://espace.example/wiki");
    popup(vue, std::nullopt);
    controleur->accueil();
    EXPECT_EQ(vue.chargements.back(),
              (std::pair<std::string, double>{"https://espace.example/wiki", 60}));
    EXPECT_TRUE(fenetre().cle);
    EXPECT_EQ(controleur->fenetresSecondaires().size(), 1u) << "home keeps popups open";
}

TEST_F(ControleurTest, AccueilDepuisLErreurRouvreLEspace) {
    stocker("https://espace.example/");
    controleur->montrerErreur("x");
    controleur->accueil();
    EXPECT_EQ(fenetre().ecran, FenetreTest::Ecran::espace);
    EXPECT_EQ(fenetre().passagesDevant, 1);
}

TEST_F(ControleurTest, AccueilSansAdresseNeFaitRien) {
    controleur->montrerErreur("x");
    controleur->accueil();
    EXPECT_EQ(fenetre().ecran, FenetreTest::Ecran::erreur);
    EXPECT_EQ(fenetre().passagesDevant, 0);
}

TEST_F(ControleurTest, SiteJournalEtChangementDEspace) {
    espaceCharge();
    controleur->executer(Commande::ouvrirSite);
    EXPECT_EQ(p.urlsOuvertes, std::vector<std::string>{std::string(Marque::urlSite)});
    EXPECT_EQ(Marque::urlSite.substr(0, 8), "https://");
    controleur->executer(Commande::ouvrirJournal);
    EXPECT_EQ(p.reveles, std::vector<std::string>{Journal::chemin()});
    controleur->executer(Commande::changerEspace);
    EXPECT_EQ(fenetre().ecran, FenetreTest::Ecran::configuration);
    EXPECT_EQ(fenetre().controles.champ, "https://espace.example/wiki");
    EXPECT_TRUE(p.transport_.requetes.empty()) << "a filled field starts no search";
    EXPECT_FALSE(controleur->executer(Commande::pleinEcran));
    EXPECT_FALSE(controleur->executer(Commande::quitter));
}

TEST_F(ControleurTest, DialoguesDePage) {
    // Alert: answered once closed.
    bool alerteFinie = false;
    p.reponsesAlertes.push_back({0, ""});
    controleur->alerteScript("Bonjour", [&] { alerteFinie = true; });
    EXPECT_TRUE(alerteFinie);
    EXPECT_EQ(p.alertes.back().message, "Brindex");
    EXPECT_EQ(p.alertes.back().informatif, "Bonjour");
    EXPECT_EQ(p.alertes.back().boutons, std::vector<std::string>{"OK"});

    std::vector<bool> confirmations;
    p.reponsesAlertes.push_back({0, ""});
    p.reponsesAlertes.push_back({1, ""});
    p.reponsesAlertes.push_back({ReponseAlerte::aucunBouton, ""});
    for (int i = 0; i < 3; ++i) {
        controleur->confirmationScript("Sûr ?", [&](bool oui) { confirmations.push_back(oui); });
    }
    EXPECT_EQ(confirmations, (std::vector<bool>{true, false, false}));
    EXPECT_EQ(p.alertes.back().boutons, (std::vector<std::string>{"OK", "Annuler"}));

    std::vector<std::optional<std::string>> saisies;
    p.reponsesAlertes.push_back({0, ""});
    p.reponsesAlertes.push_back({1, "tapé", true});
    p.reponsesAlertes.push_back({0, "réponse", true});
    controleur->saisieScript("Nom ?", std::nullopt, [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(p.alertes.back().champ, "");
    controleur->saisieScript("Nom ?", "Marie", [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(p.alertes.back().champ, "Marie");
    EXPECT_EQ(p.alertes.back().largeurChamp, 260);
    EXPECT_EQ(p.alertes.back().hauteurChamp, 24);
    controleur->saisieScript("Nom ?", "Marie", [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(saisies, (std::vector<std::optional<std::string>>{"", std::nullopt, "réponse"}));
}

TEST_F(ControleurTest, LesTextesDesPagesSontBornesDansLesDialogues) {
    const std::string mot(70000, 'x');
    controleur->alerteScript(mot + "\n" + std::string(40, '\n') + "fin", [] {});
    const std::string& montre = p.alertes.back().informatif;
    EXPECT_EQ(montre, std::string(caracteresDialogueMax, 'x') + "…");
    controleur->alerteScript(std::string(100, 'a') + std::string(40, '\n') + "fin", [] {});
    EXPECT_EQ(p.alertes.back().informatif,
              std::string(100, 'a') + std::string(lignesDialogueMax - 1, '\n') + "…");
    controleur->telechargementEchoue(*std::make_shared<TelechargementTest>(), mot);
    EXPECT_EQ(p.alertes.back().informatif.size(), caracteresDialogueMax + 3);

    // A prompt's field shows an excerpt; left as it is, the page gets its whole text back.
    std::optional<std::string> saisie;
    p.reponsesAlertes.push_back({0, "coupé par le champ", false});
    controleur->saisieScript("Jeton ?", mot, [&](auto r) { saisie = r; });
    EXPECT_EQ(p.alertes.back().champ->size(), caracteresChampMax + 3);
    EXPECT_EQ(saisie, mot);
}

TEST_F(ControleurTest, ChoixDeFichiers) {
    std::vector<FichiersChoisis> reponses;
    p.reponsesFichiers.push_back(std::vector<std::string>{"/a.txt", "/b.txt"});
    p.reponsesFichiers.push_back(std::nullopt);
    p.reponsesFichiers.push_back(std::vector<std::string>{});
    controleur->choixFichiers(true, [&](FichiersChoisis f) { reponses.push_back(f); });
    controleur->choixFichiers(false, [&](FichiersChoisis f) { reponses.push_back(f); });
    controleur->choixFichiers(false, [&](FichiersChoisis f) { reponses.push_back(f); });
    ASSERT_EQ(reponses.size(), 3u);
    EXPECT_EQ(reponses[0], (std::vector<std::string>{"/a.txt", "/b.txt"}));
    EXPECT_FALSE(reponses[1]);
    EXPECT_FALSE(reponses[2]) << "never an empty list";
    const auto& d = p.demandesFichiers;
    EXPECT_TRUE(d[0].fichiers && !d[0].dossiers && d[0].plusieurs && !d[0].creerDossiers);
    EXPECT_FALSE(d[1].plusieurs);
}

}  // namespace
}  // namespace brindex::test
