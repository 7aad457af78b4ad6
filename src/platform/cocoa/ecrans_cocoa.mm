#import "platform/cocoa/ecrans_cocoa.h"

#include "platform/cocoa/outils_cocoa.h"

namespace D = brindex::Disposition;
using brindex::cocoa::couleur;
using brindex::cocoa::ns;
using brindex::cocoa::police;

namespace {

NSTextField *etiquette(const D::Texte &modele, NSString *texte) {
    NSTextField *label = modele.largeur ? [NSTextField wrappingLabelWithString:texte]
                                        : [NSTextField labelWithString:texte];
    label.font = police(modele.police);
    label.textColor = couleur(modele.couleur, modele.opacite);
    if (modele.centre) label.alignment = NSTextAlignmentCenter;
    return label;
}

NSButton *bouton(const D::Bouton &modele, id cible, SEL action) {
    NSButton *b = [NSButton buttonWithTitle:ns(modele.titre) target:cible action:action];
    b.bezelStyle = NSBezelStyleRounded;
    b.controlSize = brindex::cocoa::tailleControle(modele.taille);
    if (modele.parDefaut) {
        b.keyEquivalent = @"\r";
        b.bezelColor = couleur(brindex::Marque::accent);
        b.contentTintColor = NSColor.whiteColor;
    }
    return b;
}

void fondDeMarque(NSView *vue) {
    vue.wantsLayer = YES;
    vue.layer.backgroundColor = couleur(brindex::Marque::fond).CGColor;
}

}  // namespace

// ---- Configuration ----

namespace {

// The configuration view's controls, as its logic drives them.
class ControlesCocoa : public brindex::ControlesConfiguration {
   public:
    explicit ControlesCocoa(BrindexVueConfiguration *vue) : vue_(vue) {}
    std::string texteChamp() const override {
        return brindex::cocoa::texte(vue_.champ.stringValue);
    }
    void definirTexteChamp(const std::string &texte) override {
        vue_.champ.stringValue = ns(texte);
    }
    void activerChamp(bool actif) override { vue_.champ.enabled = actif; }
    void activerBouton(bool actif) override { vue_.bouton.enabled = actif; }
    void tournerRoue(bool enMarche) override {
        if (enMarche) {
            [vue_.roue startAnimation:nil];
        } else {
            [vue_.roue stopAnimation:nil];
        }
    }
    void couleurMessage(const brindex::Couleur &c) override {
        vue_.messageErreur.textColor = couleur(c);
    }
    void texteMessage(const std::string &texte) override {
        vue_.messageErreur.stringValue = ns(texte);
    }
    void montrerForcer(bool visible) override { vue_.boutonForcer.hidden = !visible; }
    void focaliserChamp() override { [vue_.window makeFirstResponder:vue_.champ]; }

   private:
    __weak BrindexVueConfiguration *vue_;
};

}  // namespace

@implementation BrindexVueConfiguration {
    std::shared_ptr<brindex::VueConfiguration> _vue;
    std::unique_ptr<ControlesCocoa> _controles;
}

