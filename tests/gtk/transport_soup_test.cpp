#include <gtest/gtest.h>
#include <libsoup/soup.h>

#include <string>
#include <vector>

#include "transport_soup.hpp"

namespace brindex::gtk {
namespace {

// A local server in the same process, answering from the main loop the test turns.
class ServeurLocal {
  public:
    ServeurLocal() : serveur_(soup_server_new(nullptr, nullptr)) {
        soup_server_add_handler(serveur_, nullptr, repondre, this, nullptr);
        soup_server_listen_local(serveur_, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
        GSList* uris = soup_server_get_uris(serveur_);
        port_ = g_uri_get_port(static_cast<GUri*>(uris->data));
        g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    }
    ~ServeurLocal() {
        soup_server_disconnect(serveur_);
        g_object_unref(serveur_);
    }
    std::string url(const std::string& chemin) const {
        return "http://127.0.0.1:" + std::to_string(port_) + chemin;
    }
    std::vector<std::string> agents;

  private:
    static void repondre(SoupServer*, SoupServerMessage* message, const char* chemin, GHashTable*,
                         gpointer donnees) {
        auto* soi = static_cast<ServeurLocal*>(donnees);
        const char* agent = soup_message_headers_get_one(
            soup_server_message_get_request_headers(message), "User-Agent");
        soi->agents.push_back(agent ? agent : "");
        const std::string c = chemin;
        if (c == "/ancien") {
            soup_server_message_set_redirect(message, 302, "/health");
        } else if (c == "/muet") {
            soup_server_message_pause(message);  // never answers
        } else if (c.starts_with("/sans-fin")) {
            // An endless body, written as fast as it is read; the marker first, or never.
            soup_server_message_set_status(message, 200, nullptr);
            soup_message_headers_set_encoding(soup_server_message_get_response_headers(message),
                                              SOUP_ENCODING_CHUNKED);
            const bool marqueur = c == "/sans-fin/marqueur";
            soup_message_body_append(soup_server_message_get_response_body(message),
                                     SOUP_MEMORY_COPY, marqueur ? R"({"service":"brindex"})" : "{",
                                     marqueur ? 21 : 1);
            g_signal_connect(message, "wrote-chunk", G_CALLBACK(+[](SoupServerMessage* m) {
                                 static const std::string morceau(16 * 1024, ' ');
                                 soup_message_body_append(soup_server_message_get_response_body(m),
                                                          SOUP_MEMORY_STATIC, morceau.data(),
                                                          morceau.size());
                             }),
                             nullptr);
        } else if (c == "/goutte") {
            // Headers at once, then one byte now and then, for ever.
            soup_server_message_set_status(message, 200, nullptr);
            soup_message_headers_set_encoding(soup_server_message_get_response_headers(message),
                                              SOUP_ENCODING_CHUNKED);
            const guint goutte = g_timeout_add_full(
                G_PRIORITY_DEFAULT, 200,
                +[](gpointer m) -> gboolean {
                    auto* sm = SOUP_SERVER_MESSAGE(m);
                    soup_message_body_append(soup_server_message_get_response_body(sm),
                                             SOUP_MEMORY_STATIC, " ", 1);
                    soup_server_message_unpause(sm);
                    return G_SOURCE_CONTINUE;
                },
                g_object_ref(message), g_object_unref);
            g_signal_connect(message, "disconnected",
                             G_CALLBACK(+[](SoupServerMessage*, gpointer id) {
                                 g_source_remove(GPOINTER_TO_UINT(id));
                             }),
                             GUINT_TO_POINTER(goutte));
        } else {
            const std::string corps = R"({"status":"up","service":"brindex"})";
            soup_server_message_set_status(message, 200, nullptr);
            soup_server_message_set_response(message, "application/json", SOUP_MEMORY_COPY,
                                             corps.data(), corps.size());
        }
    }
    SoupServer* serveur_;
    int port_ = 0;
};

std::vector<EchangeTermine> echanger(const std::string& url, double delai = 8) {
    TransportSoup transport;
    std::vector<EchangeTermine> recus;
    transport.envoyer({url, "GET", "Brindex-Desktop/1.0.0", delai, true},
                      [&](EchangeTermine e) { recus.push_back(std::move(e)); });
    const gint64 limite = g_get_monotonic_time() + 15 * G_USEC_PER_SEC;
    while (recus.empty() && g_get_monotonic_time() < limite)
        g_main_context_iteration(nullptr, TRUE);
    // Nothing more may come afterwards.
    for (int i = 0; i < 20; ++i) g_main_context_iteration(nullptr, FALSE);
    return recus;
}

TEST(TransportSoup, RapporteStatutCorpsEtEnvoieLAgent) {
    ServeurLocal serveur;
    const auto recus = echanger(serveur.url("/health"));
    ASSERT_EQ(recus.size(), 1u);
    EXPECT_FALSE(recus[0].erreur);
    EXPECT_EQ(recus[0].reponse, EchangeTermine::Reponse::http);
    EXPECT_EQ(recus[0].statut, 200);
    EXPECT_EQ(recus[0].corps, R"({"status":"up","service":"brindex"})");
    EXPECT_EQ(serveur.agents, std::vector<std::string>{"Brindex-Desktop/1.0.0"});
}

TEST(TransportSoup, SuitLesRedirections) {
    ServeurLocal serveur;
    const auto recus = echanger(serveur.url("/ancien"));
    ASSERT_EQ(recus.size(), 1u);
    EXPECT_EQ(recus[0].statut, 200);
    EXPECT_EQ(serveur.agents.size(), 2u);
}

TEST(TransportSoup, PortFermeEtDelaiDepasse) {
    std::string fermee;
    {
        ServeurLocal disparu;
        fermee = disparu.url("/health");
    }
    auto recus = echanger(fermee);
    ASSERT_EQ(recus.size(), 1u);
    ASSERT_TRUE(recus[0].erreur);
    EXPECT_EQ(recus[0].erreur->code, -1004);

    ServeurLocal serveur;
    recus = echanger(serveur.url("/muet"), 1);
    ASSERT_EQ(recus.size(), 1u);
    ASSERT_TRUE(recus[0].erreur);
    EXPECT_EQ(recus[0].erreur->code, -1001);
}

TEST(TransportSoup, CorpsSansFinLuJusquAuMarqueurOuALaLimite) {
    ServeurLocal serveur;
    const gint64 debut = g_get_monotonic_time();
    auto recus = echanger(serveur.url("/sans-fin/marqueur"));
    ASSERT_EQ(recus.size(), 1u);
    EXPECT_EQ(recus[0].statut, 200);
    EXPECT_TRUE(recus[0].corpsPartiel);
    EXPECT_LT(recus[0].corps->size(), limiteCorpsSonde);
    recus = echanger(serveur.url("/sans-fin"));
    ASSERT_EQ(recus.size(), 1u);
    EXPECT_EQ(recus[0].corps->size(), limiteCorpsSonde);
    EXPECT_LT(g_get_monotonic_time() - debut, 2 * G_USEC_PER_SEC);
    // A body that never ends and never fills keeps to the delay.
    recus = echanger(serveur.url("/goutte"), 1);
    ASSERT_EQ(recus.size(), 1u);
    ASSERT_TRUE(recus[0].erreur);
    EXPECT_EQ(recus[0].erreur->code, -1001);
}

TEST(TransportSoup, HoteIntrouvableEtAdresseInvalide) {
    auto recus = echanger("http://introuvable.invalid/health");
    ASSERT_EQ(recus.size(), 1u);
    ASSERT_TRUE(recus[0].erreur);
    EXPECT_EQ(recus[0].erreur->code, -1003);

    recus = echanger("pas une url");
    ASSERT_EQ(recus.size(), 1u);
    ASSERT_TRUE(recus[0].erreur);
}

}  // namespace
}  // namespace brindex::gtk
