#include "brand/adresse_stockee.hpp"

#include <gtest/gtest.h>

#include "address/normalisation.hpp"
#include "brand/marque.hpp"
#include "support/plateforme_test.hpp"

namespace brindex {
namespace {

TEST(AdresseStockee, AllerRetourSousLaCleRelueAChaqueFoisEtAdressesParDefaut) {
    test::ReglagesMemoire reglages;
    EXPECT_FALSE(lireAdresseEspace(reglages)) << "nothing at first launch";
    ecrireAdresseEspace(reglages, normaliserAdresse("intranet:8080/wiki/"));
    EXPECT_EQ(reglages.valeurs.at("espaceURL"), "https://intranet:8080/wiki/");
    EXPECT_EQ(lireAdresseEspace(reglages), normaliserAdresse("https://intranet:8080/wiki/"));
    ecrireAdresseEspace(reglages, std::nullopt);
    EXPECT_FALSE(reglages.valeurs.count("espaceURL"));
    EXPECT_FALSE(lireAdresseEspace(reglages));
    // A text that no longer normalises reads as nothing; the text is read again, never cached.
    reglages.valeurs["espaceURL"] = "ftp://intranet";
    EXPECT_FALSE(lireAdresseEspace(reglages));
    reglages.valeurs["espaceURL"] = "  intranet  ";
    EXPECT_EQ(lireAdresseEspace(reglages)->texte(), "https://intranet");
    // The built-in addresses normalise, to https, the product's own host first.
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
