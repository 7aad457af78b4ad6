#import "platform/cocoa/vue_web_cocoa.h"

#include <map>
#include <vector>

#include "container/telechargements.hpp"
#include "platform/cocoa/outils_cocoa.h"

using brindex::cocoa::ns;
using brindex::cocoa::texteOptionnel;

// WebKit's own way to close a page politely, which the public API lacks (WKWebViewPrivate.h,
// macOS 10.15.4 and later): it runs the page's before-unload handlers, which ask through the UI
// delegate's private panel below, then calls webViewDidClose: if the page agrees; YES when the
// page may close at once. Every call is guarded by respondsToSelector:.
@interface WKWebView (BrindexDepart)
- (BOOL)_tryClose;
@end

namespace {

// A running download, known by its WKDownload.
class TelechargementCocoa : public brindex::Telechargement {
   public:
    explicit TelechargementCocoa(WKDownload *telechargement) : telechargement_(telechargement) {}
    WKDownload *telechargement() const { return telechargement_; }

   private:
    // Held while the download runs.
    WKDownload *telechargement_;
};

brindex::ActionNavigation actionDepuis(WKNavigationAction *action) {
    brindex::ActionNavigation valeur;
    valeur.url = texteOptionnel(action.request.URL.absoluteString);
    switch (action.navigationType) {
        case WKNavigationTypeLinkActivated:
            valeur.type = brindex::TypeNavigation::lienActive;
            break;
        case WKNavigationTypeFormSubmitted:
        case WKNavigationTypeFormResubmitted:
            valeur.type = brindex::TypeNavigation::formulaire;
            break;
        case WKNavigationTypeBackForward:
        case WKNavigationTypeReload:
        case WKNavigationTypeOther:
            valeur.type = brindex::TypeNavigation::autre;
            break;
    }
    if (!action.targetFrame) {
        valeur.cible = brindex::CadreCible::aucun;
    } else if (action.targetFrame.mainFrame) {
        valeur.cible = brindex::CadreCible::principal;
    } else {
        valeur.cible = brindex::CadreCible::sousCadre;
    }
    valeur.telechargementDemande = action.shouldPerformDownload;
    return valeur;
}

// The controller's answer as the WebKit policy of an action or a response.
template <typename P>
P politiqueWebKit(brindex::Politique politique, P autoriser, P telecharger, P annuler) {
    switch (politique) {
        case brindex::Politique::autoriser:
            return autoriser;
        case brindex::Politique::telecharger:
            return telecharger;
        case brindex::Politique::annuler:
        case brindex::Politique::differer:
            return annuler;
    }
    return annuler;
}

bool methodeHttp(NSString *methode) {
    for (NSString *m in @[
             NSURLAuthenticationMethodDefault, NSURLAuthenticationMethodHTTPBasic,
             NSURLAuthenticationMethodHTTPDigest, NSURLAuthenticationMethodNTLM,
             NSURLAuthenticationMethodNegotiate
         ]) {
        if ([methode isEqualToString:m]) return true;
    }
    return false;
}

brindex::ErreurChargement erreurDepuis(NSError *erreur) {
    return {brindex::cocoa::texte(erreur.domain), erreur.code,
            brindex::cocoa::texte(erreur.localizedDescription)};
}

}  // namespace

// ---- Downloads ----

@implementation BrindexDelegueTelechargements {
    std::weak_ptr<brindex::Controleur> _controleur;
    std::map<const void *, std::shared_ptr<TelechargementCocoa>> _enCours;
}

- (instancetype)initAvecControleur:(std::weak_ptr<brindex::Controleur>)controleur {
    self = [super init];
    if (self) _controleur = std::move(controleur);
    return self;
}

// Takes the download's entry out of the table; one that never had an entry gets a passing one
// for its report.
- (std::shared_ptr<TelechargementCocoa>)retirer:(WKDownload *)download {
    const auto trouvee = _enCours.find((__bridge const void *)download);
    if (trouvee == _enCours.end()) return std::make_shared<TelechargementCocoa>(download);
    auto entree = std::move(trouvee->second);
    _enCours.erase(trouvee);
    return entree;
}

