#include <gtest/gtest.h>
#include <libsoup/soup.h>
#include <unistd.h>
#include <webkit/webkit.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "erreurs_gtk.hpp"
#include "reglages_gtk.hpp"
#include "transport_soup.hpp"

namespace brindex::gtk {
namespace {

TEST(CorrespondanceErreurs, DonneLeVocabulaireDuCoeurEtLeDefautDuCertificat) {
    // clang-format off
    // The engine's domain and code, then the core's (a network being there).
    const std::tuple<GQuark (*)(), int, std::string_view, std::int64_t> table[] = {
        {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_CANCELLED, domaineUrl, -999},
        {webkit_policy_error_quark, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE, domaineWebKit, 102},
        {g_resolver_error_quark, G_RESOLVER_ERROR_NOT_FOUND, domaineUrl, -1003},
        {g_resolver_error_quark, G_RESOLVER_ERROR_TEMPORARY_FAILURE, domaineUrl, -1009},  // no DNS server
        {g_io_error_quark, G_IO_ERROR_HOST_NOT_FOUND, domaineUrl, -1003},
        {g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, domaineUrl, -1004},
        {g_io_error_quark, G_IO_ERROR_HOST_UNREACHABLE, domaineUrl, -1004},
        {g_io_error_quark, G_IO_ERROR_TIMED_OUT, domaineUrl, -1001},
        {g_io_error_quark, G_IO_ERROR_NETWORK_UNREACHABLE, domaineUrl, -1009},
        {g_io_error_quark, G_IO_ERROR_CONNECTION_CLOSED, domaineUrl, -1005},
        {g_io_error_quark, G_IO_ERROR_BROKEN_PIPE, domaineUrl, -1005},
        {g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, domaineUrl, -1005},
        {g_tls_error_quark, G_TLS_ERROR_BAD_CERTIFICATE, domaineUrl, -1202},
        {g_tls_error_quark, G_TLS_ERROR_HANDSHAKE, domaineUrl, -1200},
        // Outside the table: its own domain and code.
        {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST, "WebKitNetworkError", WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST},
        {g_io_error_quark, G_IO_ERROR_PERMISSION_DENIED, "g-io-error-quark", G_IO_ERROR_PERMISSION_DENIED},
        // Never a silent cancel: a refused certificate can come back as this one.
        {g_io_error_quark, G_IO_ERROR_CANCELLED, "g-io-error-quark", G_IO_ERROR_CANCELLED},
    };
    // clang-format on
    for (const auto& [domaine, code, domaineAttendu, codeAttendu] : table) {
        GError* erreur = g_error_new_literal(domaine(), code, "message du moteur");
        const auto traduite = erreurDepuisGError(erreur, true);
        g_error_free(erreur);
        EXPECT_EQ(std::tie(traduite.domaine, traduite.code, traduite.description),
                  std::tuple(domaineAttendu, codeAttendu, "message du moteur"))
            << g_quark_to_string(domaine()) << "/" << code;
    }
    // Without a network, a name that can't be resolved says nothing about the name.
    GError* introuvable = g_error_new_literal(G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND, "x");
    EXPECT_EQ(erreurDepuisGError(introuvable, false).code, -1009);
    g_error_free(introuvable);
    // A refused certificate: its faults, the code its most telling one gives.
    const std::pair<int, std::int64_t> certificats[] = {
        {G_TLS_CERTIFICATE_EXPIRED, -1201},
        {G_TLS_CERTIFICATE_EXPIRED | G_TLS_CERTIFICATE_UNKNOWN_CA, -1201},
        {G_TLS_CERTIFICATE_NOT_ACTIVATED, -1204},
        {G_TLS_CERTIFICATE_UNKNOWN_CA, -1202},
        {G_TLS_CERTIFICATE_BAD_IDENTITY, -1202},
        {G_TLS_CERTIFICATE_REVOKED, -1200},
    };
    for (const auto& [defauts, code] : certificats) {
        const auto erreur = erreurTls(GTlsCertificateFlags(defauts), "x");
        EXPECT_EQ(std::tie(erreur.domaine, erreur.code), std::tuple(domaineUrl, code)) << defauts;
    }
}

class FichierReglages : public testing::Test {
  protected:
    void SetUp() override { std::filesystem::remove_all(dossier_); }
    void TearDown() override { std::filesystem::remove_all(dossier_); }
    static std::string contenu(const std::string& c) {
        std::stringstream s;
        s << std::ifstream(c).rdbuf();
        return s.str();
    }
    const std::filesystem::path dossier_ =
        std::filesystem::temp_directory_path() /
        ("brindex-reglages-" + std::to_string(::getpid()) + "-" +
         testing::UnitTest::GetInstance()->current_test_info()->name());
    const std::string chemin = (dossier_ / "brindex" / "brindex.conf").string();
};

TEST_F(FichierReglages, EcritCreeLeDossierRelitSansCacheEtRetireUneCleSeule) {
    ReglagesGtk reglages(chemin);
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    reglages.ecrire("espaceURL", std::string("https://espace.exemple.example/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "https://espace.exemple.example/");
    EXPECT_NE(contenu(chemin).find("[brindex]"), std::string::npos);
    // Another writer's change shows at the next read.
    ReglagesGtk(chemin).ecrire("espaceURL", std::string("http://10.0.0.2/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "http://10.0.0.2/");
    reglages.ecrire("BrindexPrincipaleLargeur", std::string("1400"));
    reglages.ecrire("espaceURL", std::nullopt);
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    EXPECT_EQ(reglages.lire("BrindexPrincipaleLargeur"), "1400");
}

TEST_F(FichierReglages, UnFichierCorrompuSeLitVideEtEstMisDeCote) {
    std::filesystem::create_directories(std::filesystem::path(chemin).parent_path());
    std::ofstream(chemin) << "ceci n'est pas un fichier de clés\n[[[";
    ReglagesGtk reglages(chemin);
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    EXPECT_NE(contenu(chemin + ".bak").find("[[["), std::string::npos);
    reglages.ecrire("espaceURL", std::string("http://10.0.0.2/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "http://10.0.0.2/");
    // The first copy kept aside is never replaced.
    EXPECT_NE(contenu(chemin + ".bak").find("[[["), std::string::npos);
}

// A local server in the same process, answering from the main loop the test turns.
struct ServeurLocal {
    ServeurLocal() {
        soup_server_add_handler(serveur, nullptr, repondre, this, nullptr);
        soup_server_listen_local(serveur, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
        GSList* uris = soup_server_get_uris(serveur);
        port = g_uri_get_port(static_cast<GUri*>(uris->data));
        g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    }
    ~ServeurLocal() {
        soup_server_disconnect(serveur);
        g_object_unref(serveur);
    }
    std::string url(const std::string& chemin) const {
        return "http://127.0.0.1:" + std::to_string(port) + chemin;
    }
    static void repondre(SoupServer*, SoupServerMessage* m, const char* chemin, GHashTable*,
                         gpointer soi) {
        const char* agent =
            soup_message_headers_get_one(soup_server_message_get_request_headers(m), "User-Agent");
        static_cast<ServeurLocal*>(soi)->agents.push_back(agent ? agent : "");
        const std::string c = chemin;
        if (c == "/ancien") return soup_server_message_set_redirect(m, 302, "/health");
        if (c == "/muet") return soup_server_message_pause(m);  // never answers
        soup_server_message_set_status(m, 200, nullptr);
        if (c == "/health") {
            const std::string corps = R"({"status":"up","service":"brindex"})";
            return soup_server_message_set_response(m, "application/json", SOUP_MEMORY_COPY,
                                                    corps.data(), corps.size());
        }
        // The others never end: headers at once, then the body in chunks.
        soup_message_headers_set_encoding(soup_server_message_get_response_headers(m),
                                          SOUP_ENCODING_CHUNKED);
        if (c == "/goutte") {
            // One byte now and then, for ever.
            const guint goutte = g_timeout_add_full(
                G_PRIORITY_DEFAULT, 200,
                +[](gpointer sm) -> gboolean {
                    soup_message_body_append(
                        soup_server_message_get_response_body(SOUP_SERVER_MESSAGE(sm)),
                        SOUP_MEMORY_STATIC, " ", 1);
                    soup_server_message_unpause(SOUP_SERVER_MESSAGE(sm));
                    return G_SOURCE_CONTINUE;
                },
                g_object_ref(m), g_object_unref);
            g_signal_connect(m, "disconnected", G_CALLBACK(+[](SoupServerMessage*, gpointer id) {
                                 g_source_remove(GPOINTER_TO_UINT(id));
                             }),
                             GUINT_TO_POINTER(goutte));
            return;
        }
        // Written as fast as it is read; the marker first, or never.
        const std::string debut = c == "/sans-fin/marqueur" ? R"({"service":"brindex"})" : "{";
        soup_message_body_append(soup_server_message_get_response_body(m), SOUP_MEMORY_COPY,
                                 debut.data(), debut.size());
        g_signal_connect(m, "wrote-chunk", G_CALLBACK(+[](SoupServerMessage* sm) {
                             static const std::string morceau(16 * 1024, ' ');
                             soup_message_body_append(soup_server_message_get_response_body(sm),
                                                      SOUP_MEMORY_STATIC, morceau.data(),
                                                      morceau.size());
                         }),
                         nullptr);
    }
    SoupServer* serveur = soup_server_new(nullptr, nullptr);
    int port = 0;
    std::vector<std::string> agents;
};

// The one exchange a request ends with, once the main loop has turned until then; nothing more
// may come afterwards.
EchangeTermine echanger(const std::string& url, double delai = 8) {
    TransportSoup transport;
    std::vector<EchangeTermine> recus;
    transport.envoyer({url, "GET", "Brindex-Desktop/1.0.0", delai, true},
                      [&](EchangeTermine e) { recus.push_back(std::move(e)); });
    const gint64 limite = g_get_monotonic_time() + 15 * G_USEC_PER_SEC;
    while (recus.empty() && g_get_monotonic_time() < limite)
        g_main_context_iteration(nullptr, TRUE);
    for (int i = 0; i < 20; ++i) g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(recus.size(), 1u) << url;
    return recus.empty() ? EchangeTermine{} : recus[0];
}

TEST(TransportSoup, RapporteStatutCorpsEtAgentSuitLesRedirectionsEtBorneLesCorpsSansFin) {
    ServeurLocal serveur;
    auto e = echanger(serveur.url("/health"));
    EXPECT_FALSE(e.erreur);
    EXPECT_EQ(
        std::tie(e.reponse, e.statut, e.corps),
        std::tuple(EchangeTermine::Reponse::http, 200, R"({"status":"up","service":"brindex"})"));
    EXPECT_EQ(serveur.agents, std::vector<std::string>{"Brindex-Desktop/1.0.0"});
    EXPECT_EQ(echanger(serveur.url("/ancien")).statut, 200);
    EXPECT_EQ(serveur.agents.size(), 3u);
    // An endless body is read up to the marker, or up to the limit, at once.
    const gint64 debut = g_get_monotonic_time();
    e = echanger(serveur.url("/sans-fin/marqueur"));
    EXPECT_EQ(e.statut, 200);
    EXPECT_TRUE(e.corpsPartiel);
    EXPECT_LT(e.corps.value_or("").size(), limiteCorpsSonde);
    EXPECT_EQ(echanger(serveur.url("/sans-fin")).corps.value_or("").size(), limiteCorpsSonde);
    EXPECT_LT(g_get_monotonic_time() - debut, 2 * G_USEC_PER_SEC);
}

TEST(TransportSoup, EchecsEnCodesDuCoeur) {
    const std::string fermee = [] { return ServeurLocal().url("/health"); }();
    ServeurLocal serveur;
    // URL, time-out, the code of the error the exchange ends with.
    const std::tuple<std::string, double, std::int64_t> cas[] = {
        {fermee, 8, -1004},
        {serveur.url("/muet"), 1, -1001},
        {serveur.url("/goutte"), 1, -1001},  // never ends, never fills: the time-out holds
        {"http://introuvable.invalid/health", 8, -1003},
        {"pas une url", 8, -1000},
    };
    for (const auto& [url, delai, code] : cas) {
        const auto e = echanger(url, delai);
        EXPECT_EQ(e.erreur ? e.erreur->code : 0, code) << url;
    }
}

}  // namespace
}  // namespace brindex::gtk
