#include "vue_web_gtk.hpp"

#include <string>
#include <vector>

#include "container/recherche.hpp"
#include "erreurs_gtk.hpp"
#include "impression_gtk.hpp"

namespace brindex::gtk {

namespace {

VueWebGtk* soi(gpointer donnees) {
    return static_cast<VueWebGtk*>(donnees);
}

std::optional<std::string> texte(const char* c) {
    if (!c) return std::nullopt;
    return std::string(c);
}

WebKitSettings* reglagesMoteur(const ParametresVueWeb& parametres) {
    WebKitSettings* reglages = webkit_settings_new();
    // "Name/Version" is appended to the engine's own user agent.
    const std::string& suffixe = parametres.agentSuffixe;
    const auto barre = suffixe.find('/');
    const std::string nom = suffixe.substr(0, barre);
    const std::string version = barre == std::string::npos ? "" : suffixe.substr(barre + 1);
    webkit_settings_set_user_agent_with_application_details(reglages, nom.c_str(), version.c_str());
    webkit_settings_set_enable_back_forward_navigation_gestures(reglages,
                                                                parametres.gestesHistorique);
    return reglages;
}

ActionNavigation actionDepuis(WebKitNavigationAction* action, CadreCible cible) {
    ActionNavigation valeur;
    valeur.gesteUtilisateur = webkit_navigation_action_is_user_gesture(action) != FALSE;
    WebKitURIRequest* requete = webkit_navigation_action_get_request(action);
    valeur.url = texte(requete ? webkit_uri_request_get_uri(requete) : nullptr);
    switch (webkit_navigation_action_get_navigation_type(action)) {
        case WEBKIT_NAVIGATION_TYPE_LINK_CLICKED:
            valeur.type = TypeNavigation::lienActive;
            break;
        case WEBKIT_NAVIGATION_TYPE_FORM_SUBMITTED:
        case WEBKIT_NAVIGATION_TYPE_FORM_RESUBMITTED:
            valeur.type = TypeNavigation::formulaire;
            break;
        case WEBKIT_NAVIGATION_TYPE_BACK_FORWARD:
        case WEBKIT_NAVIGATION_TYPE_RELOAD:
        case WEBKIT_NAVIGATION_TYPE_OTHER:
            valeur.type = TypeNavigation::autre;
            break;
    }
    valeur.cible = cible;
    return valeur;
}

void appliquer(WebKitPolicyDecision* decision, Politique politique) {
    switch (politique) {
        case Politique::autoriser:
            webkit_policy_decision_use(decision);
            return;
        case Politique::telecharger:
            webkit_policy_decision_download(decision);
            return;
        case Politique::annuler:
        case Politique::differer:
            webkit_policy_decision_ignore(decision);
            return;
    }
    webkit_policy_decision_ignore(decision);
}

}  // namespace

// One page dialog, held (one reference) until its answer. WebKit releases the dialog itself
// right after the signal and closes it then: a dialog answered inside the signal must only be
// filled in, never closed, or WebKit releases a dialog that is already gone.
struct DialogueEnAttente {
    explicit DialogueEnAttente(WebKitScriptDialog* d) : dialogue(webkit_script_dialog_ref(d)) {}
    ~DialogueEnAttente() { webkit_script_dialog_unref(dialogue); }
    DialogueEnAttente(const DialogueEnAttente&) = delete;
    DialogueEnAttente& operator=(const DialogueEnAttente&) = delete;

    // The answer is filled in; after the signal, it is also handed to the page.
    void terminer() {
        if (!dansSignal) webkit_script_dialog_close(dialogue);
    }