- (void)download:(WKDownload *)download
    decideDestinationUsingResponse:(NSURLResponse *)response
                 suggestedFilename:(NSString *)suggestedFilename
                 completionHandler:(void (^)(NSURL *_Nullable))completionHandler {
    if (!_controleur.lock()) {
        completionHandler(nil);
        return;
    }
    // Known from now on: a failure reported while the destination is being chosen takes the
    // entry out, and the download then gets no destination. The blocks below hold the download,
    // so that no other one takes its address meanwhile.
    _enCours.try_emplace((__bridge const void *)download,
                         std::make_shared<TelechargementCocoa>(download));
    // Inside the Downloads folder, the first look may make macOS ask the user for access, and the
    // thread that looks waits for the answer, which the system then remembers. That look is made
    // here, off the main thread, at the very path the controller looks at first, so that the
    // main thread's looks (the controller's, then WebKit's own) come once the question is
    // settled. A refusal isn't reported: the looks then find nothing there, and whatever writing
    // the file then meets is WebKit's to report, through the download's end.
    const std::string dossier = brindex::dossierTelechargements(
        brindex::cocoa::dossierTelechargementsSysteme(), brindex::cocoa::dossierPersonnelSysteme());
    const std::string nom = brindex::cocoa::texte(suggestedFilename);
    __weak BrindexDelegueTelechargements *faible = self;
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
        // The first name the controller will try.
        const std::string premier =
            brindex::destinationUnique(dossier, nom, [](const std::string &) { return false; });
        (void)[NSFileManager.defaultManager fileExistsAtPath:ns(premier)];
        dispatch_async(dispatch_get_main_queue(), ^{
            BrindexDelegueTelechargements *soi = faible;
            if (!soi) {
                completionHandler(nil);
                return;
            }
            const void *cle = (__bridge const void *)download;
            const auto controleur = soi->_controleur.lock();
            const auto entree = soi->_enCours.find(cle);
            std::optional<std::string> destination;
            if (controleur && entree != soi->_enCours.end()) {
                destination = controleur->destinationTelechargement(entree->second, nom);
            }
            if (!destination) {
                // No destination cancels the download.
                soi->_enCours.erase(cle);
                completionHandler(nil);
                return;
            }
            completionHandler([NSURL fileURLWithPath:ns(*destination)]);
        });
    });
}

- (void)downloadDidFinish:(WKDownload *)download {
    const auto entree = [self retirer:download];
    if (const auto controleur = _controleur.lock()) controleur->telechargementTermine(*entree);
}

- (void)download:(WKDownload *)download
    didFailWithError:(NSError *)error
          resumeData:(NSData *)resumeData {
    const auto entree = [self retirer:download];
    if (const auto controleur = _controleur.lock()) {
        controleur->telechargementEchoue(*entree,
                                         brindex::cocoa::texte(error.localizedDescription));
    }
}

@end

// ---- Title and progress of the main web view ----

@interface BrindexObservateur : NSObject
- (instancetype)initAvecVue:(brindex::cocoa::VueWebCocoa *)vue
                 controleur:(std::weak_ptr<brindex::Controleur>)controleur;
@end

@implementation BrindexObservateur {
    brindex::cocoa::VueWebCocoa *_vue;
    std::weak_ptr<brindex::Controleur> _controleur;
}

- (instancetype)initAvecVue:(brindex::cocoa::VueWebCocoa *)vue
                 controleur:(std::weak_ptr<brindex::Controleur>)controleur {
    self = [super init];
    if (self) {
        _vue = vue;
        _controleur = std::move(controleur);
    }
    return self;
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id> *)change
                       context:(void *)context {
    const auto controleur = _controleur.lock();
    if (!controleur) return;
    if ([keyPath isEqualToString:@"title"]) {
        controleur->titreChange(*_vue);
    } else if ([keyPath isEqualToString:@"estimatedProgress"]) {
        controleur->progressionChange(*_vue);
    }
}

@end

// ---- Printing ----

// Hands a page's window.print() to its view's delegate: WKWebView drops the call otherwise.
@interface BrindexPontImpression : NSObject <WKScriptMessageHandler>
@end

@implementation BrindexPontImpression

