#include "container/controleur_fixture.hpp"
#include "container/telechargements.hpp"

namespace brindex::test {
namespace {

using enum TypeNavigation;
using enum CadreCible;
using enum Politique;

// A navigation of the main frame, not a download, without the engine's word on a gesture.
ActionNavigation vers(const char* url, TypeNavigation type = autre) {
    return {url, type, principal, false, std::nullopt};
}

// Nothing, or this one text.
std::vector<std::string> liste(const char* texte) {
    return texte ? std::vector<std::string>{texte} : std::vector<std::string>{};
}

// Name, URL, kind, target frame, download asked, the user pressed a button or a key just
// before, the engine's word on a gesture where it gives one, decision, URL handed to the
// system, log line written.
using CasAction = std::tuple<const char*, std::optional<std::string>, TypeNavigation, CadreCible,
                             bool, bool, std::optional<bool>, Politique, const char*, const char*>;

class PolitiqueDesActions : public ControleurTest, public testing::WithParamInterface<CasAction> {};

TEST_P(PolitiqueDesActions, DecideEtAgit) {
    const auto& [nom, url, type, cible, telechargement, clic, geste, attendue, ouverte, ligne] =
        GetParam();
    auto& vue = espaceCharge("https://espace.example/wiki");
    const auto avant = lignesJournal().size();
    if (clic) controleur->activationUtilisateur();
    EXPECT_EQ(controleur->deciderAction(vue, {url, type, cible, telechargement, geste}), attendue);
    EXPECT_EQ(p.urlsOuvertes, liste(ouverte));
    const auto lignes = lignesJournal();
    EXPECT_EQ(std::vector(lignes.begin() + avant, lignes.end()), liste(ligne));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Regles, PolitiqueDesActions, testing::Values(
    CasAction{"sans url", std::nullopt, lienActive, principal, false, true, {}, annuler, nullptr, nullptr},
    CasAction{"sans scheme", "/relative", lienActive, principal, false, true, {}, annuler, nullptr, nullptr},
    CasAction{"mailto clique", "MAILTO:a@b.example", lienActive, principal, false, true, {}, annuler, "MAILTO:a@b.example", nullptr},
    CasAction{"mailto par script", "mailto:a@b.example", autre, principal, false, true, {}, annuler, nullptr, nullptr},
    CasAction{"mailto clique par script", "mailto:a@b.example", lienActive, principal, false, false, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers mailto:a@b.example"},
    CasAction{"tel clique", "tel:+33100000000", lienActive, principal, false, true, true, annuler, "tel:+33100000000", nullptr},
    CasAction{"about blank", "about:blank", autre, principal, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=about"},
    CasAction{"data en sous-cadre", "DATA:text/html,x", autre, sousCadre, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=data"},
    CasAction{"javascript", "javascript:alert(1)", lienActive, principal, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=javascript"},
    CasAction{"meme origine", "https://ESPACE.example:443/autre", autre, principal, false, false, {}, autoriser, nullptr, nullptr},
    CasAction{"meme origine a telecharger", "https://espace.example/f.pdf", lienActive, principal, true, false, {}, telecharger, nullptr, nullptr},
    CasAction{"HTTPS majuscules", "HTTPS://espace.example/x", lienActive, principal, false, true, {}, autoriser, nullptr, nullptr},
    CasAction{"autre site clique", "https://ailleurs.example/page", lienActive, principal, false, true, {}, annuler, "https://ailleurs.example/page", nullptr},
    CasAction{"autre site clique, geste du moteur", "https://ailleurs.example/page", lienActive, principal, false, true, true, annuler, "https://ailleurs.example/page", nullptr},
    CasAction{"autre site clique par script", "https://ailleurs.example/page", lienActive, principal, false, false, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers ailleurs.example"},
    CasAction{"clic, mais pas de geste selon le moteur", "https://ailleurs.example/", lienActive, principal, false, true, false, annuler, nullptr, "navigation externe automatique REFUSEE vers ailleurs.example"},
    CasAction{"autre site par script", "https://Ailleurs.example/page", autre, principal, false, true, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers ailleurs.example"},
    CasAction{"http au lieu de https", "http://espace.example/wiki", lienActive, principal, false, true, {}, annuler, "http://espace.example/wiki", nullptr},
    CasAction{"sous-cadre d'un autre site", "https://video.example/embed", autre, sousCadre, false, false, {}, autoriser, nullptr, nullptr},
    CasAction{"nouvelle fenetre meme origine", "https://espace.example/p", lienActive, aucun, false, false, {}, autoriser, nullptr, nullptr},
    CasAction{"nouvelle fenetre ailleurs", "https://ailleurs.example/", lienActive, aucun, false, true, {}, annuler, "https://ailleurs.example/", nullptr}));
// clang-format on

TEST_F(ControleurTest, UneActionDeLUtilisateurPermetUneSeuleSortieEtPasLongtemps) {
    auto& vue = espaceCharge();
    const auto clic = vers("https://ailleurs.example/", lienActive);
    controleur->activationUtilisateur();
    controleur->deciderAction(vue, clic);
    controleur->deciderAction(vue, clic);
    controleur->activationUtilisateur();
    p.horloge += dureeActivation + std::chrono::seconds(1);
    controleur->deciderAction(vue, clic);
    EXPECT_EQ(p.urlsOuvertes, liste("https://ailleurs.example/"));
    EXPECT_EQ(lignesJournal().back(),
              "navigation externe automatique REFUSEE vers ailleurs.example");
}

TEST_F(ControleurTest, LOrigineSeCompareSurLHoteCanonique) {
    // The engine writes 127.0.0.1 whatever the form the user typed.
    auto& vue = espaceCharge("http://0x7f.1:8080/wiki");
    EXPECT_EQ(controleur->deciderAction(vue, vers("http://127.0.0.1:8080/page")), autoriser);
    EXPECT_EQ(controleur->deciderAction(vue, vers("http://127.0.0.2:8080/")), annuler);
}

TEST_F(ControleurTest, UneVueInconnueNAPasDOrigine) {
    // It goes anywhere, before and after a space opens, without asking the system.
    VueWebTest inconnue({}, false);
    const auto ailleurs = vers("https://ailleurs.example/");
    EXPECT_EQ(controleur->deciderAction(inconnue, ailleurs), autoriser);
    espaceCharge();
    EXPECT_EQ(controleur->deciderAction(inconnue, ailleurs), autoriser);
    EXPECT_TRUE(p.urlsOuvertes.empty());
    // It opens no window, and its failures are only logged.
    EXPECT_FALSE(popup(inconnue));
    controleur->traiterEchec({"NSURLErrorDomain", -1004, "description -1004"}, inconnue);
    EXPECT_TRUE(fenetre().feuilles.empty());
    EXPECT_EQ(lignesJournal().back(), "navigation ECHEC NSURLErrorDomain/-1004 description -1004");
}

TEST_F(ControleurTest, PolitiqueDesReponses) {
    auto& vue = espaceCharge();
    // The response (HTTP, Content-Disposition, a type the engine shows), the decision.
    const std::pair<ReponseNavigation, Politique> reponses[] = {
        {{true, "Attachment; filename=x.pdf", true}, telecharger},
        {{true, "inline; filename=\"attachment.pdf\"", true}, telecharger},
        {{true, "inline", true}, autoriser},
        {{true, std::nullopt, true}, autoriser},
        {{true, std::nullopt, false}, telecharger},
        {{false, "attachment", true}, autoriser},
    };
    for (const auto& [reponse, attendue] : reponses) {
        EXPECT_EQ(controleur->deciderReponse(vue, reponse), attendue)
            << reponse.contentDisposition.value_or("-");
    }
}

TEST_F(ControleurTest, RegleDOuverture) {
    auto& vue = espaceCharge("https://espace.example/");
    // URL the page asks for, whether a window opens, URL handed to the default browser instead.
    const std::tuple<std::optional<std::string>, bool, const char*> demandes[] = {
        {std::nullopt, true, nullptr},
        {"", true, nullptr},
        {"about:blank", true, nullptr},
        {"https://ESPACE.example/p", true, nullptr},
        {"About:blank", false, nullptr},
        {"https://ailleurs.example/", false, "https://ailleurs.example/"},
        {"http://espace.example/", false, "http://espace.example/"},
        {"about:srcdoc", false, nullptr},
        {"data:text/html,x", false, nullptr},
        {"mailto:a@b.example", false, nullptr},
    };
    for (const auto& [url, ouvre, navigateur] : demandes) {
        p.urlsOuvertes.clear();
        const auto avant = controleur->fenetresSecondaires().size();
        EXPECT_EQ(popup(vue, url) != nullptr, ouvre) << url.value_or("(none)");
        EXPECT_EQ(controleur->fenetresSecondaires().size(), avant + (ouvre ? 1 : 0));
        EXPECT_EQ(p.urlsOuvertes, liste(navigateur));
    }
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

TEST_F(ControleurTest, FenetresSecondairesTenuesALOrigineDeLOuvreurEtFermees) {
    auto& vue = espaceCharge("https://espace.example/");
    auto a = popup(vue, "about:blank");
    const auto& f = secondaire().parametres;
    EXPECT_EQ(std::tie(f.largeur, f.hauteur, f.largeurMin, f.hauteurMin, f.titre),
              std::make_tuple(1080, 780, 640, 480, "Brindex"));
    EXPECT_TRUE(secondaire().cle);
    auto& vueA = static_cast<VueWebTest&>(*a);
    EXPECT_TRUE(vueA.creeeAvecConfiguration);
    EXPECT_FALSE(vueA.parametres.principale || vueA.parametres.gestesHistorique);
    EXPECT_EQ(controleur->originesWebView().at(a.get()), controleur->originesWebView().at(&vue));
    // The popup's later trip elsewhere is an external navigation.
    EXPECT_EQ(controleur->deciderAction(vueA, vers("https://ailleurs.example/")), annuler);
    EXPECT_EQ(lignesJournal().back(),
              "navigation externe automatique REFUSEE vers ailleurs.example");
    // Its title never follows the page.
    vueA.titreCourant = "Autre";
    controleur->titreChange(vueA);
    EXPECT_EQ(fenetre().titre, "Brindex");

    // Closed by the user or at the page's request; the main window never at a page's.
    auto b = popup(vue);
    auto c = popup(vue);
    secondaire(1).fermerParUtilisateur();
    ASSERT_EQ(controleur->fenetresSecondaires().size(), 2u);
    EXPECT_EQ(controleur->fenetresSecondaires()[0]->webView(), a);
    EXPECT_EQ(controleur->fenetresSecondaires()[1]->webView(), c);
    EXPECT_FALSE(controleur->originesWebView().count(b.get()));
    EXPECT_TRUE(static_cast<VueWebTest&>(*b).detachee);
    controleur->fermetureDemandee(*c);
    EXPECT_TRUE(secondaire(2).fermee);
    EXPECT_EQ(controleur->fenetresSecondaires().size(), 1u);
    controleur->fermetureDemandee(vue);
    EXPECT_FALSE(fenetre().fermee);
}

// Downloads, which the navigation rules start.

namespace fs = std::filesystem;

class Telechargements : public ControleurTest {
  protected:
    void SetUp() override {
        ControleurTest::SetUp();
        dossierTelechargements = dossier / "Téléchargements";
        fs::create_directories(dossierTelechargements);
        p.telechargements = dossierTelechargements.string();
    }
    void creer(const std::string& nom) { std::ofstream(dossierTelechargements / nom) << "x"; }
    // The destination a download of that name gets, once the previous ones have ended.
    std::string destination(const std::string& suggere) {
        const auto t = std::make_shared<TelechargementTest>();
        const auto d = controleur->destinationTelechargement(t, suggere);
        controleur->telechargementTermine(*t);
        EXPECT_EQ(fs::path(d).parent_path(), dossierTelechargements) << suggere;
        return fs::path(d).filename().string();
    }
    fs::path dossierTelechargements;
};

TEST_F(Telechargements, NomsHostilesDansLeDossierEtUniquesSurLeVraiSystemeDeFichiers) {
    // Made in the folder first ("/" at the end: a folder), name suggested, name given.
    const char* const table[][3] = {
        {"", "../../.bashrc", ".bashrc"},
        {"", "a/b/rapport.pdf", "rapport.pdf"},
        {"", "..\\..\\x.exe", "x.exe"},
        {"", "..", "telechargement"},
        {"", ".", "telechargement"},
        {"", "", "telechargement"},
        {"", "/", "telechargement"},
        {"", "rapport.pdf", "rapport.pdf"},
        {"rapport.pdf", "rapport.pdf", "rapport (2).pdf"},
        {"rapport (2).pdf", "rapport.pdf", "rapport (3).pdf"},
        {"", "rapport (2).pdf", "rapport (2) (2).pdf"},
        {"LISEZMOI", "LISEZMOI", "LISEZMOI (2)"},
        {"archive.tar.gz", "archive.tar.gz", "archive.tar (2).gz"},
        {"photos.zip/", "photos.zip", "photos (2).zip"},
    };
    for (const auto& [existant, suggere, donne] : table) {
        const std::string e = existant;
        if (e.ends_with('/')) {
            fs::create_directories(dossierTelechargements / e);
        } else if (!e.empty()) {
            creer(e);
        }
        EXPECT_EQ(destination(suggere), donne) << suggere;
    }
}

TEST_F(Telechargements, EnCoursFichiersDeTravailEtDossierParDefaut) {
    p.suffixesTemporaires = {".wkdownload", ".wkdownload~"};
    std::vector<std::string> noms;
    for (int i = 0; i < 3; ++i) {
        const auto d = controleur->destinationTelechargement(std::make_shared<TelechargementTest>(),
                                                             "note.txt");
        noms.push_back(fs::path(d).filename().string());
    }
    EXPECT_EQ(noms, (std::vector<std::string>{"note.txt", "note (2).txt", "note (3).txt"}));
    creer("lisez.txt.wkdownload~");
    EXPECT_EQ(destination("lisez.txt"), "lisez (2).txt");

    // Too long once the engine adds its suffix: the stem is cut on a character boundary.
    std::string e;
    for (int i = 0; i < 240; ++i) e += "é";
    const auto premier = destination(e + ".pdf");
    EXPECT_EQ(premier.size(), 238 + 4u);
    EXPECT_TRUE(premier.ends_with("é.pdf"));
    EXPECT_TRUE(std::ofstream(dossierTelechargements / (premier + ".wkdownload~")) << "x");
    creer(premier);
    const auto second = destination(e + ".pdf");
    EXPECT_TRUE(second.ends_with("é (2).pdf")) << second;
    EXPECT_LE(second.size() + 12, longueurNomFichierMax);
    // Without a downloads folder from the system: "Downloads" in the home folder.
    p.telechargements.reset();
    p.personnel = dossier.string();
    const auto d =
        controleur->destinationTelechargement(std::make_shared<TelechargementTest>(), "a.txt");
    EXPECT_EQ(fs::path(d), dossier / "Downloads" / "a.txt");
}

TEST_F(Telechargements, UneLigneParFinLeFichierMontreOuUneAlerte) {
    auto t = std::make_shared<TelechargementTest>();
    const auto d = controleur->destinationTelechargement(t, "rapport.pdf");
    EXPECT_EQ(controleur->destinationDe(*t), d);
    controleur->telechargementTermine(*t);
    controleur->telechargementTermine(*t);  // by now unknown: ignored
    EXPECT_EQ(lignesJournal(), std::vector<std::string>{"telechargement OK rapport.pdf"});
    EXPECT_EQ(p.reveles, std::vector<std::string>{d});
    // A failure, of a download under way or of an unknown one.
    t = std::make_shared<TelechargementTest>();
    controleur->destinationTelechargement(t, "rapport.pdf");
    controleur->telechargementEchoue(*t, "Disque plein");
    TelechargementTest inconnu;
    controleur->telechargementEchoue(inconnu, "Connexion perdue");
    EXPECT_EQ(lignesJournal(), (std::vector<std::string>{"telechargement OK rapport.pdf",
                                                         "telechargement ECHEC Disque plein",
                                                         "telechargement ECHEC Connexion perdue"}));
    ASSERT_EQ(p.alertes.size(), 2u);
    const auto& a = p.alertes[0];
    EXPECT_EQ(
        std::tie(a.message, a.informatif, a.boutons),
        std::tuple("Téléchargement impossible", "Disque plein", std::vector<std::string>{"OK"}));
    EXPECT_EQ(controleur->telechargementsEnCours(), 0u);
    EXPECT_EQ(p.reveles.size(), 1u) << "a failed download is not shown";
}

}  // namespace
}  // namespace brindex::test
