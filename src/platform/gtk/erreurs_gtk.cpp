#include "erreurs_gtk.hpp"

#include <webkit/webkit.h>

#include <cstdint>
#include <string_view>

namespace brindex::gtk {

namespace {

struct Correspondance {
    GQuark (*domaine)();
    int code;  // -1: every code of the domain
    std::string_view domaineCible;
    std::int64_t codeCible;
};

// WebKitGTK reports network failures with GLib's own errors: a refused port is
// G_IO_ERROR_CONNECTION_REFUSED, an unknown host a G_RESOLVER_ERROR (a temporary one when no
// DNS server can be reached), a server that closes
// without answering G_IO_ERROR_PARTIAL_INPUT. A load the user stopped or replaced comes as
// WebKitNetworkError/302; G_IO_ERROR_CANCELLED is left out on purpose, since a refused
// certificate can come back as it and must not pass for a silent cancel.
const Correspondance table[] = {
    {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_CANCELLED, domaineUrl, -999},
    {webkit_policy_error_quark, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE,
     domaineWebKit, 102},
    {g_resolver_error_quark, G_RESOLVER_ERROR_TEMPORARY_FAILURE, domaineUrl, -1009},
    {g_resolver_error_quark, -1, domaineUrl, -1003},
    {g_io_error_quark, G_IO_ERROR_HOST_NOT_FOUND, domaineUrl, -1003},
    {g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, domaineUrl, -1004},
    {g_io_error_quark, G_IO_ERROR_HOST_UNREACHABLE, domaineUrl, -1004},
    {g_io_error_quark, G_IO_ERROR_TIMED_OUT, domaineUrl, -1001},
    {g_io_error_quark, G_IO_ERROR_NETWORK_UNREACHABLE, domaineUrl, -1009},
    {g_io_error_quark, G_IO_ERROR_CONNECTION_CLOSED, domaineUrl, -1005},
    {g_io_error_quark, G_IO_ERROR_BROKEN_PIPE, domaineUrl, -1005},
    {g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, domaineUrl, -1005},
    {g_tls_error_quark, G_TLS_ERROR_BAD_CERTIFICATE, domaineUrl, -1202},
    {g_tls_error_quark, -1, domaineUrl, -1200},
};

}  // namespace

ErreurChargement erreurDepuisGError(const GError* erreur, bool reseau) {
    if (!erreur) return {std::string(domaineUrl), -1, "Erreur inconnue"};
    const std::string message = erreur->message ? erreur->message : "";
    for (const auto& c : table) {
        if (erreur->domain == c.domaine() && (c.code == -1 || c.code == erreur->code)) {
            // Offline, every name is "not found": the network is what is missing.
            const bool horsLigne = c.codeCible == -1003 && !reseau;
            return {std::string(c.domaineCible), horsLigne ? -1009 : c.codeCible, message};
        }
    }
    const char* domaine = g_quark_to_string(erreur->domain);
    return {domaine ? domaine : "", erreur->code, message};
}

ErreurChargement erreurTls(GTlsCertificateFlags defauts, std::string description) {
    std::int64_t code = -1200;
    if (defauts & G_TLS_CERTIFICATE_EXPIRED) {
        code = -1201;
    } else if (defauts & G_TLS_CERTIFICATE_NOT_ACTIVATED) {
        code = -1204;
    } else if (defauts & (G_TLS_CERTIFICATE_UNKNOWN_CA | G_TLS_CERTIFICATE_BAD_IDENTITY)) {
        code = -1202;
    }
    return {std::string(domaineUrl), code, std::move(description)};
}

}  // namespace brindex::gtk