- (void)userContentController:(WKUserContentController *)userContentController
      didReceiveScriptMessage:(WKScriptMessage *)message {
    id delegue = message.webView.navigationDelegate;
    if ([delegue isKindOfClass:BrindexDelegueWeb.class]) {
        [(BrindexDelegueWeb *)delegue impressionDemandee];
    }
}

@end

// Told once a print sheet has ended, printed or not.
@interface BrindexFinImpression : NSObject
- (instancetype)initAvecFin:(std::function<void()>)fin;
@end

@implementation BrindexFinImpression {
    std::function<void()> _fin;
}

- (instancetype)initAvecFin:(std::function<void()>)fin {
    self = [super init];
    if (self) _fin = std::move(fin);
    return self;
}

- (void)printOperationDidRun:(NSPrintOperation *)printOperation
                     success:(BOOL)success
                 contextInfo:(void *)contextInfo {
    // The operation held nothing: this object kept itself alive through contextInfo.
    BrindexFinImpression *soi = (__bridge_transfer BrindexFinImpression *)contextInfo;
    if (auto fin = std::move(soi->_fin)) fin();
}

@end

// ---- Navigation and UI ----

@implementation BrindexDelegueWeb {
    brindex::cocoa::VueWebCocoa *_vue;
    std::weak_ptr<brindex::Controleur> _controleur;
    BrindexDelegueTelechargements *_telechargements;
}

- (instancetype)initAvecVue:(brindex::cocoa::VueWebCocoa *)vue
                 controleur:(std::weak_ptr<brindex::Controleur>)controleur
            telechargements:(BrindexDelegueTelechargements *)telechargements {
    self = [super init];
    if (self) {
        _vue = vue;
        _controleur = std::move(controleur);
        _telechargements = telechargements;
    }
    return self;
}

- (void)detacher {
    _vue = nullptr;
}

- (void)impressionDemandee {
    const auto controleur = _controleur.lock();
    if (controleur && _vue) controleur->impressionDemandee(*_vue);
}

- (void)resultatRecherche:(BOOL)trouve {
    // WKWebView says whether it found the text, never how many times.
    const auto controleur = _controleur.lock();
    if (controleur && _vue) controleur->resultatRecherche(*_vue, trouve, std::nullopt);
}

// WKNavigationDelegate

- (void)webView:(WKWebView *)webView
    decidePolicyForNavigationAction:(WKNavigationAction *)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        decisionHandler(WKNavigationActionPolicyCancel);
        return;
    }
    const auto repondre = [decisionHandler](brindex::Politique politique) {
        decisionHandler(politiqueWebKit(politique, WKNavigationActionPolicyAllow,
                                        WKNavigationActionPolicyDownload,
                                        WKNavigationActionPolicyCancel));
    };
    const auto politique = controleur->deciderAction(*_vue, actionDepuis(navigationAction));
    _vue->decider(politique, repondre);
}

- (void)webView:(WKWebView *)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse *)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy))decisionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        decisionHandler(WKNavigationResponsePolicyCancel);
        return;
    }
    brindex::ReponseNavigation reponse;
    if ([navigationResponse.response isKindOfClass:NSHTTPURLResponse.class]) {
        auto *http = (NSHTTPURLResponse *)navigationResponse.response;
        reponse.http = true;
        reponse.contentDisposition =
            texteOptionnel([http valueForHTTPHeaderField:@"Content-Disposition"]);
    }
    reponse.typeAffichable = navigationResponse.canShowMIMEType;
    reponse.url = texteOptionnel(navigationResponse.response.URL.absoluteString);
    reponse.cadrePrincipal = navigationResponse.forMainFrame;
    const auto repondre = [decisionHandler](brindex::Politique politique) {
        decisionHandler(politiqueWebKit(politique, WKNavigationResponsePolicyAllow,
                                        WKNavigationResponsePolicyDownload,
                                        WKNavigationResponsePolicyCancel));
    };
    const auto politique = controleur->deciderReponse(*_vue, reponse);
    _vue->decider(politique, repondre);
}

