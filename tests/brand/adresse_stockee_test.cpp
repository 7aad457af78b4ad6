#include "brand/adresse_stockee.hpp"

#include <gtest/gtest.h>

#include <map>

#include "address/normalisation.hpp"
#include "brand/marque.hpp"

namespace brindex {
namespace {

class ReglagesMemoire : public Reglages {
  public:
    std::optional<std::string> lire(const std::string& cle) const override {
        const auto it = valeurs.find(cle);
        if (it == valeurs.end()) return std::nullopt;
        return it->second;
    }
    void ecrire(const std::string& cle, const std::optional<std::string>& valeur) override {
        if (valeur) {
            valeurs[cle] = *valeur;
        } else {
            valeurs.erase(cle);
        }
    }
    std::map<std::string, std::string> valeurs;
};

TEST(AdresseStockee, RienAuPremierLancement) {
    ReglagesMemoire reglages;
    EXPECT_FALSE(lireAdresseEspace(reglages));
}

TEST(AdresseStockee, AllerRetourSousLaCle) {
    ReglagesMemoire reglages;
    ecrireAdresseEspace(reglages, normaliserAdresse("intranet:8080/wiki/"));
    EXPECT_EQ(reglages.valeurs.at("espaceURL"), "https://intranet:8080/wiki/");
    EXPECT_EQ(lireAdresseEspace(reglages), normaliserAdresse("https://intranet:8080/wiki/"));
    ecrireAdresseEspace(reglages, std::nullopt);
    EXPECT_FALSE(reglages.valeurs.count("espaceURL"));
    EXPECT_FALSE(lireAdresseEspace(reglages));
}

TEST(AdresseStockee, TexteQuiNeSeNormalisePlusLitRien) {
    ReglagesMemoire reglages;
    reglages.valeurs["espaceURL"] = "ftp://intranet";
    EXPECT_FALSE(lireAdresseEspace(reglages));
    reglages.valeurs["espaceURL"] = "  intranet  ";
    EXPECT_EQ(lireAdresseEspace(reglages)->texte(), "https://intranet")
        << "read again, never cached";
}

TEST(Marque, AdressesParDefautSeNormalisent) {
    ASSERT_EQ(Marque::adressesParDefaut.size(), 2u);
    EXPECT_NE(Marque::adressesParDefaut[0].find(Marque::domaineSite), std::string_view::npos)
        << "the product's own host comes first";
    for (const auto adresse : Marque::adressesParDefaut) {
        const auto url = normaliserAdresse(adresse);
        ASSERT_TRUE(url) << adresse;
        EXPECT_EQ(url->scheme(), "https");
    }
}

}  // namespace
}  // namespace brindex
