#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "container/ports.hpp"

namespace brindex {

// The one question asked before a page that wants to be confirmed is left: "Rester sur la page"
// is the default and Escape's, so that no hurried key loses what the user typed.
Alerte questionDepart();

// Leaving pages that may hold the user's unsaved work. Navigations are asked by the engine itself
// (reload, history, a link, a load); what destroys a view without navigating (a change of space,
// closing a window, quitting) first asks its pages, in turn, to close politely, and goes on only
// once every one agreed. A page asks at most once for each action of the user: one that asks again
// (from a script that reloads when told to stay, say) is kept where it is without a question.
class Departs {
  public:
    // A new action of the user: each page may ask once more.
    void nouvelleAction() { ++action_; }

    // A page asks to be confirmed before it is left: whether to show the question now. No when it
    // already asked for this action of the user, or while its question is still open.
    bool questionPermise(const VueWeb& vue);
    void questionFermee(const VueWeb& vue) { ouvertes_.erase(&vue); }

    // Asks the views in turn whether they may be left; `suite` runs once all agreed. Gives true
    // when they all agreed before this returns: then `suite` doesn't run, the caller goes on.
    // Refused while a question is open for one of these pages or for the departure under way;
    // replaces a departure that only waits for the engine.
    bool commencer(const std::vector<std::shared_ptr<VueWeb>>& vues, std::function<void()> suite);
    // The engine says the page agreed to close; false if no departure was waiting for it (the page
    // asked to close by itself).
    bool accord(const VueWeb& vue);
    // The page is to stay: the departure waiting for it ends, and nothing goes.
    void refus(const VueWeb& vue);
    bool attend(const VueWeb& vue) const { return enCours_ && enCours_->courante == &vue; }
    void oublier(const VueWeb& vue);

  private:
    // Asks the next pages; gives true once every page agreed.
    bool poursuivre();

    struct EnCours {
        std::vector<std::weak_ptr<VueWeb>> restantes;
        const VueWeb* courante = nullptr;
        std::function<void()> suite;
        // Asking pages now: an agreement that comes meanwhile lets the loop go on.
        bool dansBoucle = false;
    };
    unsigned action_ = 0;
    std::map<const VueWeb*, unsigned> dernieresQuestions_;
    std::set<const VueWeb*> ouvertes_;
    std::optional<EnCours> enCours_;
};

}  // namespace brindex
