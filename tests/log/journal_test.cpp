#include "log/journal.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace brindex {
namespace {

namespace fs = std::filesystem;

class JournalTest : public testing::Test {
  protected:
    void SetUp() override {
        fs::remove_all(dossier);
        fs::create_directories(dossier);
        Journal::definirChemin(fichier.string());
    }
    void TearDown() override {
        Journal::definirChemin("");
        fs::remove_all(dossier);
    }
    std::string contenu() const {
        std::stringstream s;
        s << std::ifstream(fichier, std::ios::binary).rdbuf();
        return s.str();
    }
    const fs::path dossier =
        fs::temp_directory_path() /
        ("brindex-journal-" +
         std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
    const fs::path fichier = dossier / "Brindex.log";
};

TEST_F(JournalTest, UneLigneHorodateeParMessageDansUnFichierOrdinaireSansRienAttendreNiPerdre) {
    Journal::ecrire("demarrage v1.0.0");
    Journal::ecrire("");
    Journal::ecrire("a\nb");
    std::ofstream(fichier, std::ios::app) << "ligne d'un autre programme\n";
    Journal::ecrire("deux");
    EXPECT_TRUE(
        std::regex_match(contenu(), std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ )"
                                               R"(demarrage v1\.0\.0\n\S+Z \n\S+Z a\\x0Ab\n)"
                                               R"(ligne d'un autre programme\n\S+Z deux\n)")))
        << contenu();
    fs::remove(fichier);
    // In a missing folder the line is lost, and the folder is not made.
    Journal::definirChemin((dossier / "absent" / "Brindex.log").string());
    Journal::ecrire("perdue");
    EXPECT_FALSE(fs::exists(dossier / "absent"));
    Journal::definirChemin(fichier.string());
    // Nobody reads this FIFO: opening it to write would wait for ever.
    ASSERT_EQ(mkfifo(fichier.c_str(), 0600), 0);
    Journal::ecrire("perdue");
    fs::remove(fichier);
    fs::create_symlink(dossier / "vrai.log", fichier);
    Journal::ecrire("suivie");
    EXPECT_TRUE(fs::is_symlink(fichier));
    EXPECT_NE(contenu().find(" suivie\n"), std::string::npos);
    // An existing file is never replaced.
    fs::remove(fichier);
    std::ofstream(fichier) << "ancien\n";
    fs::permissions(fichier, fs::perms::owner_read);
    Journal::ecrire("refusee");
    fs::permissions(fichier, fs::perms::owner_read | fs::perms::owner_write);
    // Root may still write to a read-only file; what matters is that nothing was lost.
    EXPECT_EQ(contenu().rfind("ancien\n", 0), 0u);
}

TEST(Journal, MessageSurEtHorodatageUtcALaSeconde) {
    EXPECT_EQ(Journal::messageSur("navigation ECHEC Not Found\x1B[31m\a\r\x7F é\xFF\xC3"),
              "navigation ECHEC Not Found\\x1B[31m\\x07\\x0D\\x7F é\\xFF\\xC3");
    const std::string longue = "navigation OK https://h/" + std::string(10'000'000, 'a');
    const std::string sur = Journal::messageSur(longue);
    EXPECT_LE(sur.size(), Journal::longueurMessageMax + 40);
    EXPECT_TRUE(sur.ends_with("a\xE2\x80\xA6 [tronque, 10000024 octets]")) << sur.substr(1900);
    // Cut between characters and escapes, never inside one.
    const std::string echappe = Journal::messageSur(std::string(3000, '\x01'));
    EXPECT_EQ(echappe.rfind("\\x01\xE2\x80\xA6"), Journal::longueurMessageMax - 4);
    // Time stamps: UTC, ISO 8601, to the second.
    using namespace std::chrono;
    // clang-format off
    const std::pair<long long, const char*> dates[] = {
        {0, "1970-01-01T00:00:00Z"}, {1772719629, "2026-03-05T14:07:09Z"}, {951782400, "2000-02-29T00:00:00Z"},
        {4107542399, "2100-02-28T23:59:59Z"}, {4107542400, "2100-03-01T00:00:00Z"}, {-1, "1969-12-31T23:59:59Z"}};
    // clang-format on
    for (const auto& [s, texte] : dates) {
        EXPECT_EQ(Journal::horodatage(system_clock::time_point(seconds(s))), texte);
    }
    const auto maintenant = system_clock::now() + milliseconds(999);
    EXPECT_EQ(Journal::horodatage(maintenant).size(), 20u) << "no fractional seconds";
}

}  // namespace
}  // namespace brindex
