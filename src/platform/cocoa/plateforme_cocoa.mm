#import "platform/cocoa/plateforme_cocoa.h"

#include <dlfcn.h>

#include <algorithm>

#include "platform/cocoa/outils_cocoa.h"

namespace brindex::cocoa {

// ---- Settings ----

std::optional<std::string> ReglagesCocoa::lire(const std::string &cle) const {
    return texteOptionnel([NSUserDefaults.standardUserDefaults stringForKey:ns(cle)]);
}

void ReglagesCocoa::ecrire(const std::string &cle, const std::optional<std::string> &valeur) {
    if (valeur) {
        [NSUserDefaults.standardUserDefaults setObject:ns(*valeur) forKey:ns(cle)];
    } else {
        [NSUserDefaults.standardUserDefaults removeObjectForKey:ns(cle)];
    }
}

// ---- The probe's client ----

}  // namespace brindex::cocoa

// Reads one probe's answer on the session's queue, as far as the probe needs it.
@interface BrindexLectureSonde : NSObject <NSURLSessionDataDelegate>
- (instancetype)initAvecFin:(std::function<void(brindex::EchangeTermine)>)fin;
@end

@implementation BrindexLectureSonde {
    std::function<void(brindex::EchangeTermine)> _fin;
    brindex::EchangeTermine _echange;
}

- (instancetype)initAvecFin:(std::function<void(brindex::EchangeTermine)>)fin {
    self = [super init];
    if (self) _fin = std::move(fin);
    return self;
}

- (void)URLSession:(NSURLSession *)session
              dataTask:(NSURLSessionDataTask *)dataTask
    didReceiveResponse:(NSURLResponse *)response
     completionHandler:(void (^)(NSURLSessionResponseDisposition))completionHandler {
    if ([response isKindOfClass:NSHTTPURLResponse.class]) {
        _echange.reponse = brindex::EchangeTermine::Reponse::http;
        _echange.statut = static_cast<int>(((NSHTTPURLResponse *)response).statusCode);
    } else {
        _echange.reponse = brindex::EchangeTermine::Reponse::autre;
    }
    _echange.corps = std::string();
    completionHandler(NSURLSessionResponseAllow);
}

- (void)URLSession:(NSURLSession *)session
          dataTask:(NSURLSessionDataTask *)dataTask
    didReceiveData:(NSData *)data {
    if (_echange.corpsPartiel) return;
    if (!_echange.corps) _echange.corps = std::string();
    std::string &corps = *_echange.corps;
    [data enumerateByteRangesUsingBlock:^(const void *octets, NSRange plage, BOOL *arret) {
        const std::size_t place = brindex::limiteCorpsSonde - corps.size();
        corps.append(static_cast<const char *>(octets), std::min<std::size_t>(plage.length, place));
        if (corps.size() >= brindex::limiteCorpsSonde) *arret = YES;
    }];
    if (brindex::lectureSuffisante(corps)) {
        // Enough is known: the rest of the body, however long, is never read.
        _echange.corpsPartiel = true;
        [dataTask cancel];
    }
}

- (void)URLSession:(NSURLSession *)session
                    task:(NSURLSessionTask *)task
    didCompleteWithError:(NSError *)error {
    // The cancel that follows a sufficient read is no failure.
    if (error && !(_echange.corpsPartiel && error.code == NSURLErrorCancelled)) {
        _echange.erreur =
            brindex::ErreurTransport{error.code, brindex::cocoa::texte(error.localizedDescription)};
    }
    // On the session's queue: only plain values cross to the main thread.
    auto fin = std::move(_fin);
    _fin = nullptr;
    const brindex::EchangeTermine echange = _echange;
    if (!fin) return;
    dispatch_async(dispatch_get_main_queue(), ^{
        fin(echange);
    });
}

@end

