#include <sstream>

#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

using Ecran = FenetreTest::Ecran;

TEST_F(ControleurTest, QuitterUnePageQuiLeDemandePasseParUneQuestionSurSaFenetre) {
    // The oldest open question, the main window's first: 1 "Quitter la page", 0 "Rester…".
    const auto repondre = [&](std::size_t bouton) {
        auto& f = fenetre().reponsesEnAttente.empty() ? secondaire() : fenetre();
        ASSERT_FALSE(f.reponsesEnAttente.empty()) << "asked";
        premier(f.reponsesEnAttente)({bouton, ""});
    };
    const std::map<std::string, std::function<void()>> actions = {
        {"recharger", [&] { controleur->executer(Commande::recharger); }},
        {"precedente", [&] { controleur->executer(Commande::pagePrecedente); }},
        {"zoom", [&] { controleur->executer(Commande::zoomPlus); }},
        {"espace", [&] { controleur->executer(Commande::changerEspace); }},
        {"fermer", [&] { fenetre().demanderFermeture(); }},
        {"quitter", [&] { controleur->quitter() ? fenetre().fermer() : void(); }},
        {"fermer-popup", [&] { secondaire().demanderFermeture(); }},
        // The page reloads itself, as a script does when told to stay.
        {"redemande", [&] { principale().agir("recharger"); }},
        {"clic", [&] { controleur->activationUtilisateur(); }},
        {"Q", [&] { repondre(1); }},
        {"R", [&] { repondre(0); }}};
    // clang-format off
    // Whether the main page and the popup's ask to be confirmed, what happens; the questions on the
    // main window and the popup, what left the main page, the screen, main window closed, popups.
    const std::tuple<bool, bool, const char*, std::size_t, std::size_t, const char*, Ecran, bool, std::size_t> table[] = {
        {true, false, "recharger R", 1, 0, "", Ecran::espace, false, 1},
        {true, true, "precedente Q", 1, 0, "reculer", Ecran::espace, false, 1},
        {true, true, "zoom", 0, 0, "", Ecran::espace, false, 1},
        {false, false, "espace", 0, 0, "essayerFermer", Ecran::configuration, false, 0},
        {true, true, "espace Q R", 1, 1, "essayerFermer", Ecran::espace, false, 1},
        {true, true, "espace Q Q", 1, 1, "essayerFermer", Ecran::configuration, false, 0},
        {true, true, "fermer Q Q", 1, 1, "essayerFermer", Ecran::espace, true, 0},
        {false, true, "quitter Q", 0, 1, "essayerFermer", Ecran::espace, true, 0},
        {true, true, "fermer-popup Q", 0, 1, "", Ecran::espace, false, 0},
        // One question per page and per action of the user: asked again meanwhile, the page stays.
        {true, false, "recharger redemande Q", 1, 0, "recharger", Ecran::espace, false, 1},
        {true, false, "recharger R redemande", 1, 0, "", Ecran::espace, false, 1},
        {true, false, "recharger R clic redemande Q", 2, 0, "recharger", Ecran::espace, false, 1}};
    // clang-format on
    for (const auto& [principaleDemande, popupDemande, etapes, questions, questionsPopup, parti,
                      ecran, fermee, popups] : table) {
        p.principales.clear();
        p.secondaires.clear();
        controleur = Controleur::creer(p);
        auto& vue = espaceCharge();
        popup(vue);
        fenetre().devant();
        vue.confirmation = principaleDemande;
        p.vues.back()->confirmation = popupDemande;
        std::istringstream suite(etapes);
        for (std::string etape; suite >> etape;) actions.at(etape)();
        EXPECT_EQ(std::tuple(fenetre().feuilles.size(), secondaire().feuilles.size(),
                             vue.departs.empty() ? "" : vue.departs.back(), fenetre().ecran,
                             fenetre().fermee, controleur->fenetresSecondaires().size()),
                  std::tuple(questions, questionsPopup, std::string(parti), ecran, fermee, popups))
            << etapes;
    }
}

}  // namespace
}  // namespace brindex::test
