#include "container/depart.hpp"

#include <algorithm>
#include <utility>

namespace brindex {

Alerte questionDepart() {
    Alerte question{"Quitter cette page ?",
                    "Les modifications que vous avez faites pourraient ne pas être enregistrées.",
                    {"Rester sur la page", "Quitter la page"},
                    std::nullopt,
                    260,
                    24};
    question.boutonEchap = 0;
    return question;
}

bool Departs::questionPermise(const VueWeb& vue) {
    const auto derniere = dernieresQuestions_.find(&vue);
    if (ouvertes_.contains(&vue) ||
        (derniere != dernieresQuestions_.end() && derniere->second == action_)) {
        return false;
    }
    dernieresQuestions_.insert_or_assign(&vue, action_);
    ouvertes_.insert(&vue);
    return true;
}

bool Departs::commencer(const std::vector<std::shared_ptr<VueWeb>>& vues,
                        std::function<void()> suite) {
    // A page whose question is open answers that first: WebKit stops waiting for a page to close
    // after a moment unless its own question is the one on screen, and would take the silence
    // for an agreement.
    const auto ouverte = [&](const VueWeb* v) { return ouvertes_.contains(v); };
    if ((enCours_ && ouverte(enCours_->courante)) ||
        std::any_of(vues.begin(), vues.end(), [&](const auto& v) { return ouverte(v.get()); })) {
        return false;
    }
    // Otherwise the user's new request replaces one still waiting for the engine.
    enCours_ = EnCours{{vues.begin(), vues.end()}, nullptr, std::move(suite)};
    if (!poursuivre()) return false;
    enCours_.reset();
    return true;
}

bool Departs::poursuivre() {
    if (!enCours_) return false;
    enCours_->dansBoucle = true;
    while (enCours_ && !enCours_->courante) {
        if (enCours_->restantes.empty()) return true;
        const auto vue = enCours_->restantes.front().lock();
        enCours_->restantes.erase(enCours_->restantes.begin());
        if (!vue) continue;
        enCours_->courante = vue.get();
        // The engine may agree (or the page refuse) before this returns. The view is held until
        // then, whatever the answer tears down.
        vue->essayerFermer();
    }
    if (enCours_) enCours_->dansBoucle = false;
    return false;
}

bool Departs::accord(const VueWeb& vue) {
    if (!attend(vue)) return false;
    enCours_->courante = nullptr;
    if (enCours_->dansBoucle) return true;
    if (poursuivre()) {
        auto suite = std::move(enCours_->suite);
        enCours_.reset();
        if (suite) suite();
    }
    return true;
}

void Departs::refus(const VueWeb& vue) {
    if (attend(vue)) enCours_.reset();
}

void Departs::oublier(const VueWeb& vue) {
    dernieresQuestions_.erase(&vue);
    ouvertes_.erase(&vue);
    // A view torn down while it is asked ends the departure: the user asks again if need be.
    refus(vue);
}

}  // namespace brindex
