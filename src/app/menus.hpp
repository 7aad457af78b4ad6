#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "container/commandes.hpp"

namespace brindex {

// Modifier masks of a key equivalent, with the values the macOS menu items take.
namespace Modificateur {
inline constexpr std::uint32_t commande = 0x100000;
inline constexpr std::uint32_t majuscule = 0x20000;
inline constexpr std::uint32_t option = 0x80000;
inline constexpr std::uint32_t controle = 0x40000;
}  // namespace Modificateur

struct Menu;

// One row of a menu: a separator, an item with its command, or an item opening a submenu.
struct ElementMenu {
    bool separateur = false;
    std::string_view titre;
    std::optional<Commande> commande;
    // The Objective-C action ("recharger:", "performClose:").
    std::string_view selecteur;
    // One character, or empty for none. A capital letter implies Shift on macOS.
    std::string_view touche;
    // 0 keeps the platform's default, Command alone.
    std::uint32_t masque = 0;
    // The submenu this item opens (it then has no command).
    const Menu* sousMenu = nullptr;
    // Only where it means something: the Dock and the application switcher, the system's
    // spelling panel are macOS's.
    bool macosSeulement = false;
};

// What the platform registers a menu as.
enum class RoleMenu { application, ordinaire, fenetres, aide };

struct Menu {
    // Empty for the application menu, whose menu-bar item is titled `titreBarre`.
    std::string_view titre;
    std::string_view titreBarre;
    RoleMenu role;
    // Whether the target rule looks at this menu's items.
    bool cibleExaminee;
    std::span<const ElementMenu> elements;
};

// The whole menu bar, left to right; built once at launch and never changed.
std::span<const Menu> barreDeMenus();

// Whether the controller has an action for this command.
bool controleurRepond(Commande commande);

enum class Cible { aucune, controleur };
// The item's target: the controller for an item of a looked-at menu whose action the
// controller answers (`repond`), otherwise none, so that the action travels the responder chain.
Cible cibleDe(const Menu& menu, const ElementMenu& element,
              const std::function<bool(Commande)>& repond = controleurRepond);

// The item's accelerator in GTK's syntax ("<Control>r", "<Control><Shift>h"), Control standing
// for Command; empty when the item has no key equivalent.
std::string accelerateurGtk(const ElementMenu& element);

}  // namespace brindex
