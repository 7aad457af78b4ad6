#include "screens/vue_configuration.hpp"

#include <gtest/gtest.h>

#include <deque>

#include "support/plateforme_test.hpp"

namespace brindex {
namespace {

const std::string recherche = "Recherche de votre espace…";
const std::string invalide = "Adresse invalide — exemple : " + std::string(Marque::hoteExemple);
const std::string introuvable = "Cette adresse n'existe pas. Vérifiez l'orthographe.";
const std::string joker = "203-0-113-42.joker-dns.example";

class VueConfigurationTest : public testing::Test {
  protected:
    void creer(std::optional<std::string> adresse = std::nullopt) {
        vue = VueConfiguration::creer(std::move(adresse), [this](const Url& url, auto rappel) {
            sondees.push_back(url.texte());
            rappels.push_back(std::move(rappel));
        });
        vue->onConnexion = [this](const Url& url) { connexions.push_back(url.texte()); };
        vue->attacher(c);
    }
    // Answers the oldest probe still waiting.
    void repondre(ResultatSonde r) { test::premier(rappels)(std::move(r)); }
    void etat(bool champ, bool bouton, bool roue, const Couleur& couleur,
              const std::string& message, bool forcer) {
        EXPECT_EQ(std::tie(c.champActif, c.boutonActif, c.roue, c.couleur, c.message, c.forcer),
                  std::tie(champ, bouton, roue, couleur, message, forcer));
    }
    std::vector<std::string> sondees;
    std::deque<std::function<void(ResultatSonde)>> rappels;
    test::ControlesTest c;
    std::shared_ptr<VueConfiguration> vue;
    std::vector<std::string> connexions;
};

TEST_F(VueConfigurationTest, PreteApresCreationEtDetectionSiLeChampEstVide) {
    creer("https://espace.example/");
    EXPECT_EQ(c.champ, "https://espace.example/");
    etat(true, true, false, Marque::erreur, "", false);
    vue->detecterAdresseParDefaut();
    EXPECT_TRUE(sondees.empty()) << "a current address means no search";
    creer();
    c.champ = "\n";
    vue->detecterAdresseParDefaut();
    EXPECT_TRUE(sondees.empty()) << "a line break is not empty";
    vue->forcer();
    EXPECT_TRUE(connexions.empty()) << "nothing checked, nothing to force";
    // An empty field: the built-in addresses, one after the other.
    creer();
    c.champ = "  \t ";
    vue->detecterAdresseParDefaut();
    etat(true, true, true, Marque::attenue, recherche, false);
    ASSERT_EQ(sondees, std::vector<std::string>{"https://espace.brindex.example"});
    repondre(ResultatSonde::injoignable("x"));
    EXPECT_EQ(sondees,
              (std::vector<std::string>{"https://espace.brindex.example", "https://" + joker}));
    EXPECT_EQ(c.message, recherche) << "a failure's text is not shown";
    repondre(ResultatSonde::ok());
    EXPECT_EQ(c.champ, joker) << "the address as written, not the URL";
    etat(true, true, false, Marque::accent, "Espace trouvé à cette adresse.", false);
    EXPECT_TRUE(connexions.empty()) << "nothing connects by itself";
    // Neither address is a space: back to ready.
    creer();
    vue->detecterAdresseParDefaut();
    repondre(ResultatSonde::pasUnEspace());
    repondre(ResultatSonde::injoignable("x"));
    etat(true, true, false, Marque::attenue, "", false);
}

TEST_F(VueConfigurationTest, VerificationPuisResultatsACoteDUneDetectionPuisVueDisparue) {
    creer();
    c.champ = " localhost:3000/wiki ";
    vue->valider();
    etat(false, false, true, Marque::attenue, "Vérification de l'adresse…", false);
    EXPECT_EQ(sondees, std::vector<std::string>{"http://localhost:3000/wiki"});
    c.champ = "autre chose";
    repondre(ResultatSonde::pasUnEspace());
    etat(true, true, false, Marque::erreur,
         "Cette adresse répond, mais ce n'est pas un espace Brindex (c'est peut-être le site "
         "public).",
         true);
    vue->forcer();
    EXPECT_EQ(connexions, std::vector<std::string>{"http://localhost:3000/wiki"})
        << "the probed URL, not the field's text";
    // An invalid address changes the message only.
    c.roue = true;
    vue->valider();
    etat(true, true, true, Marque::erreur, invalide, true);
    EXPECT_EQ(sondees.size(), 1u);
    // Typing clears the message and hides "Enregistrer quand même".
    vue->texteModifie();
    etat(true, true, true, Marque::erreur, "", false);
    c.champ = "intranet";
    vue->valider();
    repondre(ResultatSonde::injoignable(introuvable));
    etat(true, true, false, Marque::erreur, introuvable, true);
    vue->valider();
    repondre(ResultatSonde::ok());
    etat(true, true, false, Marque::attenue, "", false);
    EXPECT_EQ(connexions.back(), "https://intranet");
    // A search and a check side by side, then a view gone before the answer.
    connexions.clear();
    creer();
    vue->detecterAdresseParDefaut();
    c.champ = "intranet";
    vue->valider();
    repondre(ResultatSonde::injoignable("x"));  // first default
    repondre(ResultatSonde::pasUnEspace());     // the check
    EXPECT_TRUE(c.forcer);
    repondre(ResultatSonde::ok());  // second default, found later
    EXPECT_EQ(c.champ, joker);
    EXPECT_FALSE(c.roue);
    vue->valider();
    vue.reset();
    c.message = "inchangé";
    repondre(ResultatSonde::ok());
    EXPECT_EQ(c.message, "inchangé");
    EXPECT_TRUE(connexions.empty());
}

}  // namespace
}  // namespace brindex
