#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "reglages_gtk.hpp"

namespace brindex::gtk {
namespace {

namespace fs = std::filesystem;

class FichierReglages : public testing::Test {
  protected:
    void SetUp() override {
        dossier_ = fs::temp_directory_path() /
                   ("brindex-reglages-" + std::to_string(::getpid()) + "-" +
                    testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dossier_);
    }
    void TearDown() override { fs::remove_all(dossier_); }
    std::string chemin() const { return (dossier_ / "brindex" / "brindex.conf").string(); }
    static std::string contenu(const std::string& c) {
        std::ifstream f(c);
        std::stringstream s;
        s << f.rdbuf();
        return s.str();
    }
    fs::path dossier_;
};

TEST_F(FichierReglages, EcritCreeLeDossierEtRelitSansCache) {
    ReglagesGtk reglages(chemin());
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    reglages.ecrire("espaceURL", std::string("https://espace.exemple.example/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "https://espace.exemple.example/");
    EXPECT_NE(contenu(chemin()).find("[brindex]"), std::string::npos);
    // Another writer's change shows at the next read.
    ReglagesGtk(chemin()).ecrire("espaceURL", std::string("http://10.0.0.2/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "http://10.0.0.2/");
}

TEST_F(FichierReglages, RetirerUneCleGardeLesAutres) {
    ReglagesGtk reglages(chemin());
    reglages.ecrire("espaceURL", std::string("http://10.0.0.2/"));
    reglages.ecrire("BrindexPrincipaleLargeur", std::string("1400"));
    reglages.ecrire("espaceURL", std::nullopt);
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    EXPECT_EQ(reglages.lire("BrindexPrincipaleLargeur"), "1400");
}

TEST_F(FichierReglages, UnFichierCorrompuSeLitVideEtEstMisDeCote) {
    fs::create_directories(fs::path(chemin()).parent_path());
    std::ofstream(chemin()) << "ceci n'est pas un fichier de clés\n[[[";
    ReglagesGtk reglages(chemin());
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    EXPECT_TRUE(fs::exists(chemin() + ".bak"));
    EXPECT_NE(contenu(chemin() + ".bak").find("[[["), std::string::npos);
    reglages.ecrire("espaceURL", std::string("http://10.0.0.2/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "http://10.0.0.2/");
    // The first copy kept aside is never replaced.
    EXPECT_NE(contenu(chemin() + ".bak").find("[[["), std::string::npos);
}

}  // namespace
}  // namespace brindex::gtk
