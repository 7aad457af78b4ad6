#include "transport_soup.hpp"

#include <libsoup/soup.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "erreurs_gtk.hpp"

namespace brindex::gtk {

namespace {

// Everything one exchange needs until its answer.
struct Echange {
    SoupSession* session = nullptr;
    SoupMessage* message = nullptr;
    GInputStream* flux = nullptr;
    GCancellable* annulation = g_cancellable_new();
    guint minuterie = 0;
    bool expire = false;
    std::string corps;
    std::function<void(EchangeTermine)> fin;

    ~Echange() {
        if (minuterie) g_source_remove(minuterie);
        // Closing a body that isn't read to its end would read (and wait for) the rest: the
        // exchange is cancelled and its session aborted first, so nothing more is read.
        g_cancellable_cancel(annulation);
        if (session) soup_session_abort(session);
        if (flux) {
            g_input_stream_close(flux, annulation, nullptr);
            g_object_unref(flux);
        }
        g_object_unref(annulation);
        if (message) g_object_unref(message);
        if (session) g_object_unref(session);
    }
};

ErreurTransport erreurTransport(const Echange& echange, const GError* erreur) {
    if (echange.expire) return {-1001, "La requête a expiré."};
    if (g_error_matches(erreur, G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE) && echange.message) {
        const auto tls = erreurTls(soup_message_get_tls_peer_certificate_errors(echange.message),
                                   erreur->message);
        return {tls.code, tls.description};
    }
    const auto traduite = erreurDepuisGError(erreur);
    // A failure outside the table keeps its message; its code matches no known case.
    if (traduite.domaine != domaineUrl) return {0, traduite.description};
    return {traduite.code, traduite.description};
}

void terminer(Echange* echange, EchangeTermine termine) {
    auto fin = std::move(echange->fin);
    delete echange;
    if (fin) fin(std::move(termine));
}

void echouer(Echange* echange, GError* erreur) {
    EchangeTermine termine;
    termine.erreur = erreurTransport(*echange, erreur);
    g_clear_error(&erreur);
    terminer(echange, std::move(termine));
}

void lireSuite(Echange* echange);

// One more piece of the body; reading stops at its end, at the marker or at the bound.
void surLecture(GObject* source, GAsyncResult* resultat, gpointer donnees) {
    auto* echange = static_cast<Echange*>(donnees);
    GError* erreur = nullptr;
    GBytes* morceau = g_input_stream_read_bytes_finish(G_INPUT_STREAM(source), resultat, &erreur);
    if (!morceau) return echouer(echange, erreur);
    gsize taille = 0;
    const auto* octets = static_cast<const char*>(g_bytes_get_data(morceau, &taille));
    echange->corps.append(octets ? octets : "", taille);
    g_bytes_unref(morceau);
    const bool fini = taille == 0;
    if (!fini && !lectureSuffisante(echange->corps)) return lireSuite(echange);
    EchangeTermine termine;
    termine.reponse = EchangeTermine::Reponse::http;
    termine.statut = static_cast<int>(soup_message_get_status(echange->message));
    termine.corps = std::move(echange->corps);
    termine.corpsPartiel = !fini;
    terminer(echange, std::move(termine));
}

void lireSuite(Echange* echange) {
    const std::size_t reste = limiteCorpsSonde - echange->corps.size();
    g_input_stream_read_bytes_async(echange->flux, std::min<std::size_t>(reste, 16 * 1024),
                                    G_PRIORITY_DEFAULT, echange->annulation, surLecture, echange);
}

void surEnvoi(GObject* source, GAsyncResult* resultat, gpointer donnees) {
    auto* echange = static_cast<Echange*>(donnees);
    GError* erreur = nullptr;
    echange->flux = soup_session_send_finish(SOUP_SESSION(source), resultat, &erreur);
    if (!echange->flux) return echouer(echange, erreur);
    lireSuite(echange);
}

}  // namespace

void TransportSoup::envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) {
    auto* echange = new Echange;
    echange->fin = std::move(fin);
    echange->message = soup_message_new(requete.methode.c_str(), requete.url.c_str());
    if (!echange->message) {
        // Answered later, like any other exchange.
        g_idle_add_once(
            [](gpointer d) {
                auto* e = static_cast<Echange*>(d);
                EchangeTermine termine;
                termine.erreur = ErreurTransport{-1000, "Adresse invalide."};
                auto rappel = std::move(e->fin);
                delete e;
                if (rappel) rappel(std::move(termine));
            },
            echange);
        return;
    }
    const auto secondes = static_cast<guint>(std::ceil(requete.delaiSecondes));
    echange->session =
        soup_session_new_with_options("timeout", secondes, "idle-timeout", secondes, "user-agent",
                                      requete.agentUtilisateur.c_str(), nullptr);
    // The time-out covers the whole exchange, name resolution included.
    echange->minuterie = g_timeout_add(
        static_cast<guint>(requete.delaiSecondes * 1000),
        [](gpointer d) -> gboolean {
            auto* e = static_cast<Echange*>(d);
            e->minuterie = 0;
            e->expire = true;
            g_cancellable_cancel(e->annulation);
            return G_SOURCE_REMOVE;
        },
        echange);
    if (requete.ignorerCache) {
        soup_message_disable_feature(echange->message, SOUP_TYPE_CACHE);
    }
    soup_session_send_async(echange->session, echange->message, G_PRIORITY_DEFAULT,
                            echange->annulation, surEnvoi, echange);
}

}  // namespace brindex::gtk
