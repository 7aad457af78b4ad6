// The macOS application: its entry point, its delegate holding the one controller, and the
// menu bar built from the shared table.

#import <AppKit/AppKit.h>

#include <memory>

#include "app/lancement.hpp"
#include "app/menus.hpp"
#include "container/controleur.hpp"
#include "log/journal.hpp"
#include "platform/cocoa/outils_cocoa.h"
#import "platform/cocoa/plateforme_cocoa.h"

using brindex::Commande;
using brindex::cocoa::ns;

// Receives the menu items aimed at the controller and runs its commands.
@interface BrindexCibleControleur : NSObject
- (instancetype)initAvecControleur:(std::weak_ptr<brindex::Controleur>)controleur;
@end

@implementation BrindexCibleControleur {
    std::weak_ptr<brindex::Controleur> _controleur;
}

- (instancetype)initAvecControleur:(std::weak_ptr<brindex::Controleur>)controleur {
    self = [super init];
    if (self) _controleur = std::move(controleur);
    return self;
}

- (void)executer:(Commande)commande {
    if (const auto controleur = _controleur.lock()) controleur->executer(commande);
}

- (void)recharger:(id)sender {
    [self executer:Commande::recharger];
}
- (void)rechargerOrigine:(id)sender {
    [self executer:Commande::rechargerOrigine];
}
- (void)pagePrecedente:(id)sender {
    [self executer:Commande::pagePrecedente];
}
- (void)pageSuivante:(id)sender {
    [self executer:Commande::pageSuivante];
}
- (void)accueil:(id)sender {
    [self executer:Commande::accueil];
}
- (void)zoomPlus:(id)sender {
    [self executer:Commande::zoomPlus];
}
- (void)zoomMoins:(id)sender {
    [self executer:Commande::zoomMoins];
}
- (void)zoomReel:(id)sender {
    [self executer:Commande::zoomReel];
}
- (void)changerEspace:(id)sender {
    [self executer:Commande::changerEspace];
}
- (void)ouvrirSite:(id)sender {
    [self executer:Commande::ouvrirSite];
}
- (void)ouvrirJournal:(id)sender {
    [self executer:Commande::ouvrirJournal];
}
- (void)imprimer:(id)sender {
    [self executer:Commande::imprimer];
}
- (void)rechercher:(id)sender {
    [self executer:Commande::rechercher];
}
- (void)rechercherSuivant:(id)sender {
    [self executer:Commande::rechercherSuivant];
}
- (void)rechercherPrecedent:(id)sender {
    [self executer:Commande::rechercherPrecedent];
}

@end

@interface AppDelegate : NSObject <NSApplicationDelegate>
- (void)construireMenus;
@end

namespace {

// What the launch sequence asks of the application object.
class CoquilleCocoa : public brindex::Coquille {
   public:
    explicit CoquilleCocoa(AppDelegate *delegue) : delegue_(delegue) {}
    void construireMenus() override { [delegue_ construireMenus]; }
    void activer() override { [NSApp activateIgnoringOtherApps:YES]; }

   private:
    __weak AppDelegate *delegue_;
};

}  // namespace

@implementation AppDelegate {
    std::unique_ptr<brindex::cocoa::PlateformeCocoa> _plateforme;
    std::shared_ptr<brindex::Controleur> _controleur;
    BrindexCibleControleur *_cible;
}

- (instancetype)init {
    self = [super init];
    if (!self) return nil;
    brindex::Journal::definirChemin(brindex::cocoa::PlateformeCocoa::cheminJournal());
    // The controller and its main window exist before launch; nothing shows until then.
    _plateforme = std::make_unique<brindex::cocoa::PlateformeCocoa>();
    _controleur = brindex::Controleur::creer(*_plateforme);
    _plateforme->definirControleur(_controleur);
    _cible = [[BrindexCibleControleur alloc] initAvecControleur:_controleur];
    return self;
}

- (void)applicationDidFinishLaunching:(NSNotification *)notification {
    CoquilleCocoa coquille(self);
    brindex::lancer(coquille, *_controleur);
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication *)sender {
    return YES;
}

// Quitting asks the pages first; once they all agreed, the main window closes, which ends the
// application.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication *)sender {
    return _controleur->quitter() ? NSTerminateNow : NSTerminateCancel;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication *)app {
    return YES;
}

- (BOOL)applicationShouldHandleReopen:(NSApplication *)sender hasVisibleWindows:(BOOL)flag {
    return brindex::reouvrir(*_controleur, flag);
}

// One menu of the table, its submenus within.
- (NSMenu *)menuDe:(const brindex::Menu &)menu {
    NSMenu *sousMenu =
        menu.titre.empty() ? [[NSMenu alloc] init] : [[NSMenu alloc] initWithTitle:ns(menu.titre)];
    for (const brindex::ElementMenu &element : menu.elements) {
        if (element.separateur) {
            [sousMenu addItem:[NSMenuItem separatorItem]];
            continue;
        }
        if (element.sousMenu) {
            NSMenuItem *item = [sousMenu addItemWithTitle:ns(element.titre)
                                                   action:nil
                                            keyEquivalent:@""];
            item.submenu = [self menuDe:*element.sousMenu];
            continue;
        }
        const SEL action = NSSelectorFromString(ns(element.selecteur));
        NSMenuItem *item = [sousMenu addItemWithTitle:ns(element.titre)
                                               action:action
                                        keyEquivalent:ns(element.touche)];
        if (element.masque != 0) item.keyEquivalentModifierMask = element.masque;
        // The controller's own actions go to it; the others travel the responder chain.
        const auto cible = brindex::cibleDe(menu, element, [action](Commande) {
            return [BrindexCibleControleur instancesRespondToSelector:action] == YES;
        });
        if (cible == brindex::Cible::controleur) item.target = _cible;
    }
    return sousMenu;
}

- (void)construireMenus {
    NSMenu *principal = [[NSMenu alloc] init];
    for (const brindex::Menu &menu : brindex::barreDeMenus()) {
        NSMenu *sousMenu = [self menuDe:menu];
        switch (menu.role) {
            case brindex::RoleMenu::fenetres:
                NSApp.windowsMenu = sousMenu;
                break;
            case brindex::RoleMenu::aide:
                NSApp.helpMenu = sousMenu;
                break;
            case brindex::RoleMenu::application:
            case brindex::RoleMenu::ordinaire:
                break;
        }
        NSMenuItem *entree = [[NSMenuItem alloc] initWithTitle:ns(menu.titreBarre)
                                                        action:nil
                                                 keyEquivalent:@""];
        entree.submenu = sousMenu;
        [principal addItem:entree];
    }
    NSApp.mainMenu = principal;
}

@end

// No argument is used.
int main() {
    @autoreleasepool {
        NSApplication *application = NSApplication.sharedApplication;
        // With "Prefer tabs", AppKit would make popups tabs of the main window and add tab
        // commands to the fixed menu bar: off before any window exists.
        NSWindow.allowsAutomaticWindowTabbing = NO;
        // WebKit checks spelling as the user types only when the user's defaults say so, and
        // they say nothing until the user chooses in Édition › Orthographe et grammaire: on
        // until then. Read once, before the first web view.
        [NSUserDefaults.standardUserDefaults registerDefaults:@{
            @"WebContinuousSpellCheckingEnabled" : @YES
        }];
        // The delegate lives for the whole run: NSApplication holds it weakly.
        static AppDelegate *delegue = [[AppDelegate alloc] init];
        application.delegate = delegue;
        [application setActivationPolicy:NSApplicationActivationPolicyRegular];
        [application run];
    }
    return 0;
}