- (void)webView:(WKWebView *)webView
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge *)challenge
                    completionHandler:(void (^)(NSURLSessionAuthChallengeDisposition,
                                                NSURLCredential *_Nullable))completionHandler {
    NSURLProtectionSpace *espace = challenge.protectionSpace;
    const auto controleur = _controleur.lock();
    // Server trust and client certificates are the system's business.
    if (!controleur || !methodeHttp(espace.authenticationMethod)) {
        completionHandler(NSURLSessionAuthChallengePerformDefaultHandling, nil);
        return;
    }
    brindex::DemandeAuthentification demande;
    demande.scheme = brindex::cocoa::texte(espace.protocol);
    demande.hote = brindex::cocoa::texte(espace.host);
    demande.port = espace.port;
    demande.royaume = brindex::cocoa::texte(espace.realm);
    demande.proxy = espace.isProxy;
    demande.nouvelEssai = challenge.previousFailureCount > 0;
    demande.peutMemoriser = true;
    NSURLCredential *proposee = challenge.proposedCredential;
    demande.identifiantPropose = texteOptionnel(proposee.user);
    demande.motDePassePropose = proposee.hasPassword;
    controleur->authentificationDemandee(
        *_vue, demande,
        [completionHandler, proposee](std::optional<brindex::Identifiants> identifiants) {
            NSURLCredential *credential = nil;
            if (identifiants && identifiants->propose) {
                credential = proposee;
            } else if (identifiants) {
                credential =
                    [NSURLCredential credentialWithUser:ns(identifiants->identifiant)
                                               password:ns(identifiants->motDePasse)
                                            persistence:identifiants->memoriser
                                                            ? NSURLCredentialPersistencePermanent
                                                            : NSURLCredentialPersistenceForSession];
            }
            // Without credentials the server's own answer (its 401 page) shows.
            completionHandler(NSURLSessionAuthChallengeUseCredential, credential);
        });
}

- (void)webView:(WKWebView *)webView didFinishNavigation:(WKNavigation *)navigation {
    if (const auto controleur = _controleur.lock()) controleur->chargementTermine(*_vue);
}

- (void)webView:(WKWebView *)webView
    didFailNavigation:(WKNavigation *)navigation
            withError:(NSError *)error {
    if (const auto controleur = _controleur.lock()) {
        controleur->traiterEchec(erreurDepuis(error), *_vue);
    }
}

- (void)webView:(WKWebView *)webView
    didFailProvisionalNavigation:(WKNavigation *)navigation
                       withError:(NSError *)error {
    if (const auto controleur = _controleur.lock()) {
        controleur->traiterEchec(erreurDepuis(error), *_vue);
    }
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView *)webView {
    // WebKit doesn't say why: whatever the cause, the page is gone.
    if (const auto controleur = _controleur.lock()) {
        controleur->processusTermine(*_vue, brindex::FinProcessus::plantage);
    }
}

- (void)webView:(WKWebView *)webView
     navigationAction:(WKNavigationAction *)navigationAction
    didBecomeDownload:(WKDownload *)download {
    download.delegate = _telechargements;
}

- (void)webView:(WKWebView *)webView
    navigationResponse:(WKNavigationResponse *)navigationResponse
     didBecomeDownload:(WKDownload *)download {
    download.delegate = _telechargements;
}

// WKUIDelegate

- (WKWebView *)webView:(WKWebView *)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration *)configuration
               forNavigationAction:(WKNavigationAction *)navigationAction
                    windowFeatures:(WKWindowFeatures *)windowFeatures {
    const auto controleur = _controleur.lock();
    if (!controleur) return nil;
    const brindex::cocoa::ConfigurationCocoa fournie(configuration);
    // WebKit's public API gives no user-gesture flag: the presses the application saw decide.
    const auto vue = controleur->creerVueWebDemandee(
        *_vue, texteOptionnel(navigationAction.request.URL.absoluteString), std::nullopt, fournie);
    auto *cocoa = dynamic_cast<brindex::cocoa::VueWebCocoa *>(vue.get());
    return cocoa ? cocoa->webView() : nil;
}

- (void)webViewDidClose:(WKWebView *)webView {
    if (const auto controleur = _controleur.lock()) controleur->fermetureDemandee(*_vue);
}