    WebKitScriptDialog* dialogue;
    bool dansSignal = true;
};

VueWebGtk::VueWebGtk(const ParametresVueWeb& parametres, WebKitWebView* ouvreur,
                     WebKitNetworkSession* session, std::weak_ptr<Controleur> controleur,
                     bool sansComposition)
    : controleur_(std::move(controleur)) {
    WebKitSettings* reglages = reglagesMoteur(parametres);
    if (sansComposition) {
        webkit_settings_set_hardware_acceleration_policy(reglages,
                                                         WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    }
    GObject* objet = nullptr;
    if (ouvreur) {
        // A popup must share its opener's web process and session.
        objet = static_cast<GObject*>(g_object_new(WEBKIT_TYPE_WEB_VIEW, "related-view", ouvreur,
                                                   "settings", reglages, nullptr));
    } else {
        objet = static_cast<GObject*>(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session,
                                                   "settings", reglages, nullptr));
    }
    g_object_unref(reglages);
    vue_ = Ref<WebKitWebView>::prendre(WEBKIT_WEB_VIEW(objet));
    const GdkRGBA fond = rgba(Marque::fond);
    webkit_web_view_set_background_color(vue_.get(), &fond);
    gtk_widget_set_hexpand(widget(), TRUE);
    gtk_widget_set_vexpand(widget(), TRUE);
    connecter();
    ++vivantes_;
    jalon("vue web creee");
}

VueWebGtk::~VueWebGtk() {
    --vivantes_;
    detacher();
    // Dialogs still open answer now, while their view is still there to hear it.
    for (const auto& faible : dialogues_) {
        if (const auto d = faible.lock()) webkit_script_dialog_close(d->dialogue);
    }
}

void VueWebGtk::connecter() {
    WebKitWebView* v = vue_.get();
    g_signal_connect(v, "decide-policy", G_CALLBACK(surPolitique), this);
    g_signal_connect(v, "load-changed", G_CALLBACK(surChargement), this);
    g_signal_connect(v, "load-failed", G_CALLBACK(surEchec), this);
    g_signal_connect(v, "load-failed-with-tls-errors", G_CALLBACK(surEchecTls), this);
    g_signal_connect(v, "create", G_CALLBACK(surCreation), this);
    g_signal_connect(v, "ready-to-show", G_CALLBACK(surPret), this);
    g_signal_connect(v, "close", G_CALLBACK(surFermeture), this);
    g_signal_connect(v, "script-dialog", G_CALLBACK(surDialogue), this);
    g_signal_connect(v, "run-file-chooser", G_CALLBACK(surChoixFichiers), this);
    g_signal_connect(v, "notify::title", G_CALLBACK(surTitre), this);
    g_signal_connect(v, "notify::estimated-load-progress", G_CALLBACK(surProgression), this);
    g_signal_connect(v, "web-process-terminated", G_CALLBACK(surFinProcessus), this);
    g_signal_connect(v, "authenticate", G_CALLBACK(surAuthentification), this);
    g_signal_connect(v, "print", G_CALLBACK(surImpression), this);
    WebKitFindController* recherche = webkit_web_view_get_find_controller(v);
    g_signal_connect(recherche, "found-text", G_CALLBACK(surTrouve), this);
    g_signal_connect(recherche, "failed-to-find-text", G_CALLBACK(surIntrouvable), this);
    // Presses inside the page, seen before the page sees them: they are what lets a page open
    // a window or hand a link to another application.
    entrees_ = gtk_event_controller_legacy_new();
    gtk_event_controller_set_propagation_phase(entrees_, GTK_PHASE_CAPTURE);
    g_signal_connect(entrees_, "event", G_CALLBACK(surEntree), this);
    gtk_widget_add_controller(widget(), entrees_);
}

void VueWebGtk::detacher() {
    if (!attachee_) return;
    attachee_ = false;
    annulerDelai();
    if (const auto decision = std::exchange(enAttente_, {})) {
        webkit_policy_decision_ignore(decision.get());
    }
    pretAAfficher = nullptr;
    if (!vue_) return;
    g_signal_handlers_disconnect_by_data(vue_.get(), this);
    g_signal_handlers_disconnect_by_data(webkit_web_view_get_find_controller(vue_.get()), this);
    if (entrees_) g_signal_handlers_disconnect_by_data(entrees_, this);
}

// ---- Commands ----

void VueWebGtk::charger(const std::string& url, double delaiSecondes) {
    annulerDelai();
    delaiMs_ = delaiSecondes > 0 ? static_cast<guint>(delaiSecondes * 1000) : 0;
    if (delaiMs_ > 0) delai_ = g_timeout_add(delaiMs_, surDelaiDepasse, this);
    jalon("chargement demande");
    webkit_web_view_load_uri(vue_.get(), url.c_str());
}
void VueWebGtk::arreter() {
    annulerDelai();
    webkit_web_view_stop_loading(vue_.get());
}
void VueWebGtk::recharger() {
    webkit_web_view_reload(vue_.get());
}
void VueWebGtk::rechargerOrigine() {
    webkit_web_view_reload_bypass_cache(vue_.get());
}
void VueWebGtk::reculer() {
    webkit_web_view_go_back(vue_.get());
}
void VueWebGtk::avancer() {
    webkit_web_view_go_forward(vue_.get());
}
double VueWebGtk::zoom() const {
    return webkit_web_view_get_zoom_level(vue_.get());
}
void VueWebGtk::definirZoom(double zoom) {
    webkit_web_view_set_zoom_level(vue_.get(), zoom);
}
std::optional<std::string> VueWebGtk::url() const {
    return texte(webkit_web_view_get_uri(vue_.get()));
}
std::optional<std::string> VueWebGtk::titre() const {
    return texte(webkit_web_view_get_title(vue_.get()));
}
double VueWebGtk::progression() const {
    return webkit_web_view_get_estimated_load_progress(vue_.get());
}
void VueWebGtk::terminerProcessus() {
    webkit_web_view_terminate_web_process(vue_.get());
}
void VueWebGtk::essayerFermer() {
    // WebKit may agree before this returns ("close"), and the controller tear this view down
    // then: it stays until WebKit is done.
    const auto garde = shared_from_this();
    webkit_web_view_try_close(vue_.get());
}
bool VueWebGtk::aUnePageARecharger() const {
    return webkit_back_forward_list_get_current_item(
               webkit_web_view_get_back_forward_list(vue_.get())) != nullptr;
}
std::vector<std::string> VueWebGtk::historiqueArriere(std::size_t maximum) const {
    std::vector<std::string> urls;
    WebKitBackForwardList* liste = webkit_web_view_get_back_forward_list(vue_.get());
    for (std::size_t i = 1; i <= maximum; ++i) {
        WebKitBackForwardListItem* element =
            webkit_back_forward_list_get_nth_item(liste, -static_cast<gint>(i));
        if (!element) break;
        const char* uri = webkit_back_forward_list_item_get_uri(element);
        urls.emplace_back(uri ? uri : "");
    }
    return urls;
}
void VueWebGtk::reculerDe(std::size_t pas) {
    WebKitBackForwardList* liste = webkit_web_view_get_back_forward_list(vue_.get());
    if (WebKitBackForwardListItem* element =
            webkit_back_forward_list_get_nth_item(liste, -static_cast<gint>(pas))) {
        webkit_web_view_go_to_back_forward_list_item(vue_.get(), element);
    }
}

void VueWebGtk::appliquerPolitique(WebKitPolicyDecision* decision, Politique politique) {
    if (politique != Politique::differer) return appliquer(decision, politique);
    // A new one replaces the one waiting, which the user is still being asked about.
    if (const auto precedente =
            std::exchange(enAttente_, Ref<WebKitPolicyDecision>::partager(decision))) {
        webkit_policy_decision_ignore(precedente.get());
        return;
    }
    attendreUtilisateur(true);
}

void VueWebGtk::trancher(Politique politique) {
    const auto decision = std::exchange(enAttente_, {});
    if (!decision) return;
    attendreUtilisateur(false);
    appliquer(decision.get(), politique);
}

void VueWebGtk::attendreUtilisateur(bool attente) {
    if (attente) {
        if (attentesUtilisateur_++ == 0 && delai_ != 0) {
            annulerDelai();
            delaiSuspendu_ = true;
        }
        return;
    }
    if (attentesUtilisateur_ > 0 && --attentesUtilisateur_ == 0 && delaiSuspendu_) {
        delaiSuspendu_ = false;
        delai_ = g_timeout_add(delaiMs_, surDelaiDepasse, this);
    }
}

void VueWebGtk::chercher(const std::string& texte, SensRecherche sens) {
    WebKitFindController* recherche = webkit_web_view_get_find_controller(vue_.get());
    switch (sens) {
        case SensRecherche::nouvelle:
            // WebKit searches on from the page's selection: without one, from the top.
            webkit_web_view_evaluate_javascript(vue_.get(), "getSelection().removeAllRanges()", -1,
                                                "brindex", nullptr, nullptr, nullptr, nullptr);
            webkit_find_controller_search(
                recherche, texte.c_str(),
                WEBKIT_FIND_OPTIONS_CASE_INSENSITIVE | WEBKIT_FIND_OPTIONS_WRAP_AROUND,
                resultatsRechercheMax);
            return;
        case SensRecherche::suivante:
            webkit_find_controller_search_next(recherche);
            return;
        case SensRecherche::precedente:
            webkit_find_controller_search_previous(recherche);
            return;
    }
}
void VueWebGtk::finirRecherche() {
    webkit_find_controller_search_finish(webkit_web_view_get_find_controller(vue_.get()));
}
void VueWebGtk::focaliser() {
    gtk_widget_grab_focus(widget());
}
void VueWebGtk::imprimer(const std::string& fichierPdf, std::function<void()> ferme) {
    std::weak_ptr<VueWebGtk> faible = weak_from_this();
    dialogueImpression(vue_.get(), fichierPdf, std::move(ferme),
                       [faible](const std::string& description) {
                           const auto vue = faible.lock();
                           const auto c = vue ? vue->controleur_.lock() : nullptr;
                           if (c && vue->attachee_) c->impressionEchouee(*vue, description);
                       });
}

// ---- Engine callbacks ----

gboolean VueWebGtk::surPolitique(WebKitWebView*, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    const auto c = vue->controleur_.lock();
    if (!c) {
        webkit_policy_decision_ignore(decision);
        return TRUE;
    }
    switch (type) {
        case WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION:
        case WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION: {
            // WebKitGTK doesn't say which frame a navigation targets; its response does.
            const auto cible = type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION
                                   ? CadreCible::aucun
                                   : CadreCible::inconnu;
            auto* navigation = WEBKIT_NAVIGATION_POLICY_DECISION(decision);
            const auto action = actionDepuis(
                webkit_navigation_policy_decision_get_navigation_action(navigation), cible);
            if (cible == CadreCible::inconnu && action.type == TypeNavigation::lienActive &&
                action.gesteUtilisateur == true) {
                vue->deciderLienActive(decision, action);
            } else {
                vue->appliquerPolitique(decision, c->deciderAction(*vue, action));
            }
            return TRUE;
        }
        case WEBKIT_POLICY_DECISION_TYPE_RESPONSE: {
            auto* reponse = WEBKIT_RESPONSE_POLICY_DECISION(decision);
            WebKitURIResponse* r = webkit_response_policy_decision_get_response(reponse);
            ReponseNavigation valeur;
            SoupMessageHeaders* entetes = r ? webkit_uri_response_get_http_headers(r) : nullptr;
            valeur.http = entetes != nullptr;
            if (entetes) {
                valeur.contentDisposition =
                    texte(soup_message_headers_get_one(entetes, "Content-Disposition"));
            }
            valeur.typeAffichable = webkit_response_policy_decision_is_mime_type_supported(reponse);
            valeur.url = texte(r ? webkit_uri_response_get_uri(r) : nullptr);
            valeur.cadrePrincipal =
                webkit_response_policy_decision_is_main_frame_main_resource(reponse) != FALSE;
            vue->appliquerPolitique(decision, c->deciderReponse(*vue, valeur));
            return TRUE;
        }
    }
    // Deny what isn't known.
    webkit_policy_decision_ignore(decision);
    return TRUE;
}

void VueWebGtk::deciderLienActive(WebKitPolicyDecision* decision, ActionNavigation action) {
    // The user's own click or key on a link. When the page shows that it was a link of the main
    // document aimed at the document itself, the main frame navigates, and a link leaving the
    // space goes to the browser without being loaded here first. Anything else (a link inside a
    // frame, which may aim at the top or at its own frame; a link aimed at a named frame) is left
    // to the response, which names its frame. The answer waits for the page.
    static constexpr const char* corps =
        "const e = clic ? document.elementFromPoint(x, y) : document.activeElement;"
        " const a = e?.closest('a, area'); if (!a || a.href !== url) return false;"
        " return ['', '_self', '_top', '_parent'].includes("
        "(a.getAttribute('target') || '').toLowerCase());";
    const std::string url = action.url.value_or("");
    if (!g_utf8_validate(url.c_str(), static_cast<gssize>(url.size()), nullptr)) {
        if (const auto c = controleur_.lock()) {
            appliquerPolitique(decision, c->deciderAction(*this, action));
        }
        return;
    }
    const double zoom = webkit_web_view_get_zoom_level(vue_.get());
    // Handed to the page as arguments, never spliced into its source; the engine takes no
    // boolean argument, so "clic" is a number.
    GVariantBuilder arguments;
    g_variant_builder_init(&arguments, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&arguments, "{sv}", "url", g_variant_new_string(url.c_str()));
    g_variant_builder_add(&arguments, "{sv}", "clic", g_variant_new_double(dernierClic_ ? 1 : 0));
    g_variant_builder_add(&arguments, "{sv}", "x",
                          g_variant_new_double(dernierClic_ ? dernierClic_->first / zoom : 0));
    g_variant_builder_add(&arguments, "{sv}", "y",
                          g_variant_new_double(dernierClic_ ? dernierClic_->second / zoom : 0));
    struct Attente {
        std::weak_ptr<VueWebGtk> vue;
        Ref<WebKitPolicyDecision> decision;
        ActionNavigation action;
    };
    auto* attente = new Attente{weak_from_this(), Ref<WebKitPolicyDecision>::partager(decision),
                                std::move(action)};
    webkit_web_view_call_async_javascript_function(
        vue_.get(), corps, -1, g_variant_builder_end(&arguments), nullptr, nullptr, nullptr,
        [](GObject* objet, GAsyncResult* resultat, gpointer donnees) {
            std::unique_ptr<Attente> a(static_cast<Attente*>(donnees));
            JSCValue* valeur = webkit_web_view_call_async_javascript_function_finish(
                WEBKIT_WEB_VIEW(objet), resultat, nullptr);
            a->action.cible = valeur && jsc_value_to_boolean(valeur) ? CadreCible::principal
                                                                     : CadreCible::inconnu;
            if (valeur) g_object_unref(valeur);
            const auto vue = a->vue.lock();
            const auto c = vue ? vue->controleur_.lock() : nullptr;
            if (!c || !vue->attachee_) {
                webkit_policy_decision_ignore(a->decision.get());
                return;
            }
            vue->appliquerPolitique(a->decision.get(), c->deciderAction(*vue, a->action));
        },
        attente);
}

void VueWebGtk::surChargement(WebKitWebView*, WebKitLoadEvent evenement, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    if (evenement == WEBKIT_LOAD_STARTED) vue->echec_ = false;
    jalon(evenement == WEBKIT_LOAD_STARTED     ? "requete envoyee"
          : evenement == WEBKIT_LOAD_COMMITTED ? "premiere reponse"
          : evenement == WEBKIT_LOAD_FINISHED  ? "chargement fini"
                                               : "redirection");
    // The server has answered: the time-out no longer applies.
    if (evenement == WEBKIT_LOAD_COMMITTED) {
        vue->annulerDelai();
        jalonPremiereImage(vue->widget());
    }
    if (evenement != WEBKIT_LOAD_FINISHED || vue->echec_) return;
    if (const auto c = vue->controleur_.lock()) c->chargementTermine(*vue);
}

void VueWebGtk::echouer(ErreurChargement erreur, const char* url) {
    echec_ = true;
    annulerDelai();
    erreur.url = texte(url);
    if (const auto c = controleur_.lock()) c->traiterEchec(erreur, *this);
}

gboolean VueWebGtk::surEchec(WebKitWebView*, WebKitLoadEvent, char* url, GError* erreur,
                             gpointer donnees) {
    soi(donnees)->echouer(erreurDepuisGError(erreur), url);
    // No engine error page: the application explains failures itself.
    return TRUE;
}

gboolean VueWebGtk::surEchecTls(WebKitWebView*, char* url, GTlsCertificate*,
                                GTlsCertificateFlags defauts, gpointer donnees) {
    soi(donnees)->echouer(erreurTls(defauts, "Le certificat du serveur n'est pas valide."), url);
    return TRUE;
}

void VueWebGtk::annulerDelai() {
    if (delai_ != 0) g_source_remove(delai_);
    delai_ = 0;
    delaiSuspendu_ = false;
}

gboolean VueWebGtk::surDelaiDepasse(gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    vue->delai_ = 0;
    const auto c = vue->controleur_.lock();
    // Stopping reports a cancelled load, which is ignored; the time-out is reported after it,
    // as the last use of `vue`, since the controller may tear the view down in answer.
    vue->arreter();
    vue->echec_ = true;
    if (c) c->traiterEchec({std::string(domaineUrl), -1001, "La requête a expiré."}, *vue);
    return G_SOURCE_REMOVE;
}

void VueWebGtk::surFinProcessus(WebKitWebView*, WebKitWebProcessTerminationReason raison,
                                gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    // An end the application asked for is no failure.
    if (raison == WEBKIT_WEB_PROCESS_TERMINATED_BY_API) return;
    vue->annulerDelai();
    if (const auto c = vue->controleur_.lock()) {
        c->processusTermine(*vue, raison == WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT
                                      ? FinProcessus::memoire
                                      : FinProcessus::plantage);
    }
}

gboolean VueWebGtk::surEntree(GtkEventControllerLegacy*, GdkEvent* evenement, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    const GdkEventType type = gdk_event_get_event_type(evenement);
    const bool touche = type == GDK_KEY_PRESS;
    if (type != GDK_BUTTON_PRESS && type != GDK_TOUCH_BEGIN && !touche) return FALSE;
    vue->dernierClic_.reset();
    double x = 0;
    double y = 0;
    if (!touche && gdk_event_get_position(evenement, &x, &y)) {
        // From the surface's coordinates to the view's.
        GtkNative* native = gtk_widget_get_native(vue->widget());
        double dx = 0;
        double dy = 0;
        gtk_native_get_surface_transform(native, &dx, &dy);
        const graphene_point_t surface =
            GRAPHENE_POINT_INIT(static_cast<float>(x - dx), static_cast<float>(y - dy));
        graphene_point_t point{};
        if (gtk_widget_compute_point(GTK_WIDGET(native), vue->widget(), &surface, &point)) {
            vue->dernierClic_ = std::pair<double, double>(point.x, point.y);
        }
    }
    // Never in a dialog: the application's dialogs and file chooser are windows of their own,
    // whose presses don't pass through the view (a sheet also makes its window's content
    // insensitive).
    const Pression pression{false, touche && gdk_key_event_get_keyval(evenement) == GDK_KEY_Escape,
                            touche && gdk_key_event_is_modifier(evenement)};
    if (const auto c = vue->controleur_.lock()) c->pression(pression);
    return FALSE;
}

gboolean VueWebGtk::surAuthentification(WebKitWebView*, WebKitAuthenticationRequest* requete,
                                        gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    const auto c = vue->controleur_.lock();
    const WebKitAuthenticationScheme scheme = webkit_authentication_request_get_scheme(requete);
    const bool http = scheme == WEBKIT_AUTHENTICATION_SCHEME_DEFAULT ||
                      scheme == WEBKIT_AUTHENTICATION_SCHEME_HTTP_BASIC ||
                      scheme == WEBKIT_AUTHENTICATION_SCHEME_HTTP_DIGEST ||
                      scheme == WEBKIT_AUTHENTICATION_SCHEME_NTLM ||
                      scheme == WEBKIT_AUTHENTICATION_SCHEME_NEGOTIATE;
    // Anything else (a client certificate, say) goes on without: never WebKit's own dialog.
    if (!c || !http) {
        webkit_authentication_request_authenticate(requete, nullptr);
        return TRUE;
    }
    DemandeAuthentification demande;
    WebKitSecurityOrigin* origine = webkit_authentication_request_get_security_origin(requete);
    demande.scheme = texte(webkit_security_origin_get_protocol(origine)).value_or("");
    webkit_security_origin_unref(origine);
    demande.hote = texte(webkit_authentication_request_get_host(requete)).value_or("");
    demande.port = webkit_authentication_request_get_port(requete);
    demande.royaume = texte(webkit_authentication_request_get_realm(requete)).value_or("");
    demande.proxy = webkit_authentication_request_is_for_proxy(requete) != FALSE;
    demande.nouvelEssai = webkit_authentication_request_is_retry(requete) != FALSE;
    demande.peutMemoriser = webkit_authentication_request_can_save_credentials(requete) != FALSE;
    if (WebKitCredential* proposee =
            webkit_authentication_request_get_proposed_credential(requete)) {
        demande.identifiantPropose = texte(webkit_credential_get_username(proposee));
        demande.motDePassePropose = webkit_credential_has_password(proposee) != FALSE;
        webkit_credential_free(proposee);
    }
    // Answered at once, or once the user has: the load's time-out waits for the user only.
    struct Etat {
        bool repondu = false;
        bool attente = false;
    };
    const auto etat = std::make_shared<Etat>();
    std::weak_ptr<VueWebGtk> faible = vue->weak_from_this();
    c->authentificationDemandee(
        *vue, demande,
        [etat, faible, r = Ref<WebKitAuthenticationRequest>::partager(requete)](
            std::optional<Identifiants> identifiants) {
            etat->repondu = true;
            if (const auto v = faible.lock(); v && etat->attente) v->attendreUtilisateur(false);
            WebKitCredential* credential = nullptr;
            if (identifiants && identifiants->propose) {
                credential = webkit_authentication_request_get_proposed_credential(r.get());
            } else if (identifiants) {
                credential = webkit_credential_new(
                    identifiants->identifiant.c_str(), identifiants->motDePasse.c_str(),
                    identifiants->memoriser ? WEBKIT_CREDENTIAL_PERSISTENCE_PERMANENT
                                            : WEBKIT_CREDENTIAL_PERSISTENCE_FOR_SESSION);
            }
            // Without credentials the server's own answer (its 401 page) shows.
            webkit_authentication_request_authenticate(r.get(), credential);
            if (credential) webkit_credential_free(credential);
        });
    if (!etat->repondu) {
        etat->attente = true;
        vue->attendreUtilisateur(true);
    }
    return TRUE;
}

gboolean VueWebGtk::surImpression(WebKitWebView*, WebKitPrintOperation*, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    // Never WebKit's own dialog, which would hold everything until it closes: the controller
    // decides, and opens the application's.
    if (const auto c = vue->controleur_.lock()) c->impressionDemandee(*vue);
    return TRUE;
}

void VueWebGtk::surTrouve(WebKitFindController*, guint nombre, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    if (const auto c = vue->controleur_.lock()) c->resultatRecherche(*vue, true, nombre);
}

void VueWebGtk::surIntrouvable(WebKitFindController*, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    if (const auto c = vue->controleur_.lock()) c->resultatRecherche(*vue, false, std::nullopt);
}

GtkWidget* VueWebGtk::surCreation(WebKitWebView*, WebKitNavigationAction* action,
                                  gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    const auto c = vue->controleur_.lock();
    if (!c) return nullptr;
    WebKitURIRequest* requete = webkit_navigation_action_get_request(action);
    const auto url = texte(requete ? webkit_uri_request_get_uri(requete) : nullptr);
    const ConfigurationGtk configuration(vue->webView());
    const auto nouvelle = c->creerVueWebDemandee(
        *vue, url, webkit_navigation_action_is_user_gesture(action) != FALSE, configuration);
    auto* gtkVue = dynamic_cast<VueWebGtk*>(nouvelle.get());
    if (!gtkVue) return nullptr;
    // WebKit only borrows the view: the new window holds it.
    return gtkVue->widget();
}

void VueWebGtk::surPret(WebKitWebView*, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    if (vue->pretAAfficher) {
        auto rappel = vue->pretAAfficher;
        rappel();
    }
}

void VueWebGtk::surFermeture(WebKitWebView*, gpointer donnees) {
    // The answer may tear this view down, inside WebKit's own signal.
    const auto vue = soi(donnees)->shared_from_this();
    if (const auto c = vue->controleur_.lock()) c->fermetureDemandee(*vue);
}

gboolean VueWebGtk::surDialogue(WebKitWebView*, WebKitScriptDialog* dialogue, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    const auto c = vue->controleur_.lock();
    // Handled in every case: WebKit's own dialogs never show. Left unanswered, a dialog closes
    // with WebKit's defaults when it is released.
    if (!c) return TRUE;
    const auto attente = std::make_shared<DialogueEnAttente>(dialogue);
    vue->dialogues_.push_back(attente);
    const std::string message = webkit_script_dialog_get_message(dialogue);
    switch (webkit_script_dialog_get_dialog_type(dialogue)) {
        case WEBKIT_SCRIPT_DIALOG_ALERT:
            c->alerteScript(message, [attente] { attente->terminer(); });
            break;
        case WEBKIT_SCRIPT_DIALOG_CONFIRM:
            c->confirmationScript(message, [attente](bool oui) {
                webkit_script_dialog_confirm_set_confirmed(attente->dialogue, oui);
                attente->terminer();
            });
            break;
        case WEBKIT_SCRIPT_DIALOG_PROMPT: {
            const auto defaut = texte(webkit_script_dialog_prompt_get_default_text(dialogue));
            c->saisieScript(message, defaut, [attente](std::optional<std::string> reponse) {
                // Left unset, the page's prompt() gives null.
                if (reponse)
                    webkit_script_dialog_prompt_set_text(attente->dialogue, reponse->c_str());
                attente->terminer();
            });
            break;
        }
        case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
            // Whatever way the page is left (a load, a reload, history, closing), WebKit asks
            // here; the navigation or the close waits for the answer.
            c->confirmationDepart(*vue, [attente](bool quitter) {
                webkit_script_dialog_confirm_set_confirmed(attente->dialogue, quitter);
                attente->terminer();
            });
            break;
    }
    attente->dansSignal = false;
    std::erase_if(vue->dialogues_, [](const auto& d) { return d.expired(); });
    return TRUE;
}

gboolean VueWebGtk::surChoixFichiers(WebKitWebView*, WebKitFileChooserRequest* demande,
                                     gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    const auto c = vue->controleur_.lock();
    if (!c) return FALSE;
    g_object_ref(demande);
    c->choixFichiers(webkit_file_chooser_request_get_select_multiple(demande),
                     [demande](FichiersChoisis choisis) {
                         if (choisis) {
                             std::vector<const char*> chemins;
                             for (const auto& chemin : *choisis) chemins.push_back(chemin.c_str());
                             chemins.push_back(nullptr);
                             webkit_file_chooser_request_select_files(demande, chemins.data());
                         } else {
                             webkit_file_chooser_request_cancel(demande);
                         }
                         g_object_unref(demande);
                     });
    return TRUE;
}

void VueWebGtk::surTitre(GObject*, GParamSpec*, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    if (const auto c = vue->controleur_.lock()) c->titreChange(*vue);
}

void VueWebGtk::surProgression(GObject*, GParamSpec*, gpointer donnees) {
    VueWebGtk* vue = soi(donnees);
    if (const auto c = vue->controleur_.lock()) c->progressionChange(*vue);
}

}  // namespace brindex::gtk
