#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <ostream>

#include "erreurs_gtk.hpp"

namespace brindex::gtk {
namespace {

struct Cas {
    GQuark (*domaine)();
    int code;
    std::string_view domaineAttendu;
    std::int64_t codeAttendu;
};

void PrintTo(const Cas& cas, std::ostream* os) {
    *os << g_quark_to_string(cas.domaine()) << '/' << cas.code;
}

class CorrespondanceErreurs : public testing::TestWithParam<Cas> {};

TEST_P(CorrespondanceErreurs, DonneLeVocabulaireDuCoeur) {
    const Cas& cas = GetParam();
    GError* erreur = g_error_new_literal(cas.domaine(), cas.code, "message du moteur");
    const auto traduite = erreurDepuisGError(erreur);
    g_error_free(erreur);
    EXPECT_EQ(traduite.domaine, cas.domaineAttendu);
    EXPECT_EQ(traduite.code, cas.codeAttendu);
    EXPECT_EQ(traduite.description, "message du moteur");
}

INSTANTIATE_TEST_SUITE_P(
    Table, CorrespondanceErreurs,
    testing::Values(
        Cas{webkit_network_error_quark, WEBKIT_NETWORK_ERROR_CANCELLED, domaineUrl, -999},
        Cas{webkit_policy_error_quark, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE,
            domaineWebKit, 102},
        Cas{g_resolver_error_quark, G_RESOLVER_ERROR_NOT_FOUND, domaineUrl, -1003},
        Cas{g_resolver_error_quark, G_RESOLVER_ERROR_TEMPORARY_FAILURE, domaineUrl, -1003},
        Cas{g_io_error_quark, G_IO_ERROR_HOST_NOT_FOUND, domaineUrl, -1003},
        Cas{g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, domaineUrl, -1004},
        Cas{g_io_error_quark, G_IO_ERROR_HOST_UNREACHABLE, domaineUrl, -1004},
        Cas{g_io_error_quark, G_IO_ERROR_TIMED_OUT, domaineUrl, -1001},
        Cas{g_io_error_quark, G_IO_ERROR_NETWORK_UNREACHABLE, domaineUrl, -1009},
        Cas{g_io_error_quark, G_IO_ERROR_CONNECTION_CLOSED, domaineUrl, -1005},
        Cas{g_io_error_quark, G_IO_ERROR_BROKEN_PIPE, domaineUrl, -1005},
        Cas{g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, domaineUrl, -1005},
        Cas{g_tls_error_quark, G_TLS_ERROR_BAD_CERTIFICATE, domaineUrl, -1202},
        Cas{g_tls_error_quark, G_TLS_ERROR_HANDSHAKE, domaineUrl, -1200},
        // Outside the table: its own domain and code.
        Cas{webkit_network_error_quark, WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST,
            "WebKitNetworkError", WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST},
        Cas{g_io_error_quark, G_IO_ERROR_PERMISSION_DENIED, "g-io-error-quark",
            G_IO_ERROR_PERMISSION_DENIED},
        // Never a silent cancel: a refused certificate can come back as this one.
        Cas{g_io_error_quark, G_IO_ERROR_CANCELLED, "g-io-error-quark", G_IO_ERROR_CANCELLED}));

TEST(CertificatRefuse, LeDefautLePlusParlantDonneLeCode) {
    EXPECT_EQ(erreurTls(G_TLS_CERTIFICATE_EXPIRED, "").code, -1201);
    EXPECT_EQ(erreurTls(G_TLS_CERTIFICATE_NOT_ACTIVATED, "").code, -1204);
    EXPECT_EQ(erreurTls(G_TLS_CERTIFICATE_UNKNOWN_CA, "").code, -1202);
    EXPECT_EQ(erreurTls(G_TLS_CERTIFICATE_BAD_IDENTITY, "").code, -1202);
    EXPECT_EQ(erreurTls(G_TLS_CERTIFICATE_REVOKED, "").code, -1200);
    EXPECT_EQ(
        erreurTls(GTlsCertificateFlags(G_TLS_CERTIFICATE_EXPIRED | G_TLS_CERTIFICATE_UNKNOWN_CA),
                  "x")
            .domaine,
        domaineUrl);
}

}  // namespace
}  // namespace brindex::gtk