// WKUIDelegatePrivate, macOS 10.13 and later. WebKit asks it before a page that wants to be
// confirmed is left, whichever way: a load, a reload, history, a link, _tryClose. Without it
// WebKit doesn't even run before-unload handlers, and the public API has no such call.
- (void)_webView:(WKWebView *)webView
    runBeforeUnloadConfirmPanelWithMessage:(NSString *)message
                          initiatedByFrame:(WKFrameInfo *)frame
                         completionHandler:(void (^)(BOOL))completionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        completionHandler(NO);
        return;
    }
    controleur->confirmationDepart(
        *_vue, [completionHandler](bool quitter) { completionHandler(quitter); });
}

- (void)webView:(WKWebView *)webView
    runJavaScriptAlertPanelWithMessage:(NSString *)message
                      initiatedByFrame:(WKFrameInfo *)frame
                     completionHandler:(void (^)(void))completionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        completionHandler();
        return;
    }
    controleur->alerteScript(brindex::cocoa::texte(message),
                             [completionHandler] { completionHandler(); });
}

- (void)webView:(WKWebView *)webView
    runJavaScriptConfirmPanelWithMessage:(NSString *)message
                        initiatedByFrame:(WKFrameInfo *)frame
                       completionHandler:(void (^)(BOOL))completionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        completionHandler(NO);
        return;
    }
    controleur->confirmationScript(brindex::cocoa::texte(message),
                                   [completionHandler](bool oui) { completionHandler(oui); });
}

- (void)webView:(WKWebView *)webView
    runJavaScriptTextInputPanelWithPrompt:(NSString *)prompt
                              defaultText:(NSString *)defaultText
                         initiatedByFrame:(WKFrameInfo *)frame
                        completionHandler:(void (^)(NSString *_Nullable))completionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        completionHandler(nil);
        return;
    }
    controleur->saisieScript(brindex::cocoa::texte(prompt), texteOptionnel(defaultText),
                             [completionHandler](std::optional<std::string> reponse) {
                                 completionHandler(reponse ? ns(*reponse) : nil);
                             });
}

- (void)webView:(WKWebView *)webView
    runOpenPanelWithParameters:(WKOpenPanelParameters *)parameters
              initiatedByFrame:(WKFrameInfo *)frame
             completionHandler:(void (^)(NSArray<NSURL *> *_Nullable))completionHandler {
    const auto controleur = _controleur.lock();
    if (!controleur) {
        completionHandler(nil);
        return;
    }
    controleur->choixFichiers(parameters.allowsMultipleSelection,
                              [completionHandler](brindex::FichiersChoisis choisis) {
                                  if (!choisis) {
                                      completionHandler(nil);
                                      return;
                                  }
                                  NSMutableArray<NSURL *> *urls = [NSMutableArray array];
                                  for (const auto &chemin : *choisis) {
                                      [urls addObject:[NSURL fileURLWithPath:ns(chemin)]];
                                  }
                                  completionHandler(urls);
                              });
}

@end

// ---- The web view ----

