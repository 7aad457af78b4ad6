#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "container/recherche.hpp"

// A window's find bar above the page: the search field, the count (where the engine gives
// one), previous and next, and "Terminé". Return goes to the next match, Shift+Return to the
// previous one, Escape closes.
@interface BrindexBarreRecherche : NSView <NSSearchFieldDelegate>
- (instancetype)initAvecRecherche:(std::shared_ptr<brindex::RechercheDansPage>)recherche
    NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder *)coder NS_UNAVAILABLE;
@end

namespace brindex::cocoa {

// A column where the page fills what a window's bars leave.
NSStackView *colonne(NSView *page);
// A bar at the top of the column; hidden, it takes no room.
void placerEnTete(NSStackView *colonne, NSView *barre);

}  // namespace brindex::cocoa
