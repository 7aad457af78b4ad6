#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <utility>

#include "app/lancement.hpp"
#include "app/menus.hpp"
#include "app/rendu.hpp"
#include "container/controleur_fixture.hpp"

namespace brindex {
namespace {

using Application = test::ControleurTest;

TEST_F(Application, ChaqueCommandeASonElementSonAccelerateurEtLeControleurRepondAuxSiennes) {
    espaceCharge();
    const auto toujours = [](Commande) { return true; };
    std::set<Commande> commandes;
    std::set<std::string_view> selecteurs;
    // A key equivalent does one thing across the bar: on macOS (a capital letter is Shift),
    // and on Linux, which shows only its own rows.
    std::set<std::pair<char, std::uint32_t>> touchesMac;
    std::set<std::string> touchesGtk;
    std::function<void(const Menu&)> parcourir = [&](const Menu& menu) {
        for (const auto& e : menu.elements) {
            if (e.separateur) continue;
            if (e.sousMenu) {
                EXPECT_FALSE(e.commande || e.sousMenu->elements.empty()) << e.titre;
                parcourir(*e.sousMenu);
                continue;
            }
            ASSERT_TRUE(e.commande) << e.titre;
            EXPECT_TRUE(commandes.insert(*e.commande).second) << e.titre;
            EXPECT_TRUE(selecteurs.insert(e.selecteur).second && e.selecteur.ends_with(':'))
                << e.titre;
            if (e.touche.size() == 1) {
                const char t = e.touche[0];
                const bool capitale = t >= 'A' && t <= 'Z';
                const std::uint32_t masque = (e.masque ? e.masque : Modificateur::commande) |
                                             (capitale ? Modificateur::majuscule : 0);
                EXPECT_TRUE(touchesMac.insert({capitale ? t - 'A' + 'a' : t, masque}).second)
                    << e.titre;
                EXPECT_TRUE(e.macosSeulement || touchesGtk.insert(accelerateurGtk(e)).second)
                    << e.titre;
            }
            // Only the looked-at menus target the controller, whatever it answers; the menus
            // send it exactly the commands it runs.
            EXPECT_EQ(cibleDe(menu, e, toujours) == Cible::controleur, menu.cibleExaminee);
            EXPECT_EQ(controleurRepond(*e.commande), controleur->executer(*e.commande)) << e.titre;
        }
    };
    for (const auto& menu : barreDeMenus()) parcourir(menu);
    EXPECT_EQ(commandes.size(), static_cast<std::size_t>(Commande::correctionAutomatique) + 1)
        << "every command has its item";
    // GTK accelerators: Control for Command, Shift for a capital.
    namespace M = Modificateur;
    // clang-format off
    const std::tuple<std::string_view, std::uint32_t, std::string> table[] = {
        {"r", 0, "<Control>r"}, {"H", 0, "<Control><Shift>h"}, {"z", M::commande | M::majuscule, "<Control><Shift>z"},
        {"h", M::commande | M::option, "<Control><Alt>h"}, {"f", M::commande | M::controle, "<Control><Super>f"},
        {"[", 0, "<Control>bracketleft"}, {"+", 0, "<Control>plus"}, {"", 0, ""}};
    // clang-format on
    for (const auto& [touche, masque, attendu] : table) {
        EXPECT_EQ(accelerateurGtk({false, {}, {}, {}, touche, masque}), attendu) << touche;
    }
}

TEST(Rendu, LogicielSansGpuSaufSiLEnvironnementEnDecide) {
    // GL renderer (nothing: no context), GSK_RENDERER and WEBKIT_DISABLE_COMPOSITING_MODE set,
    // then software, cairo, no compositing.
    // clang-format off
    const std::tuple<std::optional<std::string>, bool, bool, bool, bool, bool> table[] = {
        {"llvmpipe (LLVM 15.0.6, 256 bits)", false, false, true, true, true}, {"softpipe", false, false, true, true, true},
        {"SwiftShader Device", false, false, true, true, true}, {std::nullopt, false, false, true, true, true},
        {"AMD Radeon RX 6600", false, false, false, false, false},
        {"Mesa Intel(R) UHD Graphics 620", false, false, false, false, false},
        {"llvmpipe (LLVM 15.0.6, 256 bits)", true, false, true, false, true},
        {"llvmpipe (LLVM 15.0.6, 256 bits)", false, true, true, true, false},
        {"AMD Radeon RX 6600", true, true, false, false, false}};
    // clang-format on
    for (const auto& [rendeur, gsk, composition, logiciel, cairo, sansComposition] : table) {
        const auto choix = choisirRendu(rendeur, gsk, composition);
        EXPECT_EQ(std::tie(choix.logiciel, choix.rendeurCairo, choix.sansComposition),
                  std::tie(logiciel, cairo, sansComposition))
            << rendeur.value_or("pas de GL") << " " << gsk << composition;
    }
    // Without a graphics device no probe is needed, and GL is left unprepared unless the user
    // named a renderer; with one, the probe decides.
    EXPECT_FALSE(choisirRenduSansCarte(true, false, false));
    for (const auto& [gsk, composition] : {std::pair{false, false}, {true, false}, {false, true}}) {
        const auto c = choisirRenduSansCarte(false, gsk, composition);
        ASSERT_TRUE(c);
        EXPECT_EQ(std::make_tuple(c->logiciel, c->rendeurCairo, c->sansComposition, c->sansGl),
                  std::make_tuple(true, !gsk, !composition, !gsk));
    }
}

struct CoquilleTest : Coquille {
    explicit CoquilleTest(test::PlateformeTest& p) : p_(p) {}
    void construireMenus() override { p_.trace("menus"); }
    void activer() override { p_.trace("activer"); }
    test::PlateformeTest& p_;
};

TEST_F(Application, MenusPuisEcranPuisActivationPuisJournalEtReouverture) {
    stocker("https://espace.example/");
    CoquilleTest coquille(p);
    lancer(coquille, *controleur);
    EXPECT_EQ(p.evenements, (std::vector<std::string>{"menus", "vue principale", "ecran espace",
                                                      "devant", "activer"}));
    EXPECT_EQ(principale().chargements.size(), 1u) << "loading starts before the start line";
    EXPECT_EQ(lignesJournal(), std::vector<std::string>{"demarrage v1.0.0"});
    // Reopening brings the main window back to the front only when none is visible.
    EXPECT_TRUE(reouvrir(*controleur, true));
    EXPECT_EQ(fenetre().passagesDevant, 1);
    EXPECT_TRUE(reouvrir(*controleur, false));
    EXPECT_EQ(fenetre().passagesDevant, 2);
    EXPECT_EQ(fenetre().ecran, test::FenetreTest::Ecran::espace) << "content unchanged";
}

}  // namespace
}  // namespace brindex
