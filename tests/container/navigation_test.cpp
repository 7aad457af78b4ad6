#include "container/controleur_fixture.hpp"
#include "container/telechargements.hpp"

namespace brindex::test {
namespace {

using enum TypeNavigation;
using enum CadreCible;
using enum Politique;

// Nothing, or this one text.
std::vector<std::string> liste(const char* texte) {
    return texte ? std::vector<std::string>{texte} : std::vector<std::string>{};
}

class Navigation : public ControleurTest {
  protected:
    // Starts a row afresh: no action of the user left, nothing handed to the system yet.
    void ligneSuivante() {
        p.horloge += dureeActivation + std::chrono::seconds(1);
        p.urlsOuvertes.clear();
        lignesAvant = lignesJournal().size();
    }
    std::vector<std::string> nouvellesLignes() const {
        const auto lignes = lignesJournal();
        return std::vector(lignes.begin() + static_cast<std::ptrdiff_t>(lignesAvant), lignes.end());
    }
    std::size_t lignesAvant = 0;
};

const char* const refusee = "navigation externe automatique REFUSEE vers ailleurs.example";

TEST_F(Navigation, PolitiqueDesActions) {
    auto& vue = espaceCharge("https://espace.example/wiki");
    // clang-format off
    // URL, kind, target frame, download asked, the user pressed a button or a key just before,
    // the engine's word on a gesture where it gives one, decision, URL handed to the system,
    // log line written.
    const std::tuple<std::optional<std::string>, TypeNavigation, CadreCible, std::optional<bool>, bool, std::optional<bool>, Politique, const char*, const char*> table[] = {
        {std::nullopt, lienActive, principal, false, true, {}, annuler, nullptr, nullptr},
        {"/relative", lienActive, principal, false, true, {}, annuler, nullptr, nullptr},
        {"MAILTO:a@b.example", lienActive, principal, false, true, {}, annuler, "MAILTO:a@b.example", nullptr},
        {"mailto:a@b.example", autre, principal, false, true, {}, annuler, nullptr, nullptr},
        {"mailto:a@b.example", lienActive, principal, false, false, {}, annuler, nullptr, "navigation externe automatique REFUSEE vers mailto:a@b.example"},
        {"tel:+33100000000", lienActive, principal, false, true, true, annuler, "tel:+33100000000", nullptr},
        {"about:blank", autre, principal, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=about"},
        {"DATA:text/html,x", autre, sousCadre, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=data"},
        {"javascript:alert(1)", lienActive, principal, false, true, {}, annuler, nullptr, "navigation REFUSEE scheme=javascript"},
        {"https://ESPACE.example:443/autre", autre, principal, false, false, {}, autoriser, nullptr, nullptr},
        {"https://espace.example/f.pdf", lienActive, principal, true, false, {}, telecharger, nullptr, nullptr},
        {"HTTPS://espace.example/x", lienActive, principal, false, true, {}, autoriser, nullptr, nullptr},
        {"https://ailleurs.example/page", lienActive, principal, false, true, true, annuler, "https://ailleurs.example/page", nullptr},
        {"https://ailleurs.example/page", lienActive, principal, false, false, {}, annuler, nullptr, refusee},
        {"https://ailleurs.example/", lienActive, principal, false, true, false, annuler, nullptr, refusee},  // the engine saw no gesture
        {"https://Ailleurs.example/page", autre, principal, false, true, {}, annuler, nullptr, refusee},
        {"http://espace.example/wiki", lienActive, principal, false, true, {}, annuler, "http://espace.example/wiki", nullptr},
        {"https://video.example/embed", autre, sousCadre, false, false, {}, autoriser, nullptr, nullptr},
        {"https://espace.example/p", lienActive, aucun, false, false, {}, autoriser, nullptr, nullptr},
        {"https://ailleurs.example/", lienActive, aucun, false, true, {}, annuler, "https://ailleurs.example/", nullptr},
        // Files the page made, saved on the user's link: the engine says so, or makes it a download.
        {"blob:https://espace.example/3f2a", lienActive, principal, true, true, true, telecharger, nullptr, nullptr},
        {"data:text/csv,a;b", lienActive, inconnu, {}, true, {}, autoriser, nullptr, nullptr},
        {"blob:https://espace.example/3f2a", lienActive, principal, true, false, {}, annuler, nullptr, "navigation REFUSEE scheme=blob"},
        {"blob:https://ailleurs.example/3f2a", lienActive, principal, true, true, {}, annuler, nullptr, "navigation REFUSEE scheme=blob"},
        {"BLOB:https://espace.example/3f2a", autre, principal, true, true, {}, annuler, nullptr, "navigation REFUSEE scheme=blob"}};
    // clang-format on
    for (const auto& [url, type, cible, telechargement, clic, geste, attendue, ouverte, ligne] :
         table) {
        ligneSuivante();
        if (clic) controleur->activationUtilisateur();
        EXPECT_EQ(controleur->deciderAction(vue, {url, type, cible, telechargement, geste}),
                  attendue)
            << url.value_or("(none)");
        EXPECT_EQ(p.urlsOuvertes, liste(ouverte)) << url.value_or("(none)");
        EXPECT_EQ(nouvellesLignes(), liste(ligne)) << url.value_or("(none)");
    }
}

// The engine names the frame only with the response: a navigation elsewhere goes on as a
// sub-frame's would, and is held to the view's origin if the response fills the main frame.
TEST_F(Navigation, UnCadreInconnuSeDecideALaReponseOuALEchec) {
    auto& vue = espaceCharge("https://espace.example/wiki");
    enum class Fin { cadrePrincipal, sousCadre, echec };
    const char* const ailleurs = "https://ailleurs.example/p";
    // clang-format off
    // The user clicked, URL asked, how it ends, at which URL, decision on the response, URL
    // handed to the system, log line written.
    const std::tuple<bool, const char*, Fin, const char*, Politique, const char*, const char*> table[] = {
        {true, ailleurs, Fin::cadrePrincipal, ailleurs, annuler, ailleurs, nullptr},
        {false, "https://ailleurs.example/p#haut", Fin::cadrePrincipal, ailleurs, annuler, nullptr, refusee},
        {true, ailleurs, Fin::sousCadre, ailleurs, autoriser, nullptr, nullptr},
        {true, "https://ailleurs.example/q", Fin::cadrePrincipal, "https://ailleurs.example/autre", autoriser, nullptr, nullptr},
        {true, "https://espace.example/x", Fin::cadrePrincipal, "https://espace.example/x", autoriser, nullptr, nullptr},
        {true, ailleurs, Fin::echec, ailleurs, annuler, ailleurs, nullptr},
        {false, ailleurs, Fin::echec, ailleurs, annuler, nullptr, refusee}};
    // clang-format on
    for (const auto& [clic, url, fin, urlFin, attendue, ouverte, ligne] : table) {
        ligneSuivante();
        if (clic) controleur->activationUtilisateur();
        EXPECT_EQ(controleur->deciderAction(vue, {url, lienActive, inconnu, false, {}}), autoriser);
        EXPECT_TRUE(p.urlsOuvertes.empty() && nouvellesLignes().empty()) << "nothing yet";
        if (fin == Fin::echec) {
            controleur->traiterEchec({"NSURLErrorDomain", -1004, "x", urlFin}, vue);
        } else {
            EXPECT_EQ(controleur->deciderReponse(
                          vue, {true, std::nullopt, true, urlFin, fin == Fin::cadrePrincipal}),
                      attendue)
                << url << " " << urlFin;
        }
        EXPECT_EQ(p.urlsOuvertes, liste(ouverte)) << url;
        EXPECT_EQ(nouvellesLignes(), liste(ligne)) << url;
    }
    EXPECT_TRUE(fenetre().feuilles.empty()) << "a failure held back is no failure of the page";
}

TEST_F(Navigation, PolitiqueDesReponses) {
    auto& vue = espaceCharge();
    // clang-format off
    // HTTP, Content-Disposition, a type the engine shows; the decision.
    const std::pair<ReponseNavigation, Politique> reponses[] = {
        {{true, "Attachment; filename=x.pdf", true}, telecharger}, {{true, "inline; filename=\"attachment.pdf\"", true}, telecharger},
        {{true, "inline", true}, autoriser}, {{true, std::nullopt, true}, autoriser},
        {{true, std::nullopt, false}, telecharger}, {{false, "attachment", true}, autoriser},
        {{true, std::nullopt, true, "data:text/html,x"}, annuler}};
    // clang-format on
    for (const auto& [reponse, attendue] : reponses) {
        EXPECT_EQ(controleur->deciderReponse(vue, reponse), attendue)
            << reponse.contentDisposition.value_or("-");
    }
}

TEST_F(Navigation, RegleDOuverture) {
    auto& vue = espaceCharge("https://espace.example/");
    // clang-format off
    // URL the page asks for, whether a window opens, URL handed to the default browser instead.
    const std::tuple<std::optional<std::string>, bool, const char*> demandes[] = {
        {std::nullopt, true, nullptr}, {"", true, nullptr}, {"about:blank", true, nullptr},
        {"https://ESPACE.example/p", true, nullptr}, {"About:blank", false, nullptr},
        {"https://ailleurs.example/", false, "https://ailleurs.example/"},
        {"http://espace.example/", false, "http://espace.example/"}, {"about:srcdoc", false, nullptr},
        {"data:text/html,x", false, nullptr}, {"mailto:a@b.example", false, nullptr}};
    // clang-format on
    for (const auto& [url, ouvre, navigateur] : demandes) {
        p.urlsOuvertes.clear();
        const auto avant = controleur->fenetresSecondaires().size();
        EXPECT_EQ(popup(vue, url) != nullptr, ouvre) << url.value_or("(none)");
        EXPECT_EQ(controleur->fenetresSecondaires().size(), avant + (ouvre ? 1 : 0));
        EXPECT_EQ(p.urlsOuvertes, liste(navigateur));
    }
    VueWebTest inconnue(false);
    EXPECT_FALSE(popup(inconnue)) << "a view held to no origin opens nothing";
}

TEST_F(Navigation, UneActionDeLUtilisateurOuvreUneSeuleFenetreOuSortieEtPasLongtemps) {
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
    controleur->activationUtilisateur();
    EXPECT_TRUE(demander(std::nullopt)) << "the next click opens the next one";
    // The same for what leaves the application, and only for a while.
    const ActionNavigation clic{"https://ailleurs.example/", lienActive};
    controleur->activationUtilisateur();
    controleur->deciderAction(vue, clic);
    controleur->deciderAction(vue, clic);
    controleur->activationUtilisateur();
    p.horloge += dureeActivation + std::chrono::seconds(1);
    controleur->deciderAction(vue, clic);
    EXPECT_EQ(p.urlsOuvertes, liste("https://ailleurs.example/"));
    EXPECT_EQ(lignesJournal().back(), refusee);
    // Presses in a dialog (a page may raise one by itself), Escape or a modifier alone count not.
    for (const auto& [pression, compte] : {std::pair(Pression{true}, false),
                                           {{false, true}, false},
                                           {{false, false, true}, false},
                                           {{}, true}}) {
        p.horloge += dureeActivation + std::chrono::seconds(1);
        controleur->pression(pression);
        EXPECT_EQ(demander("https://espace.example/p"), compte) << pression.dansDialogue;
    }
}

TEST_F(Navigation, FenetresSecondairesTenuesALOrigineDeLOuvreurEtFermees) {
    auto& vue = espaceCharge("https://espace.example/");
    auto a = popup(vue, "about:blank");
    auto& vueA = static_cast<VueWebTest&>(*a);
    EXPECT_TRUE(vueA.creeeAvecConfiguration) << "from what the engine supplied";
    EXPECT_EQ(controleur->originesWebView().at(a.get()), controleur->originesWebView().at(&vue));
    // The popup's later trip elsewhere is an external navigation.
    EXPECT_EQ(controleur->deciderAction(vueA, {"https://ailleurs.example/"}), annuler);
    EXPECT_EQ(lignesJournal().back(), refusee);
    vueA.titreCourant = "Autre";
    controleur->titreChange(vueA);
    EXPECT_EQ(fenetre().titre, "Brindex") << "a popup's title never follows its page";
    // Closed by the user or at the page's request; the main window never at a page's.
    auto b = popup(vue);
    auto c = popup(vue);
    secondaire(1).fermer();
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

// A link of the space to another application of the system (a meeting, a chat).
TEST_F(Navigation, LiensVersLesApplicationsDuSysteme) {
    auto& vue = espaceCharge("https://espace.example/wiki");
    for (const char* s : {"msteams", "zoommtg", "file", "javascript", "data", "blob", "about"}) {
        p.applications[s] = std::string(5000, 'T');  // a name as long as any record may give
    }
    // Approvals as stored, the forbidden and the malformed among them.
    p.reglages_.valeurs["schemesApprouves"] = "zoommtg file java$cript about";
    // clang-format off
    // URL, clicked by the user, then: asked, URL handed to the system, log line.
    const std::tuple<const char*, bool, bool, const char*, const char*> table[] = {
        {"MSTEAMS:/l/meetup-join/1", true, true, nullptr, nullptr},
        {"msteams:/l/meetup-join/1", false, false, nullptr, "navigation REFUSEE scheme=msteams"},
        {"zoommtg://zoom.us/join?confno=1", true, false, "zoommtg://zoom.us/join?confno=1", nullptr},
        {"zoommtg://zoom.us/join?confno=1", false, false, nullptr, "navigation REFUSEE scheme=zoommtg"},
        {"slack://open", true, false, nullptr, "navigation REFUSEE scheme=slack"},
        {"file:///etc/passwd", true, false, nullptr, "navigation REFUSEE scheme=file"},
        {"javascript:alert(1)", true, false, nullptr, "navigation REFUSEE scheme=javascript"},
        {"data:text/html,x", true, false, nullptr, "navigation REFUSEE scheme=data"},
        {"blob:https://espace.example/1", true, false, nullptr, "navigation REFUSEE scheme=blob"},
        {"about:blank", true, false, nullptr, "navigation REFUSEE scheme=about"}};
    // clang-format on
    for (const auto& [url, clic, demande, ouverte, ligne] : table) {
        ligneSuivante();
        const auto questions = fenetre().feuilles.size();
        if (clic) controleur->activationUtilisateur();
        EXPECT_EQ(controleur->deciderAction(vue, {url, lienActive, principal, false, {}}), annuler);
        EXPECT_EQ(fenetre().feuilles.size() - questions, demande ? 1u : 0u) << url;
        EXPECT_EQ(p.urlsOuvertes, liste(ouverte)) << url;
        EXPECT_EQ(nouvellesLignes(), liste(ligne)) << url;
    }
    // The question: a bounded name; "Annuler" opens nothing, "Ouvrir" with the box checked opens
    // and keeps the answer for the space.
    const auto demander = [&] {
        ligneSuivante();
        controleur->activationUtilisateur();
        controleur->deciderAction(vue, {"msteams:/l/2", lienActive, principal, false, {}});
    };
    EXPECT_LT(fenetre().feuilles.at(0).message.size(), 300u);
    EXPECT_EQ(fenetre().feuilles.at(0).caseACocher,
              "Toujours ouvrir les liens « msteams: » avec cette application");
    ReponseAlerte reponse;
    reponse.bouton = 1;
    fenetre().reponsesEnAttente.at(0)(reponse);
    EXPECT_TRUE(p.urlsOuvertes.empty());
    reponse.bouton = 0;
    reponse.caseCochee = true;
    demander();
    fenetre().reponsesEnAttente.back()(reponse);
    EXPECT_EQ(p.urlsOuvertes, liste("msteams:/l/2"));
    const auto questions = fenetre().feuilles.size();
    demander();
    EXPECT_EQ(p.urlsOuvertes, liste("msteams:/l/2"));
    EXPECT_EQ(fenetre().feuilles.size(), questions) << "not asked again";
    EXPECT_EQ(p.reglages_.valeurs["schemesApprouves"], "zoommtg msteams");
}

namespace fs = std::filesystem;

class Telechargements : public ControleurTest {
  protected:
    void SetUp() override {
        ControleurTest::SetUp();
        dossierTelechargements = dossier / "Téléchargements";
        fs::create_directories(dossierTelechargements);
        p.telechargements = dossierTelechargements.string();
    }
    // A file, or a folder for a name ending with "/".
    void creer(const std::string& nom) {
        if (nom.ends_with('/'))
            fs::create_directories(dossierTelechargements / nom);
        else
            std::ofstream(dossierTelechargements / nom) << "x";
    }
    // The destination a download of that name gets, once the previous ones have ended.
    std::string destination(const std::string& suggere) {
        const auto t = std::make_shared<TelechargementTest>();
        const auto d = controleur->destinationTelechargement(t, suggere).value_or("");
        controleur->telechargementTermine(*t);
        EXPECT_EQ(fs::path(d).parent_path(), dossierTelechargements) << suggere;
        return fs::path(d).filename().string();
    }
    fs::path dossierTelechargements;
};

TEST_F(Telechargements, NomsHostilesDansLeDossierEtUniquesSurLeVraiSystemeDeFichiers) {
    // clang-format off
    // Made in the folder first ("/" at the end: a folder), name suggested, name given.
    const char* const table[][3] = {
        {"", "../../.bashrc", ".bashrc"}, {"", "a/b/rapport.pdf", "rapport.pdf"}, {"", "..\\..\\x.exe", "x.exe"},
        {"", "..", "telechargement"}, {"", ".", "telechargement"}, {"", "", "telechargement"}, {"", "/", "telechargement"},
        {"rapport.pdf", "rapport.pdf", "rapport (2).pdf"}, {"rapport (2).pdf", "rapport.pdf", "rapport (3).pdf"},
        {"", "rapport (2).pdf", "rapport (2) (2).pdf"}, {"LISEZMOI", "LISEZMOI", "LISEZMOI (2)"},
        {"archive.tar.gz", "archive.tar.gz", "archive.tar (2).gz"}, {"photos.zip/", "photos.zip", "photos (2).zip"}};
    // clang-format on
    for (const auto& [existant, suggere, donne] : table) {
        if (*existant) creer(existant);
        EXPECT_EQ(destination(suggere), donne) << suggere;
    }
    // Neither a download under way nor the engine's working files are overwritten.
    p.suffixesTemporaires = {".wkdownload", ".wkdownload~"};
    std::vector<std::string> noms;
    for (int i = 0; i < 3; ++i) {
        const auto d = controleur->destinationTelechargement(std::make_shared<TelechargementTest>(),
                                                             "note.txt");
        noms.push_back(fs::path(d.value_or("")).filename().string());
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
    EXPECT_EQ(fs::path(d.value_or("")), dossier / "Downloads" / "a.txt");
}

TEST_F(Telechargements, UneLigneParFinLeFichierMontreOuUneAlerte) {
    auto t = std::make_shared<TelechargementTest>();
    const auto d = controleur->destinationTelechargement(t, "rapport.pdf");
    EXPECT_EQ(controleur->destinationDe(*t), d);
    controleur->telechargementTermine(*t);
    controleur->telechargementTermine(*t);  // by now unknown: ignored
    EXPECT_EQ(p.reveles, std::vector<std::string>{d.value_or("")});
    // A failure, of a download under way or of one whose destination is still being chosen: that
    // one gets none afterwards, and takes no name.
    t = std::make_shared<TelechargementTest>();
    controleur->destinationTelechargement(t, "rapport.pdf");
    controleur->telechargementEchoue(*t, "Disque plein");
    t = std::make_shared<TelechargementTest>();
    controleur->telechargementEchoue(*t, "Connexion perdue");
    EXPECT_EQ(controleur->destinationTelechargement(t, "rapport.pdf"), std::nullopt);
    EXPECT_EQ(lignesJournal(), (std::vector<std::string>{"telechargement OK rapport.pdf",
                                                         "telechargement ECHEC Disque plein",
                                                         "telechargement ECHEC Connexion perdue"}));
    ASSERT_EQ(p.alertes.size(), 2u);
    EXPECT_EQ(std::tie(p.alertes[0].message, p.alertes[0].informatif),
              std::tuple("Téléchargement impossible", "Disque plein"));
    EXPECT_EQ(controleur->telechargementsEnCours(), 0u);
    EXPECT_EQ(p.reveles.size(), 1u) << "a failed download is not shown";
}

}  // namespace
}  // namespace brindex::test
