#pragma once

#include <chrono>
#include <optional>

namespace brindex {

// A page that prints without the user's action gets one print dialog in this long.
inline constexpr std::chrono::seconds intervalleImpressionAutomatique{60};

// Where one window stands with printing.
struct EtatImpression {
    bool dialogueOuvert = false;
    // The last dialog a page opened without the user's action, and whether a refusal has been
    // logged since.
    std::optional<std::chrono::steady_clock::time_point> derniereAutomatique;
    bool refusNote = false;
};

// `ignorer`: nothing happens; `refuser`: nothing happens and the log says so, once.
enum class DecisionImpression { ouvrir, ignorer, refuser };

// One print dialog per window at a time: asking again while it is open, from the menu or from a
// page's print() in a loop, does nothing. The user's own request opens it; a page's request
// without one opens it once a minute, and the first refusal after that is logged, not the
// thousands a loop may make.
DecisionImpression deciderImpression(EtatImpression& etat, bool parUtilisateur,
                                     std::chrono::steady_clock::time_point maintenant);

}  // namespace brindex
