#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

using Ecran = FenetreTest::Ecran;

// Answers the window's oldest open question: 'Q' "Quitter la page", 'R' "Rester sur la page".
bool repondre(FenetreTest& fenetre, char reponse) {
    if (fenetre.reponsesEnAttente.empty()) return false;
    auto suite = std::move(fenetre.reponsesEnAttente.front());
    fenetre.reponsesEnAttente.erase(fenetre.reponsesEnAttente.begin());
    suite({reponse == 'Q' ? 1u : 0u, ""});
    return true;
}

TEST_F(ControleurTest, QuitterUnePageQuiLeDemandePasseParUneQuestionSurSaFenetre) {
    const std::map<std::string, std::function<void()>> actions = {
        {"recharger", [&] { controleur->executer(Commande::recharger); }},
        {"precedente", [&] { controleur->executer(Commande::pagePrecedente); }},
        {"lien", [&] { controleur->activationUtilisateur(), principale().agir("lien"); }},
        {"zoom", [&] { controleur->executer(Commande::zoomPlus); }},
        {"espace", [&] { controleur->executer(Commande::changerEspace); }},
        {"fermer", [&] { fenetre().demanderFermeture(); }},
        {"quitter", [&] { controleur->quitter() ? fenetre().fermer() : void(); }},
        {"fermer popup", [&] { secondaire().demanderFermeture(); }}};
    // clang-format off
    // The user's action, whether the main page and the popup's ask to be confirmed, the answers
    // in turn; then the questions on the main window and on the popup, what left the main page,
    // the screen after, whether the main window closed, the popups left.
    const std::tuple<const char*, bool, bool, const char*, std::size_t, std::size_t, const char*, Ecran, bool, std::size_t> table[] = {
        {"recharger", true, false, "R", 1, 0, "", Ecran::espace, false, 1},
        {"precedente", true, true, "Q", 1, 0, "reculer", Ecran::espace, false, 1},
        {"lien", true, false, "Q", 1, 0, "lien", Ecran::espace, false, 1},
        {"zoom", true, true, "", 0, 0, "", Ecran::espace, false, 1},
        {"espace", false, false, "", 0, 0, "essayerFermer", Ecran::configuration, false, 0},
        {"espace", true, true, "QR", 1, 1, "essayerFermer", Ecran::espace, false, 1},
        {"espace", true, true, "QQ", 1, 1, "essayerFermer", Ecran::configuration, false, 0},
        {"fermer", true, true, "R", 1, 0, "", Ecran::espace, false, 1},
        {"fermer", true, true, "QQ", 1, 1, "essayerFermer", Ecran::espace, true, 0},
        {"quitter", false, false, "", 0, 0, "essayerFermer", Ecran::espace, true, 0},
        {"quitter", false, true, "Q", 0, 1, "essayerFermer", Ecran::espace, true, 0},
        {"fermer popup", true, true, "R", 0, 1, "", Ecran::espace, false, 1},
        {"fermer popup", true, true, "Q", 0, 1, "", Ecran::espace, false, 0}};
    // clang-format on
    for (const auto& [action, principaleDemande, popupDemande, reponses, questions, questionsPopup,
                      parti, ecran, fermee, popups] : table) {
        SCOPED_TRACE(std::string(action) + " " + reponses);
        p.principales.clear();
        p.secondaires.clear();
        controleur = Controleur::creer(p);
        auto& vue = espaceCharge();
        popup(vue);
        fenetre().devant();
        vue.confirmation = principaleDemande;
        p.vues.back()->confirmation = popupDemande;
        actions.at(action)();
        for (const char* r = reponses; *r; ++r) {
            EXPECT_TRUE(repondre(fenetre(), *r) || repondre(secondaire(), *r)) << "asked";
        }
        EXPECT_EQ(std::tuple(fenetre().feuilles.size(), secondaire().feuilles.size(),
                             vue.departs.empty() ? "" : vue.departs.back(), fenetre().ecran,
                             fenetre().fermee, controleur->fenetresSecondaires().size()),
                  std::tuple(questions, questionsPopup, std::string(parti), ecran, fermee, popups));
    }
}

TEST_F(ControleurTest, UnePageNeDemandeQuUneFoisParActionDeLUtilisateur) {
    auto& vue = espaceCharge();
    vue.confirmation = true;
    std::optional<bool> quitte;
    // What happens; then the questions shown so far and the page's last answer, if one came.
    const std::tuple<const char*, std::size_t, std::optional<bool>> etapes[] = {
        {"recharger", 1, {}}, {"redemande", 1, false}, {"R", 1, {}},  {"redemande", 1, false},
        {"clic", 1, {}},      {"redemande", 2, {}},    {"Q", 2, true}};
    for (const auto& [etape, questions, reponse] : etapes) {
        const std::string e = etape;
        if (e == "recharger") controleur->executer(Commande::recharger);
        if (e == "clic") controleur->activationUtilisateur();
        if (e == "redemande") controleur->confirmationDepart(vue, [&](bool q) { quitte = q; });
        if (e.size() == 1) repondre(fenetre(), e[0]);
        EXPECT_EQ(std::tuple(fenetre().feuilles.size(), std::exchange(quitte, std::nullopt)),
                  std::tuple(questions, reponse))
            << e;
    }
}

}  // namespace
}  // namespace brindex::test
