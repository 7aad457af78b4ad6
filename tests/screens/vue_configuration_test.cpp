#include "screens/vue_configuration.hpp"

#include <gtest/gtest.h>

#include <deque>

#include "screens/vue_erreur.hpp"
#include "support/plateforme_test.hpp"

namespace brindex {
namespace {

using test::ControlesTest;

// Keeps the probes until the test answers them, oldest first.
struct SondesEnAttente {
    std::vector<std::string> sondees;
    std::deque<std::function<void(ResultatSonde)>> rappels;
    Sondeur sondeur() {
        return [this](const Url& url, std::function<void(ResultatSonde)> rappel) {
            sondees.push_back(url.texte());
            rappels.push_back(std::move(rappel));
        };
    }
    void repondre(ResultatSonde r) {
        auto rappel = std::move(rappels.front());
        rappels.pop_front();
        rappel(std::move(r));
    }
};

const std::string pasUnEspace =
    "Cette adresse répond, mais ce n'est pas un espace Brindex (c'est peut-être le site public).";

class VueConfigurationTest : public testing::Test {
  protected:
    std::shared_ptr<VueConfiguration> creer(std::optional<std::string> adresse = std::nullopt) {
        vue = VueConfiguration::creer(std::move(adresse), sondes.sondeur());
        vue->onConnexion = [this](const Url& url) { connexions.push_back(url.texte()); };
        vue->attacher(c);
        return vue;
    }
    void etat(bool champ, bool bouton, bool roue, const Couleur& couleur,
              const std::string& message, bool forcer) {
        EXPECT_EQ(c.champActif, champ);
        EXPECT_EQ(c.boutonActif, bouton);
        EXPECT_EQ(c.roue, roue);
        EXPECT_EQ(c.couleur, couleur);
        EXPECT_EQ(c.message, message);
        EXPECT_EQ(c.forcer, forcer);
    }
    SondesEnAttente sondes;
    ControlesTest c;
    std::shared_ptr<VueConfiguration> vue;
    std::vector<std::string> connexions;
};

TEST_F(VueConfigurationTest, PreteApresCreation) {
    creer("https://espace.example/");
    EXPECT_EQ(c.champ, "https://espace.example/");
    etat(true, true, false, Marque::erreur, "", false);
    vue->detecterAdresseParDefaut();
    EXPECT_TRUE(sondes.sondees.empty()) << "a current address means no search";
}

TEST_F(VueConfigurationTest, DetectionUneAdresseApresLAutre) {
    creer();
    c.champ = "  \t ";
    vue->detecterAdresseParDefaut();
    etat(true, true, true, Marque::attenue, "Recherche de votre espace…", false);
    ASSERT_EQ(sondes.sondees, std::vector<std::string>{"https://espace.brindex.example"});
    sondes.repondre(ResultatSonde::injoignable("x"));
    ASSERT_EQ(sondes.sondees.size(), 2u);
    EXPECT_EQ(sondes.sondees[1], "https://203-0-113-42.joker-dns.example");
    EXPECT_EQ(c.message, "Recherche de votre espace…") << "a failure's text is not shown";
    sondes.repondre(ResultatSonde::ok());
    EXPECT_EQ(c.champ, "203-0-113-42.joker-dns.example") << "the address as written, not the URL";
    etat(true, true, false, Marque::accent, "Espace trouvé à cette adresse.", false);
    EXPECT_TRUE(connexions.empty()) << "nothing connects by itself";
}

TEST_F(VueConfigurationTest, DetectionSansReponseRevientAPret) {
    creer();
    vue->detecterAdresseParDefaut();
    sondes.repondre(ResultatSonde::pasUnEspace());
    sondes.repondre(ResultatSonde::injoignable("x"));
    etat(true, true, false, Marque::attenue, "", false);
}

TEST_F(VueConfigurationTest, UnSautDeLigneNEstPasVide) {
    creer();
    c.champ = "\n";
    vue->detecterAdresseParDefaut();
    EXPECT_TRUE(sondes.sondees.empty());
}

TEST_F(VueConfigurationTest, AdresseInvalideNeChangeQueLeMessage) {
    creer();
    c.roue = true;
    c.forcer = true;
    c.champ = "ftp://intranet";
    vue->valider();
    etat(true, true, true, Marque::erreur,
         "Adresse invalide — exemple : " + std::string(Marque::hoteExemple), true);
    EXPECT_TRUE(sondes.sondees.empty());
}

TEST_F(VueConfigurationTest, VerificationPuisResultats) {
    creer();
    c.champ = " localhost:3000/wiki ";
    vue->valider();
    etat(false, false, true, Marque::attenue, "Vérification de l'adresse…", false);
    EXPECT_EQ(sondes.sondees, std::vector<std::string>{"http://localhost:3000/wiki"});
    c.champ = "autre chose";
    sondes.repondre(ResultatSonde::pasUnEspace());
    etat(true, true, false, Marque::erreur, pasUnEspace, true);
    vue->forcer();
    EXPECT_EQ(connexions, std::vector<std::string>{"http://localhost:3000/wiki"})
        << "the probed URL, not the field's text";

    vue->valider();
    EXPECT_EQ(c.message, "Adresse invalide — exemple : " + std::string(Marque::hoteExemple));
    c.champ = "intranet";
    vue->valider();
    sondes.repondre(
        ResultatSonde::injoignable("Cette adresse n'existe pas. Vérifiez l'orthographe."));
    etat(true, true, false, Marque::erreur, "Cette adresse n'existe pas. Vérifiez l'orthographe.",
         true);
    vue->valider();
    sondes.repondre(ResultatSonde::ok());
    etat(true, true, false, Marque::attenue, "", false);
    EXPECT_EQ(connexions.back(), "https://intranet");
}

TEST_F(VueConfigurationTest, ForcerSansVerificationNeFaitRien) {
    creer();
    vue->forcer();
    EXPECT_TRUE(connexions.empty());
}

TEST_F(VueConfigurationTest, FrappeEffaceLeMessageEtCacheForcer) {
    creer();
    c.champ = "intranet";
    vue->valider();
    sondes.repondre(ResultatSonde::pasUnEspace());
    vue->texteModifie();
    etat(true, true, false, Marque::erreur, "", false);
}

TEST_F(VueConfigurationTest, DetectionEtVerificationCoteACote) {
    creer();
    vue->detecterAdresseParDefaut();
    c.champ = "intranet";
    vue->valider();
    sondes.repondre(ResultatSonde::injoignable("x"));  // first default
    sondes.repondre(ResultatSonde::pasUnEspace());     // the check
    EXPECT_TRUE(c.forcer);
    sondes.repondre(ResultatSonde::ok());  // second default, found later
    EXPECT_EQ(c.champ, "203-0-113-42.joker-dns.example");
    EXPECT_FALSE(c.roue);
}

TEST_F(VueConfigurationTest, VueDisparueAvantLaReponse) {
    creer();
    c.champ = "intranet";
    vue->valider();
    vue.reset();
    c.message = "inchangé";
    sondes.repondre(ResultatSonde::ok());
    EXPECT_EQ(c.message, "inchangé");
    EXPECT_TRUE(connexions.empty());
}

TEST(VueErreur, BoutonsSansRappelIgnores) {
    VueErreur vue("détail");
    vue.reessayer();
    vue.changer();
    int reessais = 0;
    int changements = 0;
    vue.onReessayer = [&] { ++reessais; };
    vue.onChangerAdresse = [&] { ++changements; };
    vue.reessayer();
    vue.reessayer();
    vue.changer();
    EXPECT_EQ(reessais, 2);
    EXPECT_EQ(changements, 1);
    EXPECT_EQ(vue.detail(), "détail");
}

}  // namespace
}  // namespace brindex
