#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>

#include "container/ports.hpp"
#import "platform/cocoa/recherche_cocoa.h"

// Tells its owner that the window is about to close. NSWindow holds its delegate weakly: the
// C++ window object owns this one.
@interface BrindexDelegueFenetre : NSObject <NSWindowDelegate>
@property(nonatomic) std::function<void()> vaFermer;
// Asked when the user closes the window (its close button, Command-W); it closes on YES only.
@property(nonatomic) std::function<bool()> retenue;
@end

// A button's target that runs a callback.
@interface BrindexCible : NSObject
@property(nonatomic) std::function<void()> action;
- (void)agir:(id)sender;
@end

namespace brindex::cocoa {

// What every window of the application does, over an NSWindow.
template <typename Interface>
class FenetreCocoa : public Interface {
   public:
    FenetreCocoa(const ParametresFenetre &parametres, std::function<void()> vaFermer);
    ~FenetreCocoa() override;

    NSWindow *fenetre() const { return fenetre_; }

    void definirTitre(const std::string &titre) override;
    bool estCle() const override;
    void devant() override;
    void oublierFermeture() override;
    void retenirFermeture(std::function<bool()> demande) override;
    void fermer() override;
    using Interface::feuille;
    void feuille(const Alerte &alerte, std::function<void(ReponseAlerte)> reponse) override;
    // Under the title bar, above whatever the window shows.
    void barreConnexion(const std::optional<std::string> &texte,
                        std::function<void()> annuler) override;
    void attacherRecherche(std::shared_ptr<RechercheDansPage> recherche) override;

   protected:
    // The find bar has just been made: where it goes.
    virtual void barreAttachee() {}

    NSWindow *fenetre_;
    BrindexDelegueFenetre *delegue_;
    NSTitlebarAccessoryViewController *barreConnexion_ = nil;
    NSTextField *texteConnexion_ = nil;
    BrindexCible *annulerConnexion_ = nil;
    BrindexBarreRecherche *barreRecherche_ = nil;
};

// The main window: one of three screens as its content view.
class FenetrePrincipaleCocoa : public FenetreCocoa<FenetrePrincipale> {
   public:
    FenetrePrincipaleCocoa(const ParametresFenetre &parametres, std::function<void()> vaFermer);

    void montrerConfiguration(std::shared_ptr<VueConfiguration> vue) override;
    void montrerEspace(std::shared_ptr<VueWeb> vue) override;
    void montrerErreur(std::shared_ptr<VueErreur> vue) override;
    void progression(double valeur, bool visible) override;

   private:
    void remplacerContenu(NSView *ecran);

    NSProgressIndicator *barre_ = nil;
};

// A window around a popup's web view.
class FenetreSecondaireCocoa : public FenetreCocoa<Fenetre> {
   public:
    FenetreSecondaireCocoa(const ParametresFenetre &parametres, std::shared_ptr<VueWeb> vue,
                           std::function<void()> vaFermer);

   protected:
    void barreAttachee() override;

   private:
    std::shared_ptr<VueWeb> vue_;
    NSStackView *colonne_ = nil;
};

// An alert built from the core's description, and what its answer is read from.
class AlerteNative {
   public:
    explicit AlerteNative(const Alerte &alerte);
    NSAlert *alerte() const { return alerte_; }
    // The answer, once the alert has ended with `resultat`.
    ReponseAlerte reponse(NSModalResponse resultat) const;
    // Escape on the default button too, which AppKit can't give one button beside Return:
    // watched while the alert is up (for `fenetre`'s sheet, or the modal alert).
    void surveillerEchap();
    void finSurveillance();

   private:
    NSAlert *alerte_;
    Alerte description_;
    NSTextField *champ_ = nil;
    NSMutableArray<NSTextField *> *champs_ = [NSMutableArray array];
    id moniteur_ = nil;
};

}  // namespace brindex::cocoa