namespace brindex::cocoa {

void TransportCocoa::envoyer(const RequeteSonde &requete, std::function<void(EchangeTermine)> fin) {
    NSURL *url = [NSURL URLWithString:ns(requete.url)];
    if (!url) {
        dispatch_async(dispatch_get_main_queue(), ^{
            EchangeTermine termine;
            // Worded by the system, like every other transport failure.
            NSError *erreur = [NSError errorWithDomain:NSURLErrorDomain
                                                  code:NSURLErrorBadURL
                                              userInfo:nil];
            termine.erreur = ErreurTransport{erreur.code, texte(erreur.localizedDescription)};
            fin(termine);
        });
        return;
    }
    NSMutableURLRequest *demande = [NSMutableURLRequest requestWithURL:url];
    demande.HTTPMethod = ns(requete.methode);
    demande.timeoutInterval = requete.delaiSecondes;
    if (requete.ignorerCache) demande.cachePolicy = NSURLRequestReloadIgnoringLocalCacheData;
    [demande setValue:ns(requete.agentUtilisateur) forHTTPHeaderField:@"User-Agent"];
    NSURLSessionConfiguration *reglages = NSURLSessionConfiguration.ephemeralSessionConfiguration;
    // The delay bounds the whole exchange too, whatever pace the server keeps.
    reglages.timeoutIntervalForResource = requete.delaiSecondes;
    BrindexLectureSonde *lecture = [[BrindexLectureSonde alloc] initAvecFin:std::move(fin)];
    // The session holds its delegate until it is invalidated, once the task has ended.
    NSURLSession *session = [NSURLSession sessionWithConfiguration:reglages
                                                          delegate:lecture
                                                     delegateQueue:nil];
    [[session dataTaskWithRequest:demande] resume];
    [session finishTasksAndInvalidate];
}

// ---- Platform ----

namespace {

// A press as the controller reads it. Alerts (run modally, or as sheets) and the open panel are
// the application's own dialogs: the open panel is an NSPanel, an alert's window is the modal
// session's or a sheet, whatever its class.
Pression pressionDepuis(NSEvent *evenement) {
    NSWindow *fenetre = evenement.window;
    Pression pression;
    pression.dansDialogue = [fenetre isKindOfClass:NSPanel.class] || fenetre.sheet ||
                            (fenetre && fenetre == NSApp.modalWindow);
    pression.echap = evenement.type == NSEventTypeKeyDown &&
                     [evenement.charactersIgnoringModifiers isEqualToString:@"\x1b"];
    return pression;
}

// Network's path monitor, opened when the platform starts instead of linked: the application
// links AppKit, WebKit and Foundation only, and the SDK stubs its cross-built link binds against
// give Network none of its nw_* functions (they live in libnetwork, which Network re-exports).
// Without it, the network coming back goes unnoticed and "Réessayer" is left to the user.
struct MoniteurChemins {
    decltype(&nw_path_monitor_create) creer = nullptr;
    decltype(&nw_path_monitor_set_queue) file = nullptr;
    decltype(&nw_path_monitor_set_update_handler) suivre = nullptr;
    decltype(&nw_path_monitor_start) demarrer = nullptr;
    decltype(&nw_path_monitor_cancel) annuler = nullptr;
    decltype(&nw_path_get_status) etat = nullptr;
};

// Looked up once; nothing when any of them is missing.
const MoniteurChemins *moniteurChemins() {
    static const MoniteurChemins *const fonctions = []() -> const MoniteurChemins * {
        static MoniteurChemins f;
        void *reseau =
            dlopen("/System/Library/Frameworks/Network.framework/Network", RTLD_LAZY | RTLD_LOCAL);
        if (!reseau) return nullptr;
        const auto lier = [reseau](auto &fonction, const char *nom) {
            fonction =
                reinterpret_cast<std::remove_reference_t<decltype(fonction)>>(dlsym(reseau, nom));
        };
        lier(f.creer, "nw_path_monitor_create");
        lier(f.file, "nw_path_monitor_set_queue");
        lier(f.suivre, "nw_path_monitor_set_update_handler");
        lier(f.demarrer, "nw_path_monitor_start");
        lier(f.annuler, "nw_path_monitor_cancel");
        lier(f.etat, "nw_path_get_status");
        const bool complet = f.creer && f.file && f.suivre && f.demarrer && f.annuler && f.etat;
        return complet ? &f : nullptr;
    }();
    return fonctions;
}

}  // namespace

PlateformeCocoa::~PlateformeCocoa() {
    if (moniteur_) [NSEvent removeMonitor:moniteur_];
    if (chemins_) moniteurChemins()->annuler(chemins_);
    if (reveil_) [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:reveil_];
}

void PlateformeCocoa::plusTard(std::chrono::milliseconds delai, std::function<void()> action) {
    dispatch_after(
        dispatch_time(DISPATCH_TIME_NOW, static_cast<int64_t>(delai.count()) * NSEC_PER_MSEC),
        dispatch_get_main_queue(), ^{
            action();
        });
}

Administration PlateformeCocoa::administration() const {
    NSUserDefaults *reglages = NSUserDefaults.standardUserDefaults;
    Administration administration;
    NSString *origines = ns(CleAdministration::originesConnexion);
    if ([reglages objectIsForcedForKey:origines]) {
        for (id origine in [reglages arrayForKey:origines]) {
            if ([origine isKindOfClass:NSString.class]) {
                administration.originesConnexion.push_back(texte(origine));
            }
        }
    }
    NSString *question = ns(CleAdministration::questionConnexion);
    if ([reglages objectIsForcedForKey:question]) {
        administration.questionConnexion = [reglages boolForKey:question];
    }
    return administration;
}

void PlateformeCocoa::definirControleur(std::weak_ptr<Controleur> controleur) {
    controleur_ = controleur;
    telechargements_ = [[BrindexDelegueTelechargements alloc] initAvecControleur:controleur];
    // WebKit's public API doesn't say whether a user gesture started a navigation: the
    // application sees the presses itself, before any window does.
    const NSEventMask pressions = NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown |
                                  NSEventMaskOtherMouseDown | NSEventMaskKeyDown;
    moniteur_ =
        [NSEvent addLocalMonitorForEventsMatchingMask:pressions
                                              handler:^NSEvent *(NSEvent *evenement) {
                                                  if (const auto c = controleur.lock()) {
                                                      c->pression(pressionDepuis(evenement));
                                                  }
                                                  return evenement;
                                              }];
    // The network back (every path that becomes usable) and the machine awake: the space is
    // tried again if it was unreachable.
    if (const MoniteurChemins *reseau = moniteurChemins()) {
        chemins_ = reseau->creer();
        reseau->file(chemins_, dispatch_get_main_queue());
        reseau->suivre(chemins_, ^(nw_path_t chemin) {
            if (reseau->etat(chemin) != nw_path_status_satisfied) return;
            if (const auto c = controleur.lock()) c->reprise(Controleur::Reprise::reseau);
        });
        reseau->demarrer(chemins_);
    }
    reveil_ = [NSWorkspace.sharedWorkspace.notificationCenter
        addObserverForName:NSWorkspaceDidWakeNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification *) {
                    if (const auto c = controleur.lock()) c->reprise(Controleur::Reprise::reveil);
                }];
}

