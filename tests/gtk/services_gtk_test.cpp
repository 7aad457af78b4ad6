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
    // The engine's domain and code, whether a network is there, then the core's.
    const std::tuple<GQuark (*)(), int, bool, std::string_view, std::int64_t> table[] = {
        {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_CANCELLED, true, domaineUrl, -999},
        {webkit_policy_error_quark, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE, true, domaineWebKit, 102},
        {g_resolver_error_quark, G_RESOLVER_ERROR_TEMPORARY_FAILURE, true, domaineUrl, -1009},  // no DNS server
        {g_resolver_error_quark, G_RESOLVER_ERROR_NOT_FOUND, true, domaineUrl, -1003},
        // Offline, a name that can't be resolved says nothing about the name.
        {g_resolver_error_quark, G_RESOLVER_ERROR_NOT_FOUND, false, domaineUrl, -1009},
        {g_io_error_quark, G_IO_ERROR_HOST_NOT_FOUND, false, domaineUrl, -1009},
        {g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, true, domaineUrl, -1004},
        {g_io_error_quark, G_IO_ERROR_TIMED_OUT, true, domaineUrl, -1001},
        {g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, true, domaineUrl, -1005},  // closed unanswered
        {g_tls_error_quark, G_TLS_ERROR_HANDSHAKE, true, domaineUrl, -1200},
        // Outside the table: its own domain and code; a refused certificate can come back as
        // G_IO_ERROR_CANCELLED, never a silent cancel then.
        {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST, true, "WebKitNetworkError", WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST},
        {g_io_error_quark, G_IO_ERROR_CANCELLED, true, "g-io-error-quark", G_IO_ERROR_CANCELLED},
    };
    // clang-format on
    for (const auto& [domaine, code, reseau, domaineAttendu, codeAttendu] : table) {
        GError* erreur = g_error_new_literal(domaine(), code, "message du moteur");
        const auto traduite = erreurDepuisGError(erreur, reseau);
        g_error_free(erreur);
        EXPECT_EQ(std::tie(traduite.domaine, traduite.code, traduite.description),
                  std::tuple(domaineAttendu, codeAttendu, "message du moteur"))
            << g_quark_to_string(domaine()) << "/" << code << " " << reseau;
    }
    // A refused certificate: its faults, the code its most telling one gives.
    const std::pair<int, std::int64_t> certificats[] = {
        {G_TLS_CERTIFICATE_EXPIRED | G_TLS_CERTIFICATE_UNKNOWN_CA, -1201},
        {G_TLS_CERTIFICATE_NOT_ACTIVATED, -1204},
        {G_TLS_CERTIFICATE_BAD_IDENTITY, -1202},
        {G_TLS_CERTIFICATE_REVOKED, -1200},
    };
    for (const auto& [defauts, code] : certificats) {
        const auto erreur = erreurTls(GTlsCertificateFlags(defauts), "x");
        EXPECT_EQ(std::tie(erreur.domaine, erreur.code), std::tuple(domaineUrl, code)) << defauts;
    }
}

TEST(FichierReglages, RelitSansCacheRetireUneCleSeuleEtMetDeCoteUnFichierCorrompu) {
    const auto dossier =
        std::filesystem::temp_directory_path() / ("brindex-reglages-" + std::to_string(::getpid()));
    const std::string chemin = (dossier / "brindex" / "brindex.conf").string();
    std::filesystem::remove_all(dossier);
    ReglagesGtk reglages(chemin);
    EXPECT_EQ(reglages.lire("espaceURL"), std::nullopt);
    reglages.ecrire("espaceURL", std::string("https://espace.exemple.example/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "https://espace.exemple.example/") << "its folder made";
    // Another writer's change shows at the next read.
    ReglagesGtk(chemin).ecrire("BrindexPrincipaleLargeur", std::string("1400"));
    reglages.ecrire("espaceURL", std::nullopt);
    EXPECT_EQ(std::tuple(reglages.lire("espaceURL"), reglages.lire("BrindexPrincipaleLargeur")),
              std::tuple(std::nullopt, "1400"));
    // A corrupt file reads as empty and is kept aside; the first copy is never replaced.
    std::ofstream(chemin) << "ceci n'est pas un fichier de clés\n[[[";
    EXPECT_EQ(reglages.lire("BrindexPrincipaleLargeur"), std::nullopt);
    reglages.ecrire("espaceURL", std::string("http://10.0.0.2/"));
    EXPECT_EQ(reglages.lire("espaceURL"), "http://10.0.0.2/");
    std::ofstream(chemin) << "[[[ encore";
    reglages.lire("espaceURL");
    std::stringstream copie;
    copie << std::ifstream(chemin + ".bak").rdbuf();
    EXPECT_NE(copie.str().find("clés\n[[["), std::string::npos);
    std::filesystem::remove_all(dossier);
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

TEST(TransportSoup, RapporteStatutCorpsEtAgentSuitLesRedirectionsBorneLesCorpsEtLeTemps) {
    ServeurLocal serveur;
    auto e = echanger(serveur.url("/health"));
    EXPECT_EQ(std::tie(e.erreur, e.reponse, e.statut, e.corps),
              std::tuple(std::nullopt, EchangeTermine::Reponse::http, 200,
                         R"({"status":"up","service":"brindex"})"));
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
    // Failures, in the core's codes: "/goutte" never ends and never fills, yet its time-out holds.
    const std::string fermee = [] { return ServeurLocal().url("/health"); }();
    // clang-format off
    const std::tuple<std::string, double, std::int64_t> cas[] = {
        {fermee, 8, -1004}, {serveur.url("/muet"), 1, -1001}, {serveur.url("/goutte"), 1, -1001},
        {"http://introuvable.invalid/health", 8, -1003}, {"pas une url", 8, -1000}};
    // clang-format on
    for (const auto& [url, delai, code] : cas) {
        const auto erreur = echanger(url, delai).erreur;
        EXPECT_EQ(erreur ? erreur->code : 0, code) << url;
    }
}

}  // namespace
}  // namespace brindex::gtk
