#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <string>
#include <string_view>

#include "brand/marque.hpp"
#include "screens/disposition.hpp"

namespace brindex::cocoa {

inline NSString *ns(std::string_view texte) {
    return [[NSString alloc] initWithBytes:texte.data()
                                    length:texte.size()
                                  encoding:NSUTF8StringEncoding];
}

inline std::string texte(NSString *chaine) {
    const char *utf8 = chaine.UTF8String;
    return utf8 ? std::string(utf8) : std::string();
}

inline std::optional<std::string> texteOptionnel(NSString *chaine) {
    if (!chaine) return std::nullopt;
    return texte(chaine);
}

// The user's Downloads and home folders, as the system names them.
inline std::optional<std::string> dossierTelechargementsSysteme() {
    return texteOptionnel([NSFileManager.defaultManager URLsForDirectory:NSDownloadsDirectory
                                                               inDomains:NSUserDomainMask]
                              .firstObject.path);
}
inline std::string dossierPersonnelSysteme() {
    return texte(NSFileManager.defaultManager.homeDirectoryForCurrentUser.path);
}

// Lets an object go only once the current event has been handled: AppKit and WebKit may still
// be inside one of its callbacks (a button's action, windowWillClose:, a delegate method) when
// its owner drops it.
inline void relacherPlusTard(id objet) {
    if (!objet) return;
    dispatch_async(dispatch_get_main_queue(), ^{
        (void)objet;
    });
}

// Adds `enfant` to `parent`, edge to edge.
inline void remplir(NSView *parent, NSView *enfant) {
    enfant.translatesAutoresizingMaskIntoConstraints = NO;
    [parent addSubview:enfant];
    [NSLayoutConstraint activateConstraints:@[
        [enfant.topAnchor constraintEqualToAnchor:parent.topAnchor],
        [enfant.bottomAnchor constraintEqualToAnchor:parent.bottomAnchor],
        [enfant.leadingAnchor constraintEqualToAnchor:parent.leadingAnchor],
        [enfant.trailingAnchor constraintEqualToAnchor:parent.trailingAnchor],
    ]];
}

inline NSColor *couleur(const Couleur &c, double opacite = 1.0) {
    return [NSColor colorWithSRGBRed:c.rouge green:c.vert blue:c.bleu alpha:c.alpha * opacite];
}

inline NSFont *police(const Disposition::Police &p) {
    NSFontWeight graisse = NSFontWeightRegular;
    switch (p.graisse) {
        case Disposition::Graisse::normale:
            graisse = NSFontWeightRegular;
            break;
        case Disposition::Graisse::legere:
            graisse = NSFontWeightLight;
            break;
        case Disposition::Graisse::moyenne:
            graisse = NSFontWeightMedium;
            break;
        case Disposition::Graisse::demiGrasse:
            graisse = NSFontWeightSemibold;
            break;
    }
    return [NSFont systemFontOfSize:p.taille weight:graisse];
}

inline NSControlSize tailleControle(Disposition::TailleControle taille) {
    switch (taille) {
        case Disposition::TailleControle::petite:
            return NSControlSizeSmall;
        case Disposition::TailleControle::normale:
            return NSControlSizeRegular;
        case Disposition::TailleControle::grande:
            return NSControlSizeLarge;
    }
    return NSControlSizeRegular;
}

}  // namespace brindex::cocoa
