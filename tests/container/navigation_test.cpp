#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

struct CasAction {
    const char* nom;
    std::optional<std::string> url;
    TypeNavigation type;
    CadreCible cible;
    bool telechargement;
    Politique attendue;
    std::optional<std::string> ouverte;
    std::optional<std::string> ligne;
    friend std::ostream& operator<<(std::ostream& o, const CasAction& c) { return o << c.nom; }
};

constexpr auto lien = TypeNavigation::lienActive;
constexpr auto autre = TypeNavigation::autre;
constexpr auto principal = CadreCible::principal;

class PolitiqueDesActions : public ControleurTest, public testing::WithParamInterface<CasAction> {};

TEST_P(PolitiqueDesActions, DecideEtAgit) {
    const auto& cas = GetParam();
    auto& vue = espaceCharge("https://espace.example/wiki");
    const auto avant = lignesJournal().size();
    const auto politique = controleur->deciderAction(
        vue, ActionNavigation{cas.url, cas.type, cas.cible, cas.telechargement});
    EXPECT_EQ(politique, cas.attendue);
    EXPECT_EQ(p.urlsOuvertes,
              cas.ouverte ? std::vector<std::string>{*cas.ouverte} : std::vector<std::string>{});
    const auto lignes = lignesJournal();
    if (cas.ligne) {
        ASSERT_EQ(lignes.size(), avant + 1);
        EXPECT_EQ(lignes.back(), *cas.ligne);
    } else {
        EXPECT_EQ(lignes.size(), avant);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Regles, PolitiqueDesActions,
    testing::Values(
        CasAction{"sans url", std::nullopt, lien, principal, false, Politique::annuler, {}, {}},
        CasAction{"sans scheme", "/relative", lien, principal, false, Politique::annuler, {}, {}},
        CasAction{"mailto clique",
                  "MAILTO:a@b.example",
                  lien,
                  principal,
                  false,
                  Politique::annuler,
                  "MAILTO:a@b.example",
                  {}},
        CasAction{"mailto par script",
                  "mailto:a@b.example",
                  autre,
                  principal,
                  false,
                  Politique::annuler,
                  {},
                  {}},
        CasAction{"tel clique",
                  "tel:+33100000000",
                  lien,
                  principal,
                  false,
                  Politique::annuler,
                  "tel:+33100000000",
                  {}},
        CasAction{"about blank",
                  "about:blank",
                  autre,
                  principal,
                  false,
                  Politique::annuler,
                  {},
                  "navigation REFUSEE scheme=about"},
        CasAction{"data en sous-cadre",
                  "DATA:text/html,x",
                  autre,
                  CadreCible::sousCadre,
                  false,
                  Politique::annuler,
                  {},
                  "navigation REFUSEE scheme=data"},
        CasAction{"javascript",
                  "javascript:alert(1)",
                  lien,
                  principal,
                  false,
                  Politique::annuler,
                  {},
                  "navigation REFUSEE scheme=javascript"},
        CasAction{"meme origine",
                  "https://ESPACE.example:443/autre",
                  autre,
                  principal,
                  false,
                  Politique::autoriser,
                  {},
                  {}},
        CasAction{"meme origine a telecharger",
                  "https://espace.example/f.pdf",
                  lien,
                  principal,
                  true,
                  Politique::telecharger,
                  {},
                  {}},
        CasAction{"HTTPS majuscules",
                  "HTTPS://espace.example/x",
                  lien,
                  principal,
                  false,
                  Politique::autoriser,
                  {},
                  {}},
        CasAction{"autre site clique",
                  "https://ailleurs.example/page",
                  lien,
                  principal,
                  false,
                  Politique::annuler,
                  "https://ailleurs.example/page",
                  {}},
        CasAction{"autre site par script",
                  "https://Ailleurs.example/page",
                  autre,
                  principal,
                  false,
                  Politique::annuler,
                  {},
                  "navigation externe automatique REFUSEE vers ailleurs.example"},
        CasAction{"http au lieu de https",
                  "http://espace.example/wiki",
                  lien,
                  principal,
                  false,
                  Politique::annuler,
                  "http://espace.example/wiki",
                  {}},
        CasAction{"sous-cadre d'un autre site",
                  "https://video.example/embed",
                  autre,
                  CadreCible::sousCadre,
                  false,
                  Politique::autoriser,
                  {},
                  {}},
        CasAction{"nouvelle fenetre meme origine",
                  "https://espace.example/p",
                  lien,
                  CadreCible::aucun,
                  false,
                  Politique::autoriser,
                  {},
                  {}},
        CasAction{"nouvelle fenetre ailleurs",
                  "https://ailleurs.example/",
                  lien,
                  CadreCible::aucun,
                  false,
                  Politique::annuler,
                  "https://ailleurs.example/",
                  {}}));

TEST_F(ControleurTest, UneVueSansOrigineVaPartout) {
    VueWebTest inconnue({}, false);
    EXPECT_EQ(
        controleur->deciderAction(inconnue, {"https://ailleurs.example/", autre, principal, false}),
        Politique::autoriser);
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
          Cas{{true, "inline", true}, Politique::autoriser},
          Cas{{true, std::nullopt, true}, Politique::autoriser},
          Cas{{true, std::nullopt, false}, Politique::telecharger},
          Cas{{false, "attachment", true}, Politique::autoriser}}) {
        EXPECT_EQ(controleur->deciderReponse(vue, cas.reponse), cas.attendue)
            << cas.reponse.contentDisposition.value_or("-");
    }
}

}  // namespace
}  // namespace brindex::test
