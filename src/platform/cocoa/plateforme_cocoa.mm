#import "platform/cocoa/plateforme_cocoa.h"

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
    NSURLSession *session = [NSURLSession
        sessionWithConfiguration:NSURLSessionConfiguration.ephemeralSessionConfiguration];
    auto rappel = std::make_shared<std::function<void(EchangeTermine)>>(std::move(fin));
    NSURLSessionDataTask *tache = [session
        dataTaskWithRequest:demande
          completionHandler:^(NSData *donnees, NSURLResponse *reponse, NSError *erreur) {
              // On the session's queue: only plain values cross to the main thread.
              EchangeTermine termine;
              if (erreur) {
                  termine.erreur = ErreurTransport{erreur.code, texte(erreur.localizedDescription)};
              }
              if ([reponse isKindOfClass:NSHTTPURLResponse.class]) {
                  termine.reponse = EchangeTermine::Reponse::http;
                  termine.statut = static_cast<int>(((NSHTTPURLResponse *)reponse).statusCode);
              } else if (reponse) {
                  termine.reponse = EchangeTermine::Reponse::autre;
              }
              if (donnees) {
                  termine.corps =
                      std::string(static_cast<const char *>(donnees.bytes), donnees.length);
              }
              dispatch_async(dispatch_get_main_queue(), ^{
                  (*rappel)(termine);
              });
          }];
    [tache resume];
    [session finishTasksAndInvalidate];
}

// ---- Platform ----

void PlateformeCocoa::definirControleur(std::weak_ptr<Controleur> controleur) {
    controleur_ = controleur;
    telechargements_ = [[BrindexDelegueTelechargements alloc] initAvecControleur:controleur];
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

void PlateformeCocoa::reveler(const std::string &chemin) {
    [NSWorkspace.sharedWorkspace
        activateFileViewerSelectingURLs:@[ [NSURL fileURLWithPath:ns(chemin)] ]];
}

void PlateformeCocoa::alerte(const Alerte &alerte, std::function<void(ReponseAlerte)> reponse) {
    NSTextField *champ = nil;
    NSAlert *a = alerteNative(alerte, &champ);
    const NSModalResponse resultat = [a runModal];
    ReponseAlerte r;
    const NSInteger index = resultat - NSAlertFirstButtonReturn;
    if (index >= 0 && static_cast<std::size_t>(index) < alerte.boutons.size()) {
        r.bouton = static_cast<std::size_t>(index);
    }
    if (champ) r.champ = texte(champ.stringValue);
    reponse(std::move(r));
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
    NSURL *dossier = [NSFileManager.defaultManager URLsForDirectory:NSDownloadsDirectory
                                                          inDomains:NSUserDomainMask]
                         .firstObject;
    if (!dossier) return std::nullopt;
    return texte(dossier.path);
}

std::string PlateformeCocoa::dossierPersonnel() {
    return texte(NSFileManager.defaultManager.homeDirectoryForCurrentUser.path);
}

bool PlateformeCocoa::existe(const std::string &chemin) {
    return [NSFileManager.defaultManager fileExistsAtPath:ns(chemin)];
}

std::string PlateformeCocoa::cheminJournal() {
    return texte(NSFileManager.defaultManager.homeDirectoryForCurrentUser.path) +
           "/Library/Logs/Brindex.log";
}

}  // namespace brindex::cocoa
