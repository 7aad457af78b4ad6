#import "platform/cocoa/recherche_cocoa.h"

#include "platform/cocoa/outils_cocoa.h"

using brindex::cocoa::ns;

namespace {

// What the bar's logic sees of its widgets.
class ControlesCocoa : public brindex::ControlesRecherche {
   public:
    ControlesCocoa(NSView *barre, NSSearchField *champ, NSTextField *statut)
        : barre_(barre), champ_(champ), statut_(statut) {}
    void montrer(bool visible) override { barre_.hidden = !visible; }
    void focaliserChamp() override {
        [champ_.window makeFirstResponder:champ_];
        [champ_ selectText:nil];
    }
    std::string texteChamp() const override { return brindex::cocoa::texte(champ_.stringValue); }
    void statut(const std::string &texte, bool echec) override {
        statut_.stringValue = ns(texte);
        statut_.textColor = echec ? NSColor.systemRedColor : NSColor.secondaryLabelColor;
    }

   private:
    __weak NSView *barre_;
    __weak NSSearchField *champ_;
    __weak NSTextField *statut_;
};

}  // namespace

@implementation BrindexBarreRecherche {
    std::shared_ptr<brindex::RechercheDansPage> _recherche;
    std::unique_ptr<ControlesCocoa> _controles;
    NSSearchField *_champ;
}

- (instancetype)initAvecRecherche:(std::shared_ptr<brindex::RechercheDansPage>)recherche {
    self = [super initWithFrame:NSZeroRect];
    if (!self) return nil;
    _recherche = std::move(recherche);
    _champ = [[NSSearchField alloc] init];
    _champ.placeholderString = ns(brindex::texteChampRecherche);
    _champ.delegate = self;
    _champ.target = self;
    _champ.action = @selector(texteModifie:);
    // Searched as the user types, after a short pause.
    _champ.sendsSearchStringImmediately = NO;
    [_champ.widthAnchor constraintEqualToConstant:260].active = YES;
    NSSegmentedControl *fleches =
        [NSSegmentedControl segmentedControlWithImages:@[
            [NSImage imageWithSystemSymbolName:@"chevron.left"
                      accessibilityDescription:ns(brindex::texteResultatPrecedent)],
            [NSImage imageWithSystemSymbolName:@"chevron.right"
                      accessibilityDescription:ns(brindex::texteResultatSuivant)]
        ]
                                          trackingMode:NSSegmentSwitchTrackingMomentary
                                                target:self
                                                action:@selector(fleche:)];
    NSTextField *statut = [NSTextField labelWithString:@""];
    statut.textColor = NSColor.secondaryLabelColor;
    NSButton *termine = [NSButton buttonWithTitle:ns(brindex::texteTermineRecherche)
                                           target:self
                                           action:@selector(termine:)];
    NSView *ressort = [[NSView alloc] init];
    [ressort setContentHuggingPriority:NSLayoutPriorityDefaultLow
                        forOrientation:NSLayoutConstraintOrientationHorizontal];
    NSStackView *rangee =
        [NSStackView stackViewWithViews:@[ _champ, fleches, statut, ressort, termine ]];
    rangee.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    rangee.edgeInsets = NSEdgeInsetsMake(5, 10, 5, 10);
    brindex::cocoa::remplir(self, rangee);
    self.wantsLayer = YES;
    self.layer.backgroundColor = brindex::cocoa::couleur(brindex::Marque::carte).CGColor;
    self.hidden = YES;
    _controles = std::make_unique<ControlesCocoa>(self, _champ, statut);
    _recherche->attacher(_controles.get());
    return self;
}

- (void)dealloc {
    _recherche->attacher(nullptr);
}

- (void)texteModifie:(id)sender {
    _recherche->texteChange(brindex::cocoa::texte(_champ.stringValue));
}

- (void)fleche:(NSSegmentedControl *)sender {
    if (sender.selectedSegment == 0) {
        _recherche->precedent();
    } else {
        _recherche->suivant();
    }
}

- (void)termine:(id)sender {
    _recherche->fermer();
}

// NSSearchFieldDelegate (NSControlTextEditingDelegate)

- (BOOL)control:(NSControl *)control
               textView:(NSTextView *)textView
    doCommandBySelector:(SEL)commandSelector {
    if (commandSelector == @selector(insertNewline:)) {
        if (NSApp.currentEvent.modifierFlags & NSEventModifierFlagShift) {
            _recherche->precedent();
        } else {
            _recherche->suivant();
        }
        return YES;
    }
    if (commandSelector == @selector(cancelOperation:)) {
        _recherche->fermer();
        return YES;
    }
    return NO;
}

@end

namespace brindex::cocoa {

NSStackView *colonne(NSView *page) {
    NSStackView *pile = [NSStackView stackViewWithViews:@[]];
    pile.orientation = NSUserInterfaceLayoutOrientationVertical;
    pile.spacing = 0;
    pile.detachesHiddenViews = YES;
    page.translatesAutoresizingMaskIntoConstraints = NO;
    [pile addArrangedSubview:page];
    [page.widthAnchor constraintEqualToAnchor:pile.widthAnchor].active = YES;
    [page setContentHuggingPriority:NSLayoutPriorityDefaultLow
                     forOrientation:NSLayoutConstraintOrientationVertical];
    return pile;
}

void placerEnTete(NSStackView *pile, NSView *barre) {
    barre.translatesAutoresizingMaskIntoConstraints = NO;
    [pile insertArrangedSubview:barre atIndex:0];
    [barre.widthAnchor constraintEqualToAnchor:pile.widthAnchor].active = YES;
}

}  // namespace brindex::cocoa