std::shared_ptr<FenetrePrincipale> PlateformeCocoa::creerFenetrePrincipale(
    const ParametresFenetre &parametres, std::function<void()> vaFermer) {
    return std::make_shared<FenetrePrincipaleCocoa>(parametres, std::move(vaFermer));
}

std::shared_ptr<VueWeb> PlateformeCocoa::creerVueWeb(const ParametresVueWeb &parametres,
                                                     const ConfigurationMoteur *configuration) {
    const auto *fournie = dynamic_cast<const ConfigurationCocoa *>(configuration);
    return std::make_shared<VueWebCocoa>(parametres, fournie ? fournie->configuration : nil,
                                         controleur_, telechargements_);
}

std::shared_ptr<Fenetre> PlateformeCocoa::creerFenetreSecondaire(
    const ParametresFenetre &parametres, std::shared_ptr<VueWeb> vue,
    std::function<void()> vaFermer) {
    return std::make_shared<FenetreSecondaireCocoa>(parametres, std::move(vue),
                                                    std::move(vaFermer));
}

void PlateformeCocoa::ouvrirUrl(const std::string &url) {
    if (NSURL *adresse = [NSURL URLWithString:ns(url)]) {
        [NSWorkspace.sharedWorkspace openURL:adresse];
    }
}

std::optional<std::string> PlateformeCocoa::applicationPour(const std::string &url) {
    NSURL *adresse = [NSURL URLWithString:ns(url)];
    NSURL *application =
        adresse ? [NSWorkspace.sharedWorkspace URLForApplicationToOpenURL:adresse] : nil;
    // Never this application itself.
    if (!application || [application.URLByStandardizingPath
                            isEqual:NSBundle.mainBundle.bundleURL.URLByStandardizingPath]) {
        return std::nullopt;
    }
    NSString *nom = [NSFileManager.defaultManager displayNameAtPath:application.path];
    if ([nom.pathExtension isEqualToString:@"app"]) nom = nom.stringByDeletingPathExtension;
    return texte(nom);
}

void PlateformeCocoa::reveler(const std::string &chemin) {
    [NSWorkspace.sharedWorkspace
        activateFileViewerSelectingURLs:@[ [NSURL fileURLWithPath:ns(chemin)] ]];
}

void PlateformeCocoa::alerte(const Alerte &alerte, std::function<void(ReponseAlerte)> reponse) {
    AlerteNative native(alerte);
    native.surveillerEchap();
    const NSModalResponse resultat = [native.alerte() runModal];
    native.finSurveillance();
    reponse(native.reponse(resultat));
}

void PlateformeCocoa::choisirFichiers(const DemandeFichiers &demande,
                                      std::function<void(FichiersChoisis)> reponse) {
    NSOpenPanel *panneau = [[NSOpenPanel alloc] init];
    panneau.canChooseFiles = demande.fichiers;
    panneau.canChooseDirectories = demande.dossiers;
    panneau.allowsMultipleSelection = demande.plusieurs;
    panneau.canCreateDirectories = demande.creerDossiers;
    auto rappel = std::make_shared<std::function<void(FichiersChoisis)>>(std::move(reponse));
    // The block holds the panel until it answers, then lets it go.
    [panneau beginWithCompletionHandler:^(NSModalResponse resultat) {
        if (resultat != NSModalResponseOK) {
            (*rappel)(std::nullopt);
            return;
        }
        std::vector<std::string> chemins;
        for (NSURL *url in panneau.URLs) chemins.push_back(texte(url.path));
        (*rappel)(std::move(chemins));
    }];
}

std::optional<std::string> PlateformeCocoa::dossierTelechargements() {
    return dossierTelechargementsSysteme();
}

std::string PlateformeCocoa::dossierPersonnel() { return dossierPersonnelSysteme(); }

bool PlateformeCocoa::existe(const std::string &chemin) {
    return [NSFileManager.defaultManager fileExistsAtPath:ns(chemin)];
}

std::string PlateformeCocoa::cheminJournal() {
    return texte(NSFileManager.defaultManager.homeDirectoryForCurrentUser.path) +
           "/Library/Logs/Brindex.log";
}

}  // namespace brindex::cocoa
