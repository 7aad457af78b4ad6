#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "screens/vue_configuration.hpp"
#include "screens/vue_erreur.hpp"

// Where the user gives the address of their space; its logic drives these controls.
@interface BrindexVueConfiguration : NSView <NSTextFieldDelegate>
@property(nonatomic, readonly) NSTextField *champ;
@property(nonatomic, readonly) NSButton *bouton;
@property(nonatomic, readonly) NSTextField *messageErreur;
@property(nonatomic, readonly) NSButton *boutonForcer;
@property(nonatomic, readonly) NSProgressIndicator *roue;
- (instancetype)initAvecVue:(std::shared_ptr<brindex::VueConfiguration>)vue
    NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder *)coder NS_UNAVAILABLE;
// The controls as the view's logic sees them; they live as long as this view.
- (brindex::ControlesConfiguration &)controles;
@end

// Fills the main window when the space can't be reached.
@interface BrindexVueErreur : NSView
- (instancetype)initAvecVue:(std::shared_ptr<brindex::VueErreur>)vue NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder *)coder NS_UNAVAILABLE;
@end
