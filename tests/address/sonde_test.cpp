#include "address/sonde.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "address/normalisation.hpp"
#include "support/plateforme_test.hpp"

namespace brindex {
namespace {

using Cas = ResultatSonde::Cas;
using Reponse = EchangeTermine::Reponse;

const std::string marqueur = R"({"status":"up","service":"brindex"})";
const std::string silence =
    "Le serveur ne répond pas. Il est peut-être arrêté, ou l'adresse est incomplète.";
const std::string inattendue = "Réponse inattendue du serveur.";

EchangeTermine erreur(std::int64_t code, std::string description = "description du système") {
    return {ErreurTransport{code, std::move(description)}, Reponse::aucune, 0, std::nullopt};
}

EchangeTermine http(int statut, std::optional<std::string> corps) {
    return {std::nullopt, Reponse::http, statut, std::move(corps)};
}

TEST(TriDesReponses, ErreursExpliqueesEtMarqueurDansUne200) {
    const std::vector<std::pair<std::vector<std::int64_t>, std::string>> explications{
        {{-1001, -1004}, silence},
        {{-1005, -1009}, "Votre connexion internet semble coupée."},
        {{-1200, -1201, -1202, -1204}, "Le certificat de sécurité du serveur n'est pas valide."},
        {{-1003}, "Cette adresse n'existe pas. Vérifiez l'orthographe."},
        {{-1022},
         "Cette adresse exige une connexion sécurisée (https). Vérifiez l'adresse de votre "
         "espace."},
        {{-1203, -1007}, "description du système"},  // no text of ours: the system's
    };
    for (const auto& [codes, texte] : explications) {
        for (const auto code : codes) {
            EXPECT_EQ(trierEchange(erreur(code)), ResultatSonde::injoignable(texte)) << code;
        }
    }
    EXPECT_EQ(trierEchange(erreur(-1011, std::string(50000, 'r'))),
              ResultatSonde::injoignable(std::string(300, 'r') + "…"));
    // An error wins over whatever response came before it.
    EXPECT_EQ(trierEchange({ErreurTransport{-1001, "x"}, Reponse::http, 200, marqueur}),
              ResultatSonde::injoignable(silence));
    EXPECT_EQ(trierEchange(EchangeTermine{}), ResultatSonde::injoignable(inattendue));
    EXPECT_EQ(trierEchange({std::nullopt, Reponse::autre, 200, marqueur}),
              ResultatSonde::injoignable(inattendue));
    // A space is known by its marker in a 200 response.
    for (const std::string& corps :
         {marqueur, std::string(R"(<html><p>"service":"brindex"</p></html>)"),
          "caf\xC3\xA9 " + marqueur + " \xF0\x9F\x93\x9A"}) {
        EXPECT_EQ(trierEchange(http(200, corps)), ResultatSonde::ok()) << corps;
    }
    // Reading stopped early, inside a character: the rest was never read.
    auto partiel = http(200, marqueur + " caf\xC3");
    partiel.corpsPartiel = true;
    EXPECT_EQ(trierEchange(partiel), ResultatSonde::ok());
    std::string utf16("\xFF\xFE", 2);
    for (char c : std::string(R"("service":"brindex")")) utf16 += {c, '\0'};
    // Not exactly the marker, or a body that is not UTF-8 (the last one read in full).
    for (const std::string& corps :
         {std::string(R"({"service": "brindex"})"), std::string(R"({"service":"Brindex"})"), utf16,
          marqueur + "\xC0\xAF", marqueur + "\xED\xA0\x80", marqueur + " caf\xC3"}) {
        EXPECT_EQ(trierEchange(http(200, corps)), ResultatSonde::pasUnEspace()) << corps;
    }
    EXPECT_EQ(trierEchange(http(200, std::nullopt)), ResultatSonde::pasUnEspace());
    for (const int statut : {201, 204, 301, 401, 404, 500}) {
        EXPECT_EQ(trierEchange(http(statut, marqueur)), ResultatSonde::pasUnEspace()) << statut;
    }
}

TEST(SonderEspace, SanteLueJusquAuMarqueurUnSeulRappelSondesIndependantes) {
    test::TransportTest transport;
    std::vector<ResultatSonde> resultats;
    sonderEspace(transport, *normaliserAdresse("intranet/wiki"),
                 [&](ResultatSonde r) { resultats.push_back(r); });
    ASSERT_EQ(transport.requetes.size(), 1u);
    const auto& q = transport.requetes[0];
    EXPECT_EQ(std::tie(q.url, q.agentUtilisateur, q.ignorerCache),
              std::tuple("https://intranet/wiki/health", "Brindex-Desktop/1.0.0", true));
    // Its body is read up to the marker, or up to the limit.
    EXPECT_FALSE(lectureSuffisante(R"({"status":"up","service":"brin)"));
    EXPECT_TRUE(lectureSuffisante(marqueur));
    EXPECT_FALSE(lectureSuffisante(std::string(limiteCorpsSonde - 1, ' ')));
    EXPECT_TRUE(lectureSuffisante(std::string(limiteCorpsSonde, ' ')));
    EXPECT_TRUE(resultats.empty()) << "the answer comes later, not during the call";
    const auto fin = transport.enAttente[0];
    fin(http(200, marqueur));
    fin(erreur(-1003));  // a faulty transport reporting twice
    ASSERT_EQ(resultats.size(), 1u);
    EXPECT_EQ(resultats[0].cas(), Cas::ok);
    // Probes at the same time are independent.
    std::vector<Cas> cas;
    for (const char* adresse : {"a", "b"}) {
        sonderEspace(transport, *normaliserAdresse(adresse),
                     [&](ResultatSonde r) { cas.push_back(r.cas()); });
    }
    transport.enAttente[2](http(404, ""));
    transport.enAttente[1](erreur(-1004));
    EXPECT_EQ(cas, (std::vector<Cas>{Cas::pasUnEspace, Cas::injoignable}));
}

}  // namespace
}  // namespace brindex
