#import "platform/cocoa/fenetres_cocoa.h"

#import "platform/cocoa/ecrans_cocoa.h"
#import "platform/cocoa/vue_web_cocoa.h"

#include "container/connexion.hpp"
#include "platform/cocoa/outils_cocoa.h"

@implementation BrindexDelegueFenetre

- (BOOL)windowShouldClose:(NSWindow *)sender {
    if (auto retenue = self.retenue) return retenue();
    return YES;
}

- (void)windowWillClose:(NSNotification *)notification {
    // The callback may release this object's owner: it runs from a copy.
    if (auto rappel = self.vaFermer) rappel();
}

@end

@implementation BrindexCible

- (void)agir:(id)sender {
    // The callback may take this target's bar away: it runs from a copy.
    if (auto action = self.action) action();
}

@end

namespace brindex::cocoa {

namespace {

constexpr NSWindowStyleMask styleFenetre = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                           NSWindowStyleMaskMiniaturizable |
                                           NSWindowStyleMaskResizable;

}  // namespace

AlerteNative::AlerteNative(const Alerte &alerte) : description_(alerte) {
    alerte_ = [[NSAlert alloc] init];
    alerte_.messageText = ns(alerte.message);
    alerte_.informativeText = ns(alerte.informatif);
    NSStackView *pile = [[NSStackView alloc] init];
    pile.orientation = NSUserInterfaceLayoutOrientationVertical;
    pile.alignment = NSLayoutAttributeLeading;
    pile.spacing = 6;
    if (alerte.champ) {
        champ_ = [[NSTextField alloc]
            initWithFrame:NSMakeRect(0, 0, alerte.largeurChamp, alerte.hauteurChamp)];
        champ_.stringValue = ns(*alerte.champ);
    }
    for (const ChampAlerte &c : alerte.champs) {
        NSTextField *libelle = [NSTextField labelWithString:ns(c.libelle)];
        NSTextField *saisie =
            c.secret ? [[NSSecureTextField alloc] init] : [[NSTextField alloc] init];
        saisie.stringValue = ns(c.texte);
        [saisie.widthAnchor constraintEqualToConstant:alerte.largeurChamp].active = YES;
        [pile addArrangedSubview:libelle];
        [pile addArrangedSubview:saisie];
        [champs_ addObject:saisie];
    }
    if (champs_.count > 0) {
        // The prompt's field keeps its own frame; labelled fields stack under the text.
        if (champ_) [pile insertArrangedSubview:champ_ atIndex:0];
        pile.frame = NSMakeRect(0, 0, alerte.largeurChamp, pile.fittingSize.height);
        alerte_.accessoryView = pile;
    } else if (champ_) {
        alerte_.accessoryView = champ_;
    }
    if (alerte.caseACocher) {
        alerte_.showsSuppressionButton = YES;
        alerte_.suppressionButton.title = ns(*alerte.caseACocher);
        alerte_.suppressionButton.state = NSControlStateValueOff;
    }
    for (const auto &titre : alerte.boutons) [alerte_ addButtonWithTitle:ns(titre)];
    NSArray<NSButton *> *boutons = alerte_.buttons;
    if (alerte.boutonParDefaut != 0 && alerte.boutonParDefaut < boutons.count) {
        boutons[0].keyEquivalent = @"";
        boutons[alerte.boutonParDefaut].keyEquivalent = @"\r";
    }
    // NSAlert gives Escape only to a button titled with AppKit's own "Cancel": the named button,
    // else the second one ("Annuler"), takes it explicitly.
    const std::size_t echap = alerte.boutonEchap.value_or(1);
    if (echap < boutons.count && echap != alerte.boutonParDefaut) {
        boutons[echap].keyEquivalent = @"\x1b";
    }
    if (champ_ || champs_.count > 0) {
        alerte_.window.initialFirstResponder = champ_ ? champ_ : champs_.firstObject;
    }
}

ReponseAlerte AlerteNative::reponse(NSModalResponse resultat) const {
    ReponseAlerte r;
    const NSInteger index = resultat - NSAlertFirstButtonReturn;
    if (index >= 0 && static_cast<std::size_t>(index) < description_.boutons.size()) {
        r.bouton = static_cast<std::size_t>(index);
    }
    if (champ_) {
        r.champ = texte(champ_.stringValue);
        r.champModifie = ![champ_.stringValue isEqualToString:ns(*description_.champ)];
    }
    for (NSTextField *c in champs_) r.champs.push_back(texte(c.stringValue));
    r.caseCochee =
        description_.caseACocher && alerte_.suppressionButton.state == NSControlStateValueOn;
    return r;
}

void AlerteNative::surveillerEchap() {
    if (!description_.boutonEchap || *description_.boutonEchap != description_.boutonParDefaut ||
        *description_.boutonEchap >= description_.boutons.size()) {
        return;
    }
    NSWindow *fenetreAlerte = alerte_.window;
    const NSModalResponse code =
        NSAlertFirstButtonReturn + static_cast<NSModalResponse>(*description_.boutonEchap);
    moniteur_ = [NSEvent
        addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                     handler:^NSEvent *(NSEvent *evenement) {
                                         if (evenement.window != fenetreAlerte ||
                                             ![evenement.charactersIgnoringModifiers
                                                 isEqualToString:@"\x1b"]) {
                                             return evenement;
                                         }
                                         if (fenetreAlerte.sheetParent) {
                                             [fenetreAlerte.sheetParent endSheet:fenetreAlerte
                                                                      returnCode:code];
                                         } else {
                                             [NSApp stopModalWithCode:code];
                                         }
                                         return nil;
                                     }];
}

void AlerteNative::finSurveillance() {
    if (moniteur_) [NSEvent removeMonitor:moniteur_];
    moniteur_ = nil;
}

// ---- Every window ----

template <typename Interface>
FenetreCocoa<Interface>::FenetreCocoa(const ParametresFenetre &parametres,
                                      std::function<void()> vaFermer) {
    fenetre_ = [[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, parametres.largeur, parametres.hauteur)
                  styleMask:styleFenetre
                    backing:NSBackingStoreBuffered
                      defer:NO];
    fenetre_.minSize = NSMakeSize(parametres.largeurMin, parametres.hauteurMin);
    fenetre_.title = ns(parametres.titre);
    fenetre_.backgroundColor = couleur(Marque::fond);
    fenetre_.releasedWhenClosed = NO;
    if (!parametres.nomSauvegarde.empty()) {
        [fenetre_ setFrameAutosaveName:ns(parametres.nomSauvegarde)];
    }
    [fenetre_ center];
    delegue_ = [[BrindexDelegueFenetre alloc] init];
    delegue_.vaFermer = std::move(vaFermer);
    fenetre_.delegate = delegue_;
}

template <typename Interface>
FenetreCocoa<Interface>::~FenetreCocoa() {
    fenetre_.delegate = nil;
    // Dropped from windowWillClose: while AppKit is still closing the window and the delegate
    // is still running its method.
    relacherPlusTard(fenetre_);
    relacherPlusTard(delegue_);
}

template <typename Interface>
void FenetreCocoa<Interface>::definirTitre(const std::string &titre) {
    fenetre_.title = ns(titre);
}

template <typename Interface>
bool FenetreCocoa<Interface>::estCle() const {
    return fenetre_.keyWindow;
}

template <typename Interface>
void FenetreCocoa<Interface>::devant() {
    [fenetre_ makeKeyAndOrderFront:nil];
}

template <typename Interface>
void FenetreCocoa<Interface>::oublierFermeture() {
    fenetre_.delegate = nil;
    delegue_.vaFermer = nullptr;
    delegue_.retenue = nullptr;
}

template <typename Interface>
void FenetreCocoa<Interface>::retenirFermeture(std::function<bool()> demande) {
    delegue_.retenue = std::move(demande);
}

template <typename Interface>
void FenetreCocoa<Interface>::fermer() {
    [fenetre_ close];
}

template <typename Interface>
void FenetreCocoa<Interface>::feuille(const Alerte &alerte,
                                      std::function<void(ReponseAlerte)> reponse) {
    auto native = std::make_shared<AlerteNative>(alerte);
    native->surveillerEchap();
    [native->alerte() beginSheetModalForWindow:fenetre_
                             completionHandler:^(NSModalResponse resultat) {
                                 native->finSurveillance();
                                 if (reponse) reponse(native->reponse(resultat));
                             }];
}

template <typename Interface>
void FenetreCocoa<Interface>::barreConnexion(const std::optional<std::string> &texte,
                                             std::function<void()> annuler) {
    if (!texte) {
        [barreConnexion_ removeFromParentViewController];
        // Its own button may be the one that asked.
        relacherPlusTard(barreConnexion_);
        relacherPlusTard(annulerConnexion_);
        barreConnexion_ = nil;
        texteConnexion_ = nil;
        annulerConnexion_ = nil;
        return;
    }
    if (!barreConnexion_) {
        texteConnexion_ = [NSTextField labelWithString:@""];
        texteConnexion_.lineBreakMode = NSLineBreakByTruncatingTail;
        [texteConnexion_
            setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                     forOrientation:NSLayoutConstraintOrientationHorizontal];
        annulerConnexion_ = [[BrindexCible alloc] init];
        NSButton *bouton = [NSButton buttonWithTitle:ns(boutonBarreConnexion)
                                              target:annulerConnexion_
                                              action:@selector(agir:)];
        NSStackView *pile = [NSStackView stackViewWithViews:@[ texteConnexion_, bouton ]];
        pile.edgeInsets = NSEdgeInsetsMake(4, 12, 4, 12);
        pile.frame = NSMakeRect(0, 0, fenetre_.frame.size.width, pile.fittingSize.height);
        barreConnexion_ = [[NSTitlebarAccessoryViewController alloc] init];
        barreConnexion_.layoutAttribute = NSLayoutAttributeBottom;
        barreConnexion_.view = pile;
        [fenetre_ addTitlebarAccessoryViewController:barreConnexion_];
    }
    texteConnexion_.stringValue = ns(*texte);
    annulerConnexion_.action = std::move(annuler);
}

template <typename Interface>
void FenetreCocoa<Interface>::attacherRecherche(std::shared_ptr<RechercheDansPage> recherche) {
    barreRecherche_ = [[BrindexBarreRecherche alloc] initAvecRecherche:std::move(recherche)];
    barreAttachee();
}

template class FenetreCocoa<FenetrePrincipale>;
template class FenetreCocoa<Fenetre>;

// ---- The main window ----

FenetrePrincipaleCocoa::FenetrePrincipaleCocoa(const ParametresFenetre &parametres,
                                               std::function<void()> vaFermer)
    : FenetreCocoa(parametres, std::move(vaFermer)) {}

void FenetrePrincipaleCocoa::remplacerContenu(NSView *ecran) {
    // The screen going away may be the one whose button asked for the change.
    relacherPlusTard(fenetre_.contentView);
    fenetre_.contentView = ecran;
}

void FenetrePrincipaleCocoa::montrerConfiguration(std::shared_ptr<VueConfiguration> vue) {
    barre_ = nil;
    BrindexVueConfiguration *ecran = [[BrindexVueConfiguration alloc] initAvecVue:vue];
    remplacerContenu(ecran);
    vue->attacher(ecran.controles);
}

void FenetrePrincipaleCocoa::montrerEspace(std::shared_ptr<VueWeb> vue) {
    auto *cocoa = dynamic_cast<VueWebCocoa *>(vue.get());
    if (!cocoa) return;
    NSView *conteneur = [[NSView alloc] initWithFrame:NSZeroRect];
    conteneur.wantsLayer = YES;
    conteneur.layer.backgroundColor = couleur(Marque::fond).CGColor;
    WKWebView *web = cocoa->webView();
    // The window's find bar above the page; it moves here from the screen before.
    NSStackView *pile = colonne(web);
    if (barreRecherche_) placerEnTete(pile, barreRecherche_);
    remplir(conteneur, pile);
    barre_ = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
    barre_.style = NSProgressIndicatorStyleBar;
    barre_.indeterminate = NO;
    barre_.minValue = 0;
    barre_.maxValue = 1;
    barre_.controlSize = NSControlSizeSmall;
    barre_.translatesAutoresizingMaskIntoConstraints = NO;
    barre_.hidden = YES;
    // Added second, so that it lies over the web view's top edge.
    [conteneur addSubview:barre_];
    [NSLayoutConstraint activateConstraints:@[
        [barre_.topAnchor constraintEqualToAnchor:web.topAnchor],
        [barre_.leadingAnchor constraintEqualToAnchor:conteneur.leadingAnchor],
        [barre_.trailingAnchor constraintEqualToAnchor:conteneur.trailingAnchor],
    ]];
    remplacerContenu(conteneur);
    // Arrow keys, space and the editing commands reach the page without a click first.
    [fenetre_ makeFirstResponder:web];
}

void FenetrePrincipaleCocoa::montrerErreur(std::shared_ptr<VueErreur> vue) {
    barre_ = nil;
    remplacerContenu([[BrindexVueErreur alloc] initAvecVue:vue]);
}

void FenetrePrincipaleCocoa::progression(double valeur, bool visible) {
    if (!barre_) return;
    barre_.doubleValue = valeur;
    barre_.hidden = !visible;
}

// ---- Secondary windows ----

FenetreSecondaireCocoa::FenetreSecondaireCocoa(const ParametresFenetre &parametres,
                                               std::shared_ptr<VueWeb> vue,
                                               std::function<void()> vaFermer)
    : FenetreCocoa(parametres, std::move(vaFermer)), vue_(std::move(vue)) {
    if (auto *cocoa = dynamic_cast<VueWebCocoa *>(vue_.get())) {
        WKWebView *web = cocoa->webView();
        // The page under the window's own bars.
        colonne_ = colonne(web);
        fenetre_.contentView = colonne_;
        [fenetre_ makeFirstResponder:web];
    }
    [fenetre_ center];
    [fenetre_ makeKeyAndOrderFront:nil];
}

void FenetreSecondaireCocoa::barreAttachee() {
    if (colonne_) placerEnTete(colonne_, barreRecherche_);
}

}  // namespace brindex::cocoa