- (instancetype)initAvecVue:(std::shared_ptr<brindex::VueConfiguration>)vue {
    self = [super initWithFrame:NSZeroRect];
    if (!self) return nil;
    _vue = std::move(vue);
    _controles = std::make_unique<ControlesCocoa>(self);
    namespace C = D::Configuration;
    fondDeMarque(self);

    NSImageView *logo = [NSImageView imageViewWithImage:NSApp.applicationIconImage];
    logo.imageScaling = NSImageScaleProportionallyUpOrDown;
    NSTextField *titre = etiquette(C::titre, ns(C::titre.texte));
    NSTextField *intro = etiquette(C::intro, ns(C::intro.texte));
    NSTextField *libelle = etiquette(C::libelle, ns(C::libelle.texte));

    _champ = [[NSTextField alloc] initWithFrame:NSZeroRect];
    _champ.stringValue = ns(_vue->texteInitial());
    _champ.placeholderString =
        ns(std::string(C::prefixeExemple) + std::string(brindex::Marque::hoteExemple));
    _champ.font = police(C::policeChamp);
    _champ.bezelStyle = NSTextFieldRoundedBezel;
    _champ.controlSize = NSControlSizeLarge;
    _champ.delegate = self;
    _champ.target = self;
    _champ.action = @selector(valider:);

    _bouton = bouton(C::connexion, self, @selector(valider:));
    _bouton.font = police(C::policeConnexion);
    NSStackView *ligneSaisie = [NSStackView stackViewWithViews:@[ _champ, _bouton ]];
    ligneSaisie.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    ligneSaisie.spacing = C::espacementSaisie;

    _roue = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
    _roue.style = NSProgressIndicatorStyleSpinning;
    _roue.controlSize = NSControlSizeSmall;
    _roue.displayedWhenStopped = NO;
    _messageErreur = etiquette(C::message, @"");
    _messageErreur.maximumNumberOfLines = C::lignesMessage;
    _messageErreur.lineBreakMode = NSLineBreakByWordWrapping;
    NSStackView *ligneEtat = [NSStackView stackViewWithViews:@[ _roue, _messageErreur ]];
    ligneEtat.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    ligneEtat.spacing = C::espacementEtat;

    _boutonForcer = bouton(C::forcer, self, @selector(forcer:));
    _boutonForcer.hidden = YES;
    NSString *aide = ns(std::string(C::aide) + std::string(brindex::Marque::domaineSite));
    NSTextField *texteAide = etiquette(C::texteAide, aide);

    NSStackView *pile = [NSStackView stackViewWithViews:@[
        logo, titre, intro, libelle, ligneSaisie, ligneEtat, _boutonForcer, texteAide
    ]];
    pile.orientation = NSUserInterfaceLayoutOrientationVertical;
    pile.alignment = NSLayoutAttributeCenterX;
    pile.spacing = D::espacementColonne;
    [pile setCustomSpacing:C::sousLogo afterView:logo];
    [pile setCustomSpacing:C::sousTitre afterView:titre];
    [pile setCustomSpacing:C::sousIntro afterView:intro];
    [pile setCustomSpacing:C::sousLibelle afterView:libelle];
    [pile setCustomSpacing:C::sousSaisie afterView:ligneSaisie];
    [pile setCustomSpacing:C::sousEtat afterView:ligneEtat];
    pile.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:pile];

    [NSLayoutConstraint activateConstraints:@[
        [logo.widthAnchor constraintEqualToConstant:C::cote],
        [logo.heightAnchor constraintEqualToConstant:C::cote],
        [intro.widthAnchor constraintEqualToConstant:*C::intro.largeur],
        [libelle.leadingAnchor constraintEqualToAnchor:ligneSaisie.leadingAnchor],
        [_champ.widthAnchor constraintEqualToConstant:C::largeurChamp],
        [_messageErreur.widthAnchor constraintLessThanOrEqualToConstant:*C::message.largeur],
        [texteAide.widthAnchor constraintEqualToConstant:*C::texteAide.largeur],
        [pile.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
        [pile.centerYAnchor constraintEqualToAnchor:self.centerYAnchor
                                           constant:-C::decalageVertical],
    ]];
    return self;
}

- (brindex::ControlesConfiguration &)controles {
    return *_controles;
}

- (void)valider:(id)sender {
    // The view's logic may replace this view while it runs.
    const auto vue = _vue;
    vue->valider();
}

- (void)forcer:(id)sender {
    const auto vue = _vue;
    vue->forcer();
}

- (void)controlTextDidChange:(NSNotification *)notification {
    const auto vue = _vue;
    vue->texteModifie();
}

@end

// ---- Error ----

@implementation BrindexVueErreur {
    std::shared_ptr<brindex::VueErreur> _vue;
}

- (instancetype)initAvecVue:(std::shared_ptr<brindex::VueErreur>)vue {
    self = [super initWithFrame:NSZeroRect];
    if (!self) return nil;
    _vue = std::move(vue);
    namespace E = D::Erreur;
    fondDeMarque(self);

    NSTextField *signe = etiquette(E::signe, ns(E::signe.texte));
    NSTextField *titre = etiquette(E::titre, ns(_vue->titre()));
    NSTextField *explication = etiquette(E::explication, ns(_vue->detail()));
    NSButton *reessayer = bouton(E::reessayer, self, @selector(reessayer:));
    NSButton *changer = bouton(E::changer, self, @selector(changer:));
    NSStackView *boutons = [NSStackView stackViewWithViews:@[ changer, reessayer ]];
    boutons.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    boutons.spacing = E::espacementBoutons;

    NSStackView *colonne = [NSStackView stackViewWithViews:@[ signe, titre, explication, boutons ]];
    colonne.orientation = NSUserInterfaceLayoutOrientationVertical;
    colonne.alignment = NSLayoutAttributeCenterX;
    colonne.spacing = D::espacementColonne;
    [colonne setCustomSpacing:E::sousExplication afterView:explication];
    colonne.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:colonne];
    [NSLayoutConstraint activateConstraints:@[
        [explication.widthAnchor constraintEqualToConstant:*E::explication.largeur],
        [colonne.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
        [colonne.centerYAnchor constraintEqualToAnchor:self.centerYAnchor
                                              constant:-E::decalageVertical],
    ]];
    return self;
}

- (void)reessayer:(id)sender {
    // Retrying replaces this view while the call runs.
    const auto vue = _vue;
    vue->reessayer();
}

- (void)changer:(id)sender {
    const auto vue = _vue;
    vue->changer();
}

@end
