#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

constexpr auto lien = TypeNavigation::lienActive;
constexpr auto autre = TypeNavigation::autre;
constexpr auto principal = CadreCible::principal;
constexpr auto sousCadre = CadreCible::sousCadre;
constexpr auto aucun = CadreCible::aucun;
constexpr auto annuler = Politique::annuler;
constexpr auto autoriser = Politique::autoriser;

struct CasAction {
    const char* nom;
    std::optional<std::string> url;
    TypeNavigation type;
    CadreCible cible;
    bool telechargement;
    bool clic;                  // the user pressed a button or a key just before
    std::optional<bool> geste;  // the engine's word, where it gives one
    Politique attendue;
    const char* ouverte;
    const char* ligne;
    friend std::ostream& operator<<(std::ostream& o, const CasAction& c) { return o << c.nom; }
};

class PolitiqueDesActions : public ControleurTest, public testing::WithParamInterface<CasAction> {};

TEST_P(PolitiqueDesActions, DecideEtAgit) {
    const auto& c = GetParam();
    auto& vue = espaceCharge("https://espace.example/wiki");
    const auto avant = lignesJournal().size();
    if (c.clic) controleur->activationUtilisateur();
    EXPECT_EQ(controleur->deciderAction(
                  vue, ActionNavigation{c.url, c.type, c.cible, c.telechargement, c.geste}),
              c.attendue);
    EXPECT_EQ(p.urlsOuvertes,
              c.ouverte ? std::vector<std::string>{c.ouverte} : std::vector<std::string>{});
    const auto lignes = lignesJournal();
    ASSERT_EQ(lignes.size(), avant + (c.ligne ? 1 : 0));
    if (c.ligne) {
        EXPECT_EQ(lignes.back(), c.ligne);
    }
}

const std::string refus = "navigation externe automatique REFUSEE vers ";

// clang-format off
INSTANTIATE_TEST_SUITE_P(Regles, PolitiqueDesActions, testing::Values(
    CasAction{"sans url", std::nullopt, lien, principal, false, true, {}, annuler, nullptr, nullptr},
    CasAction{"sans scheme", "/relative", lien, principal, false, true, {}, annuler, nullptr, nullptr},
    CasAction{"mailto clique", "MAILTO:a@b.example", lien, principal, false, true, {}, annuler, "MAILTO:a@b.example", nullptr},
    CasAction{"mailto par script", "mailto:a@b.example", autre, principal, false, true, {}, annuler, nullptr, nullptr},
    CasAction{"mailto clique par script", "mailto:a@b.example", lien, principal, false, false, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers mailto:a@b.example"},
    CasAction{"tel clique", "tel:+33100000000", lien, principal, false, true, true, annuler, "tel:+33100000000", nullptr},
    CasAction{"about blank", "about:blank", autre, principal, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=about"},
    CasAction{"data en sous-cadre", "DATA:text/html,x", autre, sousCadre, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=data"},
    CasAction{"javascript", "javascript:alert(1)", lien, principal, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=javascript"},
    CasAction{"meme origine", "https://ESPACE.example:443/autre", autre, principal, false, false, {}, autoriser, nullptr, nullptr},
    CasAction{"meme origine a telecharger", "https://espace.example/f.pdf", lien, principal, true, false, {}, Politique::telecharger, nullptr, nullptr},
    CasAction{"HTTPS majuscules", "HTTPS://espace.example/x", lien, principal, false, true, {}, autoriser, nullptr, nullptr},
    CasAction{"autre site clique", "https://ailleurs.example/page", lien, principal, false, true, {}, annuler, "https://ailleurs.example/page", nullptr},
    CasAction{"autre site clique, geste du moteur", "https://ailleurs.example/page", lien, principal, false, true, true, annuler, "https://ailleurs.example/page", nullptr},
    CasAction{"autre site clique par script", "https://ailleurs.example/page", lien, principal, false, false, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers ailleurs.example"},
    CasAction{"clic, mais pas de geste selon le moteur", "https://ailleurs.example/", lien, principal, false, true, false, annuler, nullptr, "navigation externe automatique REFUSEE vers ailleurs.example"},
    CasAction{"autre site par script", "https://Ailleurs.example/page", autre, principal, false, true, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers ailleurs.example"},
    CasAction{"http au lieu de https", "http://espace.example/wiki", lien, principal, false, true, {}, annuler, "http://espace.example/wiki", nullptr},
    CasAction{"sous-cadre d'un autre site", "https://video.example/embed", autre, sousCadre, false, false, {}, autoriser, nullptr, nullptr},
    CasAction{"nouvelle fenetre meme origine", "https://espace.example/p", lien, aucun, false, false, {}, autoriser, nullptr, nullptr},
    CasAction{"nouvelle fenetre ailleurs", "https://ailleurs.example/", lien, aucun, false, true, {}, annuler, "https://ailleurs.example/", nullptr}));
// clang-format on

TEST_F(ControleurTest, UneActionDeLUtilisateurPermetUneSeuleSortieEtPasLongtemps) {
    auto& vue = espaceCharge();
    const ActionNavigation clic{"https://ailleurs.example/", lien, principal, false, {}};
    controleur->activationUtilisateur();
    controleur->deciderAction(vue, clic);
    controleur->deciderAction(vue, clic);
    controleur->activationUtilisateur();
    p.horloge += dureeActivation + std::chrono::seconds(1);
    controleur->deciderAction(vue, clic);
    EXPECT_EQ(p.urlsOuvertes, std::vector<std::string>{"https://ailleurs.example/"});
    EXPECT_EQ(lignesJournal().back(), refus + "ailleurs.example");
}

TEST_F(ControleurTest, LOrigineSeCompareSurLHoteCanonique) {
    // The engine writes 127.0.0.1 whatever the form the user typed.
    auto& vue = espaceCharge("http://0x7f.1:8080/wiki");
    EXPECT_EQ(
        controleur->deciderAction(vue, {"http://127.0.0.1:8080/page", autre, principal, false, {}}),
        autoriser);
    EXPECT_EQ(
        controleur->deciderAction(vue, {"http://127.0.0.2:8080/", autre, principal, false, {}}),
        annuler);
}

TEST_F(ControleurTest, UneVueSansOrigineVaPartout) {
    VueWebTest inconnue({}, false);
    EXPECT_EQ(controleur->deciderAction(inconnue,
                                        {"https://ailleurs.example/", autre, principal, false, {}}),
              autoriser);
    EXPECT_TRUE(p.urlsOuvertes.empty());
}

TEST_F(ControleurTest, PolitiqueDesReponses) {
    auto& vue = espaceCharge();
    struct Cas {
        ReponseNavigation reponse;
        Politique attendue;
    };
    for (const auto& cas :
         {Cas{{true, "Attachment; filename=x.pdf", true}, Politique::telecharger},
          Cas{{true, "inline; filename=\"attachment.pdf\"", true}, Politique::telecharger},
          Cas{{true, "inline", true}, autoriser}, Cas{{true, std::nullopt, true}, autoriser},
          Cas{{true, std::nullopt, false}, Politique::telecharger},
          Cas{{false, "attachment", true}, autoriser}}) {
        EXPECT_EQ(controleur->deciderReponse(vue, cas.reponse), cas.attendue)
            << cas.reponse.contentDisposition.value_or("-");
    }
}

}  // namespace
}  // namespace brindex::test
