#include "container/controleur_fixture.hpp"
#include "container/telechargements.hpp"

namespace brindex::test {
namespace {

namespace fs = std::filesystem;

class Telechargements : public ControleurTest {
  protected:
    void SetUp() override {
        ControleurTest::SetUp();
        p.systemeDeFichiers = true;
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

TEST_F(Telechargements, NomsUniquesSurLeVraiSystemeDeFichiers) {
    EXPECT_EQ(destination("rapport.pdf"), "rapport.pdf");
    creer("rapport.pdf");
    EXPECT_EQ(destination("rapport.pdf"), "rapport (2).pdf");
    creer("rapport (2).pdf");
    EXPECT_EQ(destination("rapport.pdf"), "rapport (3).pdf");
    EXPECT_EQ(destination("rapport (2).pdf"), "rapport (2) (2).pdf");
    creer("LISEZMOI");
    EXPECT_EQ(destination("LISEZMOI"), "LISEZMOI (2)");
    creer("archive.tar.gz");
    EXPECT_EQ(destination("archive.tar.gz"), "archive.tar (2).gz");
    fs::create_directories(dossierTelechargements / "photos.zip");
    EXPECT_EQ(destination("photos.zip"), "photos (2).zip") << "a folder counts as taken";
}

TEST_F(Telechargements, EnCoursEtFichiersDeTravailDuMoteurPrennentLeNom) {
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
}

TEST_F(Telechargements, NomsHostilesRestentDansLeDossier) {
    EXPECT_EQ(destination("../../.bashrc"), ".bashrc");
    EXPECT_EQ(destination("a/b/rapport.pdf"), "rapport.pdf");
    EXPECT_EQ(destination("..\\..\\x.exe"), "x.exe");
    EXPECT_EQ(destination(".."), "telechargement");
    EXPECT_EQ(destination("."), "telechargement");
    EXPECT_EQ(destination(""), "telechargement");
    EXPECT_EQ(destination("/"), "telechargement");
}

TEST_F(Telechargements, SansDossierDuSystemeDownloadsSousLeDossierPersonnel) {
    p.telechargements.reset();
    p.personnel = dossier.string();
    const auto d =
        controleur->destinationTelechargement(std::make_shared<TelechargementTest>(), "a.txt");
    EXPECT_EQ(fs::path(d), dossier / "Downloads" / "a.txt");
}

TEST_F(Telechargements, SuccesUneLigneEtLeFichierMontre) {
    auto t = std::make_shared<TelechargementTest>();
    const auto d = controleur->destinationTelechargement(t, "rapport.pdf");
    EXPECT_EQ(controleur->destinationDe(*t), d);
    controleur->telechargementTermine(*t);
    EXPECT_EQ(lignesJournal(), std::vector<std::string>{"telechargement OK rapport.pdf"});
    EXPECT_EQ(p.reveles, std::vector<std::string>{d});
    EXPECT_EQ(controleur->telechargementsEnCours(), 0u);
    controleur->telechargementTermine(*t);
    EXPECT_EQ(lignesJournal().size(), 1u) << "an unknown download is ignored";
    EXPECT_EQ(p.reveles.size(), 1u);
}

TEST_F(Telechargements, EchecAvecOuSansEntree) {
    auto t = std::make_shared<TelechargementTest>();
    controleur->destinationTelechargement(t, "rapport.pdf");
    controleur->telechargementEchoue(*t, "Disque plein");
    TelechargementTest inconnu;
    controleur->telechargementEchoue(inconnu, "Connexion perdue");
    EXPECT_EQ(lignesJournal(), (std::vector<std::string>{"telechargement ECHEC Disque plein",
                                                         "telechargement ECHEC Connexion perdue"}));
    ASSERT_EQ(p.alertes.size(), 2u);
    EXPECT_EQ(p.alertes[0].message, "Téléchargement impossible");
    EXPECT_EQ(p.alertes[0].informatif, "Disque plein");
    EXPECT_EQ(p.alertes[0].boutons, std::vector<std::string>{"OK"});
    EXPECT_EQ(controleur->telechargementsEnCours(), 0u);
    EXPECT_TRUE(p.reveles.empty());
}

}  // namespace
}  // namespace brindex::test
