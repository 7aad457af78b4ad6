#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

TEST_F(ControleurTest, RegleDOuverture) {
    auto& vue = espaceCharge("https://espace.example/");
    struct Cas {
        std::optional<std::string> url;
        bool fenetre;
        std::optional<std::string> navigateur;
    };
    for (const auto& cas :
         {Cas{std::nullopt, true, {}}, Cas{"", true, {}}, Cas{"about:blank", true, {}},
          Cas{"https://ESPACE.example/p", true, {}}, Cas{"About:blank", false, {}},
          Cas{"https://ailleurs.example/", false, "https://ailleurs.example/"},
          Cas{"http://espace.example/", false, "http://espace.example/"},
          Cas{"about:srcdoc", false, {}}, Cas{"data:text/html,x", false, {}},
          Cas{"mailto:a@b.example", false, {}}}) {
        p.urlsOuvertes.clear();
        const auto avant = controleur->fenetresSecondaires().size();
        const auto nouvelle = popup(vue, cas.url);
        EXPECT_EQ(nouvelle != nullptr, cas.fenetre) << cas.url.value_or("(none)");
        EXPECT_EQ(controleur->fenetresSecondaires().size(), avant + (cas.fenetre ? 1 : 0));
        EXPECT_EQ(p.urlsOuvertes, cas.navigateur ? std::vector<std::string>{*cas.navigateur}
                                                 : std::vector<std::string>{});
    }
    VueWebTest sansOrigine({}, false);
    EXPECT_FALSE(popup(sansOrigine, std::nullopt));
}

TEST_F(ControleurTest, UneActionDeLUtilisateurOuvreUneSeuleFenetre) {
    auto& vue = espaceCharge("https://espace.example/");
    const auto demander = [&](std::optional<std::string> url, std::optional<bool> geste = {}) {
        return controleur->creerVueWebDemandee(vue, url, geste, configuration) != nullptr;
    };
    EXPECT_FALSE(demander("https://espace.example/p")) << "no action of the user";
    EXPECT_FALSE(demander("https://ailleurs.example/"));
    controleur->activationUtilisateur();
    EXPECT_FALSE(demander("https://espace.example/p", false)) << "the engine saw no gesture";
    int ouvertes = 0;
    for (int i = 0; i < 300; ++i) ouvertes += demander("https://espace.example/p", true);
    EXPECT_EQ(ouvertes, 1);
    EXPECT_TRUE(p.urlsOuvertes.empty());
    const auto lignes = lignesJournal();
    EXPECT_EQ(lignes.size(), 3 + fenetresRefuseesNotees + 1);
    EXPECT_EQ(lignes.back(), "nouvelle fenetre REFUSEE, les suivantes ne sont plus notees");
    EXPECT_EQ(lignes.at(1), "nouvelle fenetre REFUSEE vers https://espace.example/p");
    // The next click opens the next one.
    controleur->activationUtilisateur();
    EXPECT_TRUE(demander(std::nullopt));
}

TEST_F(ControleurTest, FenetreSecondaireTenueALOrigineDeLOuvreur) {
    auto& vue = espaceCharge("https://espace.example/");
    auto pop = popup(vue, "about:blank");
    const auto& fenetreSecondaire = *p.secondaires.at(0);
    EXPECT_EQ(fenetreSecondaire.parametres.largeur, 1080);
    EXPECT_EQ(fenetreSecondaire.parametres.hauteur, 780);
    EXPECT_EQ(fenetreSecondaire.parametres.largeurMin, 640);
    EXPECT_EQ(fenetreSecondaire.parametres.hauteurMin, 480);
    EXPECT_EQ(fenetreSecondaire.parametres.titre, "Brindex");
    EXPECT_TRUE(fenetreSecondaire.cle);
    auto& vuePopup = static_cast<VueWebTest&>(*pop);
    EXPECT_TRUE(vuePopup.creeeAvecConfiguration);
    EXPECT_FALSE(vuePopup.parametres.principale);
    EXPECT_FALSE(vuePopup.parametres.gestesHistorique);
    EXPECT_EQ(controleur->originesWebView().at(pop.get()), controleur->originesWebView().at(&vue));
    // The popup's later trip elsewhere is an external navigation.
    EXPECT_EQ(controleur->deciderAction(*pop, {"https://ailleurs.example/", TypeNavigation::autre,
                                               CadreCible::principal, false, {}}),
              Politique::annuler);
    EXPECT_EQ(lignesJournal().back(),
              "navigation externe automatique REFUSEE vers ailleurs.example");
    // Its title never follows the page.
    vuePopup.titreCourant = "Autre";
    controleur->titreChange(vuePopup);
    EXPECT_EQ(fenetre().titre, "Brindex");
}

TEST_F(ControleurTest, FermeturesParLUtilisateurEtParLaPage) {
    auto& vue = espaceCharge();
    auto a = popup(vue, std::nullopt);
    auto b = popup(vue, std::nullopt);
    auto c = popup(vue, std::nullopt);
    p.secondaires.at(1)->fermerParUtilisateur();
    ASSERT_EQ(controleur->fenetresSecondaires().size(), 2u);
    EXPECT_EQ(controleur->fenetresSecondaires()[0]->webView(), a);
    EXPECT_EQ(controleur->fenetresSecondaires()[1]->webView(), c);
    EXPECT_FALSE(controleur->originesWebView().count(b.get()));
    EXPECT_TRUE(static_cast<VueWebTest&>(*b).detachee);
    controleur->fermetureDemandee(*c);
    EXPECT_TRUE(p.secondaires.at(2)->fermee);
    ASSERT_EQ(controleur->fenetresSecondaires().size(), 1u);
    controleur->fermetureDemandee(vue);
    EXPECT_FALSE(fenetre().fermee) << "the main window never closes at a page's request";
}

TEST_F(ControleurTest, ToutFermerSansRappelDeFermeture) {
    auto& vue = espaceCharge();
    popup(vue, std::nullopt);
    popup(vue, std::nullopt);
    bool rappele = false;
    for (const auto& f : controleur->fenetresSecondaires()) {
        f->onFermeture = [&rappele](FenetreSecondaire&) { rappele = true; };
    }
    controleur->changerEspace();
    EXPECT_FALSE(rappele);
    EXPECT_TRUE(p.secondaires.at(0)->fermee);
    EXPECT_TRUE(p.secondaires.at(1)->fermee);
    EXPECT_TRUE(controleur->fenetresSecondaires().empty());
    EXPECT_TRUE(controleur->originesWebView().empty());
}

TEST_F(ControleurTest, FermetureApresLaFinDuControleur) {
    auto& vue = espaceCharge();
    popup(vue, std::nullopt);
    auto fenetreSecondaire = p.secondaires.at(0);
    controleur.reset();
    fenetreSecondaire->fermerParUtilisateur();
    EXPECT_TRUE(fenetreSecondaire->fermee);
}

}  // namespace
}  // namespace brindex::test
