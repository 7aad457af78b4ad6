#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "address/normalisation.hpp"
#include "address/sonde.hpp"

namespace brindex {
namespace {

using Cas = ResultatSonde::Cas;

const std::string silence =
    "Le serveur ne répond pas. Il est peut-être arrêté, ou l'adresse est incomplète.";
const std::string certificat = "Le certificat de sécurité du serveur n'est pas valide.";
const std::string horsLigne = "Votre connexion internet semble coupée.";

EchangeTermine erreur(std::int64_t code, std::string description = "description du système") {
    EchangeTermine e;
    e.erreur = ErreurTransport{code, std::move(description)};
    return e;
}

EchangeTermine http(int statut, std::optional<std::string> corps) {
    EchangeTermine e;
    e.reponse = EchangeTermine::Reponse::http;
    e.statut = statut;
    e.corps = std::move(corps);
    return e;
}

struct CasTri {
    const char* nom;
    EchangeTermine echange;
    ResultatSonde attendu;
    friend std::ostream& operator<<(std::ostream& o, const CasTri& c) { return o << c.nom; }
};

class TriDesReponses : public testing::TestWithParam<CasTri> {};
TEST_P(TriDesReponses, DonneLeResultat) {
    EXPECT_EQ(trierEchange(GetParam().echange), GetParam().attendu) << GetParam().nom;
}

const std::string marqueur = "{\"status\":\"up\",\"service\":\"brindex\"}";

INSTANTIATE_TEST_SUITE_P(
    Table, TriDesReponses,
    testing::Values(
        CasTri{"delai", erreur(-1001), ResultatSonde::injoignable(silence)},
        CasTri{"introuvable", erreur(-1003),
               ResultatSonde::injoignable("Cette adresse n'existe pas. Vérifiez l'orthographe.")},
        CasTri{"refus", erreur(-1004), ResultatSonde::injoignable(silence)},
        CasTri{"perdue", erreur(-1005), ResultatSonde::injoignable(horsLigne)},
        CasTri{"hors ligne", erreur(-1009), ResultatSonde::injoignable(horsLigne)},
        CasTri{"tls", erreur(-1200), ResultatSonde::injoignable(certificat)},
        CasTri{"date", erreur(-1201), ResultatSonde::injoignable(certificat)},
        CasTri{"non fiable", erreur(-1202), ResultatSonde::injoignable(certificat)},
        CasTri{"pas encore", erreur(-1204), ResultatSonde::injoignable(certificat)},
        CasTri{"racine inconnue", erreur(-1203),
               ResultatSonde::injoignable("description du système")},
        CasTri{"autre code", erreur(-1007), ResultatSonde::injoignable("description du système")},
        CasTri{"erreur avant reponse",
               [] {
                   auto e = http(200, marqueur);
                   e.erreur = ErreurTransport{-1001, "x"};
                   return e;
               }(),
               ResultatSonde::injoignable(silence)},
        CasTri{"espace", http(200, marqueur), ResultatSonde::ok()},
        CasTri{"marqueur dans une page", http(200, "<html><p>\"service\":\"brindex\"</p></html>"),
               ResultatSonde::ok()},
        CasTri{"espace apres deux-points", http(200, "{\"service\": \"brindex\"}"),
               ResultatSonde::pasUnEspace()},
        CasTri{"majuscules", http(200, "{\"service\":\"Brindex\"}"), ResultatSonde::pasUnEspace()},
        CasTri{"200 sans corps", http(200, std::nullopt), ResultatSonde::pasUnEspace()},
        CasTri{"201", http(201, marqueur), ResultatSonde::pasUnEspace()},
        CasTri{"204", http(204, marqueur), ResultatSonde::pasUnEspace()},
        CasTri{"301", http(301, marqueur), ResultatSonde::pasUnEspace()},
        CasTri{"401", http(401, marqueur), ResultatSonde::pasUnEspace()},
        CasTri{"404", http(404, marqueur), ResultatSonde::pasUnEspace()},
        CasTri{"500", http(500, marqueur), ResultatSonde::pasUnEspace()},
        CasTri{"utf-16",
               http(200,
                    [] {
                        std::string corps("\xFF\xFE", 2);
                        for (char c : std::string("\"service\":\"brindex\"")) {
                            corps += c;
                            corps += '\0';
                        }
                        return corps;
                    }()),
               ResultatSonde::pasUnEspace()},
        CasTri{"utf-8 invalide", http(200, marqueur + "\xC0\xAF"), ResultatSonde::pasUnEspace()},
        CasTri{"surrogat", http(200, marqueur + "\xED\xA0\x80"), ResultatSonde::pasUnEspace()},
        CasTri{"utf-8 valide", http(200, "caf\xC3\xA9 " + marqueur + " \xF0\x9F\x93\x9A"),
               ResultatSonde::ok()},
        CasTri{"lu en partie, coupe dans un caractere",
               [] {
                   auto e = http(200, marqueur + " caf\xC3");
                   e.corpsPartiel = true;
                   return e;
               }(),
               ResultatSonde::ok()},
        CasTri{"lu en entier, coupe dans un caractere", http(200, marqueur + " caf\xC3"),
               ResultatSonde::pasUnEspace()},
        CasTri{"description sans fin", erreur(-1011, std::string(50000, 'r')),
               ResultatSonde::injoignable(std::string(300, 'r') + "…")},
        CasTri{"aucune reponse", EchangeTermine{},
               ResultatSonde::injoignable("Réponse inattendue du serveur.")},
        CasTri{"reponse non http",
               [] {
                   EchangeTermine e;
                   e.reponse = EchangeTermine::Reponse::autre;
                   e.statut = 200;
                   e.corps = marqueur;
                   return e;
               }(),
               ResultatSonde::injoignable("Réponse inattendue du serveur.")}));

TEST(RequeteSonde, VaSurLAdresseDeSante) {
    const auto url = [](const char* t) { return requeteSonde(*normaliserAdresse(t)).url; };
    EXPECT_EQ(url("intranet"), "https://intranet/health");
    EXPECT_EQ(url("intranet/"), "https://intranet/health");
    EXPECT_EQ(url("intranet/wiki"), "https://intranet/wiki/health");
    EXPECT_EQ(url("intranet:8080/wiki/"), "https://intranet:8080/wiki/health");
    const auto requete = requeteSonde(*normaliserAdresse("localhost:3000"));
    EXPECT_EQ(requete.url, "http://localhost:3000/health");
    EXPECT_EQ(requete.methode, "GET");
    EXPECT_EQ(requete.agentUtilisateur, "Brindex-Desktop/1.0.0");
    EXPECT_EQ(requete.delaiSecondes, 8.0);
    EXPECT_TRUE(requete.ignorerCache);
}

class TransportTest : public TransportHttp {
  public:
    void envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) override {
        requetes.push_back(requete);
        fins.push_back(std::move(fin));
    }
    std::vector<RequeteSonde> requetes;
    std::vector<std::function<void(EchangeTermine)>> fins;
};

TEST(LectureSuffisante, AuMarqueurOuALaLimite) {
    EXPECT_FALSE(lectureSuffisante("{\"status\":\"up\",\"service\":\"brin"));
    EXPECT_TRUE(lectureSuffisante(marqueur));
    EXPECT_FALSE(lectureSuffisante(std::string(limiteCorpsSonde - 1, ' ')));
    EXPECT_TRUE(lectureSuffisante(std::string(limiteCorpsSonde, ' ')));
}

TEST(SonderEspace, RappelleUneSeuleFoisAvecLeResultatTrie) {
    TransportTest transport;
    std::vector<ResultatSonde> resultats;
    sonderEspace(transport, *normaliserAdresse("intranet/wiki"),
                 [&](ResultatSonde r) { resultats.push_back(r); });
    ASSERT_EQ(transport.requetes.size(), 1u);
    EXPECT_EQ(transport.requetes[0].url, "https://intranet/wiki/health");
    EXPECT_TRUE(resultats.empty()) << "the answer comes later, not during the call";
    transport.fins[0](http(200, marqueur));
    transport.fins[0](erreur(-1003));  // a faulty transport reporting twice
    ASSERT_EQ(resultats.size(), 1u);
    EXPECT_EQ(resultats[0].cas(), Cas::ok);
}

TEST(SonderEspace, SondesIndependantes) {
    TransportTest transport;
    std::vector<Cas> cas;
    sonderEspace(transport, *normaliserAdresse("a"),
                 [&](ResultatSonde r) { cas.push_back(r.cas()); });
    sonderEspace(transport, *normaliserAdresse("b"),
                 [&](ResultatSonde r) { cas.push_back(r.cas()); });
    transport.fins[1](http(404, ""));
    transport.fins[0](erreur(-1004));
    EXPECT_EQ(cas, (std::vector<Cas>{Cas::pasUnEspace, Cas::injoignable}));
}

}  // namespace
}  // namespace brindex
