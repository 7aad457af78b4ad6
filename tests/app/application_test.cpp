#include "app/menus.hpp"

#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "app/lancement.hpp"
#include "container/controleur_fixture.hpp"

namespace brindex {
namespace {

TEST(BarreDeMenus, SeptMenusEtLeursElementsDansLOrdreAvecTouchesCiblesEtCommandesUniques) {
    const auto barre = barreDeMenus();
    std::vector<std::string_view> titres;
    for (const auto& m : barre) titres.push_back(m.titreBarre);
    EXPECT_EQ(titres, (std::vector<std::string_view>{"Brindex", "Fichier", "Édition", "Affichage",
                                                     "Espace", "Fenêtre", "Aide"}));
    EXPECT_EQ(barre[0].titre, "") << "the application menu itself has no title";
    EXPECT_EQ(barre[0].role, RoleMenu::application);
    EXPECT_EQ(barre[5].role, RoleMenu::fenetres);
    EXPECT_EQ(barre[6].role, RoleMenu::aide);
    for (std::size_t i = 1; i < barre.size(); ++i) EXPECT_EQ(barre[i].titre, barre[i].titreBarre);

    using C = Cible;
    // clang-format off
    // Every item but the separators, left to right: title, key, modifier mask, target, GTK accelerator.
    const std::tuple<std::string_view, std::string_view, std::uint32_t, Cible, std::string> attendus[] = {
        {"À propos de Brindex", "", 0, C::aucune, ""},
        {"Masquer Brindex", "h", 0, C::aucune, "<Control>h"},
        {"Masquer les autres", "h", 0x180000, C::aucune, "<Control><Alt>h"},
        {"Tout afficher", "", 0, C::aucune, ""},
        {"Quitter Brindex", "q", 0, C::aucune, "<Control>q"},
        {"Fermer la fenêtre", "w", 0, C::aucune, "<Control>w"},
        {"Annuler", "z", 0, C::aucune, "<Control>z"},
        {"Rétablir", "z", 0x120000, C::aucune, "<Control><Shift>z"},
        {"Couper", "x", 0, C::aucune, "<Control>x"},
        {"Copier", "c", 0, C::aucune, "<Control>c"},
        {"Coller", "v", 0, C::aucune, "<Control>v"},
        {"Tout sélectionner", "a", 0, C::aucune, "<Control>a"},
        {"Recharger la page", "r", 0, C::controleur, "<Control>r"},
        {"Recharger en ignorant le cache", "r", 0x120000, C::controleur, "<Control><Shift>r"},
        {"Page précédente", "[", 0, C::controleur, "<Control>bracketleft"},
        {"Page suivante", "]", 0, C::controleur, "<Control>bracketright"},
        {"Accueil de l'espace", "H", 0, C::controleur, "<Control><Shift>h"},
        {"Zoom avant", "+", 0, C::controleur, "<Control>plus"},
        {"Zoom arrière", "-", 0, C::controleur, "<Control>minus"},
        {"Taille réelle", "0", 0, C::controleur, "<Control>0"},
        {"Activer le mode plein écran", "f", 0x140000, C::aucune, "<Control><Super>f"},
        {"Changer d'espace…", "k", 0x120000, C::controleur, "<Control><Shift>k"},
        {"Réduire", "m", 0, C::aucune, "<Control>m"},
        {"Réagrandir", "", 0, C::aucune, ""},
        {"Site Brindex", "", 0, C::controleur, ""},
        {"Afficher le journal de diagnostic", "", 0, C::controleur, ""},
    };
    // clang-format on
    const auto toujours = [](Commande) { return true; };
    std::set<Commande> commandes;
    std::set<std::string_view> selecteurs;
    std::size_t i = 0;
    for (const auto& menu : barre) {
        std::set<std::pair<std::string_view, std::uint32_t>> touches;
        for (const auto& e : menu.elements) {
            if (e.separateur) continue;
            ASSERT_LT(i, std::size(attendus));
            const auto& [titre, touche, masque, cible, gtk] = attendus[i++];
            EXPECT_EQ(std::tie(e.titre, e.touche, e.masque), std::tie(titre, touche, masque));
            EXPECT_EQ(cibleDe(menu, e), cible) << titre;
            EXPECT_EQ(accelerateurGtk(e), gtk) << titre;
            // Only three menus are looked at, whatever the controller answers.
            EXPECT_EQ(cibleDe(menu, e, toujours) == C::controleur, menu.cibleExaminee) << e.titre;
            ASSERT_TRUE(e.commande) << e.titre;
            EXPECT_TRUE(commandes.insert(*e.commande).second) << e.titre;
            EXPECT_TRUE(selecteurs.insert(e.selecteur).second) << e.titre;
            EXPECT_EQ(e.selecteur.back(), ':') << e.titre;
            // A key is unique within its menu.
            if (!e.touche.empty()) {
                EXPECT_TRUE(touches.insert({e.touche, e.masque}).second) << e.titre;
            }
        }
    }
    EXPECT_EQ(i, std::size(attendus));
    EXPECT_EQ(commandes.size(), 26u) << "every command has its item";
}

struct CoquilleTest : Coquille {
    explicit CoquilleTest(test::PlateformeTest& p) : p_(p) {}
    void construireMenus() override { p_.trace("menus"); }
    void activer() override { p_.trace("activer"); }
    test::PlateformeTest& p_;
};

using Lancement = test::ControleurTest;

TEST_F(Lancement, MenusPuisEcranPuisActivationPuisJournalEtReouverture) {
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
