#include "app/menus.hpp"

#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "app/lancement.hpp"
#include "container/controleur_fixture.hpp"

namespace brindex {
namespace {

TEST(BarreDeMenus, SeptMenusDansLOrdre) {
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
}

TEST(BarreDeMenus, CommandesEtTouchesUniques) {
    std::set<Commande> commandes;
    std::set<std::string_view> selecteurs;
    for (const auto& menu : barreDeMenus()) {
        std::set<std::pair<std::string_view, std::uint32_t>> touches;
        for (const auto& e : menu.elements) {
            if (e.separateur) continue;
            ASSERT_TRUE(e.commande) << e.titre;
            EXPECT_TRUE(commandes.insert(*e.commande).second) << e.titre;
            EXPECT_TRUE(selecteurs.insert(e.selecteur).second) << e.titre;
            EXPECT_EQ(e.selecteur.back(), ':') << e.titre;
            if (!e.touche.empty()) {
                EXPECT_TRUE(touches.insert({e.touche, e.masque}).second) << e.titre;
            }
        }
    }
    EXPECT_EQ(commandes.size(), 26u) << "every command has its item";
}

struct Attendu {
    std::string_view titre;
    std::string_view touche;
    std::uint32_t masque;
    Cible cible;
    std::string gtk;
};

TEST(BarreDeMenus, TitresTouchesCibles) {
    using C = Cible;
    const std::vector<Attendu> attendus{
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
    std::size_t i = 0;
    for (const auto& menu : barreDeMenus()) {
        for (const auto& e : menu.elements) {
            if (e.separateur) continue;
            ASSERT_LT(i, attendus.size());
            const auto& a = attendus[i++];
            EXPECT_EQ(e.titre, a.titre);
            EXPECT_EQ(e.touche, a.touche) << a.titre;
            EXPECT_EQ(e.masque, a.masque) << a.titre;
            EXPECT_EQ(cibleDe(menu, e), a.cible) << a.titre;
            EXPECT_EQ(accelerateurGtk(e), a.gtk) << a.titre;
        }
    }
    EXPECT_EQ(i, attendus.size());
}

TEST(BarreDeMenus, SeulsTroisMenusSontExamines) {
    const auto toujours = [](Commande) { return true; };
    for (const auto& menu : barreDeMenus()) {
        for (const auto& e : menu.elements) {
            if (e.separateur) continue;
            EXPECT_EQ(cibleDe(menu, e, toujours) == Cible::controleur, menu.cibleExaminee)
                << e.titre;
        }
    }
}

class CoquilleTest : public Coquille {
  public:
    explicit CoquilleTest(test::PlateformeTest& p) : p_(p) {}
    void construireMenus() override { p_.trace("menus"); }
    void activer() override { p_.trace("activer"); }
    test::PlateformeTest& p_;
};

class Lancement : public test::ControleurTest {};

TEST_F(Lancement, MenusPuisEcranPuisActivationPuisJournal) {
    stocker("https://espace.example/");
    CoquilleTest coquille(p);
    lancer(coquille, *controleur);
    const std::vector<std::string> attendus{"menus", "vue principale", "ecran espace", "devant",
                                            "activer"};
    EXPECT_EQ(p.evenements, attendus);
    EXPECT_EQ(principale().chargements.size(), 1u) << "loading starts before the start line";
    EXPECT_EQ(lignesJournal(), std::vector<std::string>{"demarrage v1.0.0"});
}

TEST_F(Lancement, Reouverture) {
    controleur->demarrer();
    const int avant = fenetre().passagesDevant;
    EXPECT_TRUE(reouvrir(*controleur, true));
    EXPECT_EQ(fenetre().passagesDevant, avant);
    EXPECT_TRUE(reouvrir(*controleur, false));
    EXPECT_EQ(fenetre().passagesDevant, avant + 1);
    EXPECT_EQ(fenetre().ecran, test::FenetreTest::Ecran::configuration) << "content unchanged";
}

}  // namespace
}  // namespace brindex