namespace brindex::cocoa {

VueWebCocoa::VueWebCocoa(const ParametresVueWeb &parametres, WKWebViewConfiguration *fournie,
                         std::weak_ptr<Controleur> controleur,
                         BrindexDelegueTelechargements *telechargements)
    : controleur_(controleur) {
    WKWebViewConfiguration *configuration = fournie;
    if (!configuration) {
        configuration = [[WKWebViewConfiguration alloc] init];
        configuration.applicationNameForUserAgent = ns(parametres.agentSuffixe);
        // The default store keeps cookies and site data across launches.
        configuration.websiteDataStore = WKWebsiteDataStore.defaultDataStore;
        // Popups share this controller, and with it the bridge for window.print().
        WKUserContentController *contenu = configuration.userContentController;
        [contenu addUserScript:[[WKUserScript alloc]
                                     initWithSource:@"window.print = () => window.webkit."
                                                    @"messageHandlers.brindexImpression."
                                                    @"postMessage(0);"
                                      injectionTime:WKUserScriptInjectionTimeAtDocumentStart
                                   forMainFrameOnly:NO]];
        [contenu addScriptMessageHandler:[[BrindexPontImpression alloc] init]
                                    name:@"brindexImpression"];
    }
    webView_ = [[WKWebView alloc] initWithFrame:NSZeroRect configuration:configuration];
    delegue_ = [[BrindexDelegueWeb alloc] initAvecVue:this
                                           controleur:controleur
                                      telechargements:telechargements];
    webView_.navigationDelegate = delegue_;
    webView_.UIDelegate = delegue_;
    webView_.allowsBackForwardNavigationGestures = parametres.gestesHistorique;
    webView_.allowsMagnification = parametres.grossissement;
    webView_.underPageBackgroundColor = couleur(Marque::fond);
    principale_ = parametres.principale;
    if (parametres.principale) {
        // New values only: nothing is reported for the initial ones.
        observateur_ = [[BrindexObservateur alloc] initAvecVue:this controleur:controleur];
        [webView_ addObserver:observateur_
                   forKeyPath:@"title"
                      options:NSKeyValueObservingOptionNew
                      context:nullptr];
        [webView_ addObserver:observateur_
                   forKeyPath:@"estimatedProgress"
                      options:NSKeyValueObservingOptionNew
                      context:nullptr];
    }
}

VueWebCocoa::~VueWebCocoa() {
    detacher();
    // The controller may drop this view from inside one of its own callbacks (a page closing its
    // window, a failed first load).
    relacherPlusTard(webView_);
    relacherPlusTard(delegue_);
}

void VueWebCocoa::detacher() {
    trancher(Politique::annuler);
    // Observations must end before the web view goes away.
    if (observateur_) {
        [webView_ removeObserver:observateur_ forKeyPath:@"title"];
        [webView_ removeObserver:observateur_ forKeyPath:@"estimatedProgress"];
        observateur_ = nil;
    }
    webView_.navigationDelegate = nil;
    webView_.UIDelegate = nil;
    [delegue_ detacher];
    if (principale_) [webView_ removeFromSuperview];
}

void VueWebCocoa::charger(const std::string &url, double delaiSecondes) {
    NSURL *adresse = [NSURL URLWithString:ns(url)];
    if (!adresse) return;
    [webView_ loadRequest:[NSURLRequest requestWithURL:adresse
                                           cachePolicy:NSURLRequestUseProtocolCachePolicy
                                       timeoutInterval:delaiSecondes]];
}
void VueWebCocoa::arreter() { [webView_ stopLoading]; }
void VueWebCocoa::recharger() { [webView_ reload]; }
void VueWebCocoa::rechargerOrigine() { [webView_ reloadFromOrigin]; }
void VueWebCocoa::reculer() { [webView_ goBack]; }
void VueWebCocoa::avancer() { [webView_ goForward]; }
double VueWebCocoa::zoom() const { return webView_.pageZoom; }
void VueWebCocoa::definirZoom(double zoom) { webView_.pageZoom = zoom; }
std::optional<std::string> VueWebCocoa::url() const {
    return texteOptionnel(webView_.URL.absoluteString);
}
std::optional<std::string> VueWebCocoa::titre() const { return texteOptionnel(webView_.title); }
double VueWebCocoa::progression() const { return webView_.estimatedProgress; }
bool VueWebCocoa::aUnePageARecharger() const { return webView_.backForwardList.currentItem != nil; }

void VueWebCocoa::decider(Politique politique, std::function<void(Politique)> repondre) {
    if (politique != Politique::differer) return repondre(politique);
    if (auto precedente = std::exchange(enAttente_, nullptr)) precedente(Politique::annuler);
    enAttente_ = std::move(repondre);
}
void VueWebCocoa::trancher(Politique politique) {
    if (auto repondre = std::exchange(enAttente_, nullptr)) repondre(politique);
}
std::vector<std::string> VueWebCocoa::historiqueArriere(std::size_t maximum) const {
    std::vector<std::string> urls;
    NSArray<WKBackForwardListItem *> *liste = webView_.backForwardList.backList;
    for (NSInteger i = static_cast<NSInteger>(liste.count) - 1; i >= 0 && urls.size() < maximum;
         --i) {
        urls.push_back(texte(liste[static_cast<NSUInteger>(i)].URL.absoluteString));
    }
    return urls;
}
void VueWebCocoa::reculerDe(std::size_t pas) {
    if (WKBackForwardListItem *element =
            [webView_.backForwardList itemAtIndex:-static_cast<NSInteger>(pas)]) {
        [webView_ goToBackForwardListItem:element];
    }
}

void VueWebCocoa::essayerFermer() {
    if ([webView_ respondsToSelector:@selector(_tryClose)]) {
        if ([webView_ _tryClose]) {
            if (const auto controleur = controleur_.lock()) controleur->fermetureDemandee(*this);
        }
        return;
    }
    // Without WebKit's own way, the page is asked by a script: a cancelable "beforeunload" event
    // and its handler property, as a page that wants to be confirmed answers them (preventDefault,
    // a returned text). What WebKit alone knows goes unseen: whether the user interacted with the
    // page, and a handler that only sets a text as returnValue.
    static NSString *const sonde =
        @"(() => { const e = new Event('beforeunload', {cancelable: true});"
         " const r = typeof onbeforeunload === 'function' ? onbeforeunload(e) : undefined;"
         " dispatchEvent(e); return e.defaultPrevented || (typeof r === 'string' && r !== ''); "
         "})()";
    std::weak_ptr<Controleur> faible = controleur_;
    std::weak_ptr<VueWebCocoa> faibleVue = weak_from_this();
    [webView_ evaluateJavaScript:sonde
               completionHandler:^(id resultat, NSError *erreur) {
                   const auto controleur = faible.lock();
                   const auto vue = faibleVue.lock();
                   if (!controleur || !vue) return;
                   if (![resultat isKindOfClass:NSNumber.class] || ![resultat boolValue]) {
                       controleur->fermetureDemandee(*vue);
                       return;
                   }
                   controleur->confirmationDepart(*vue, [faible, faibleVue](bool quitter) {
                       const auto c = faible.lock();
                       const auto v = faibleVue.lock();
                       if (c && v && quitter) c->fermetureDemandee(*v);
                   });
               }];
}

void VueWebCocoa::chercher(const std::string &texte, SensRecherche sens) {
    WKFindConfiguration *configuration = [[WKFindConfiguration alloc] init];
    configuration.caseSensitive = NO;
    configuration.wraps = YES;
    configuration.backwards = sens == SensRecherche::precedente;
    if (sens == SensRecherche::nouvelle) {
        // WebKit searches on from the page's selection: without one, from the top.
        [webView_ evaluateJavaScript:@"getSelection().removeAllRanges()"
                             inFrame:nil
                      inContentWorld:WKContentWorld.defaultClientWorld
                   completionHandler:nil];
    }
    __weak BrindexDelegueWeb *delegue = delegue_;
    [webView_ findString:ns(texte)
        withConfiguration:configuration
        completionHandler:^(WKFindResult *resultat) {
            [delegue resultatRecherche:resultat.matchFound];
        }];
}

// WKWebView's find leaves nothing highlighted once it has shown a match.
void VueWebCocoa::finirRecherche() {}

void VueWebCocoa::focaliser() { [webView_.window makeFirstResponder:webView_]; }

void VueWebCocoa::imprimer(const std::string &fichierPdf, std::function<void()> ferme) {
    NSWindow *fenetre = webView_.window;
    if (!fenetre) {
        ferme();
        return;
    }
    NSPrintInfo *info = [NSPrintInfo.sharedPrintInfo copy];
    // Where the page goes when printed to a file.
    info.dictionary[NSPrintJobSavingURL] = [NSURL fileURLWithPath:ns(fichierPdf)];
    // Run for the window, as a sheet: WKWebView's operation run on its own prints blank pages.
    NSPrintOperation *operation = [webView_ printOperationWithPrintInfo:info];
    operation.view.frame = webView_.bounds;
    BrindexFinImpression *fin = [[BrindexFinImpression alloc] initAvecFin:std::move(ferme)];
    [operation runOperationModalForWindow:fenetre
                                 delegate:fin
                           didRunSelector:@selector(printOperationDidRun:success:contextInfo:)
                              contextInfo:(__bridge_retained void *)fin];
}

}  // namespace brindex::cocoa
