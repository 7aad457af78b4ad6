#include "container/recherche.hpp"

#include <utility>

namespace brindex {

namespace {

// An engine that never answers (its page gone mid-search) must not make the list grow.
constexpr std::size_t attentesMax = 64;

std::optional<Origine> origineDe(const std::optional<std::string>& url) {
    return url ? Origine::depuis(*url) : std::nullopt;
}

}  // namespace

void RechercheDansPage::definirVue(std::shared_ptr<VueWeb> vue) {
    if (vue == vue_) return;
    // The old page's answers are no longer awaited; its highlights went with it.
    if (visible_) cacher();
    attentes_.clear();
    trouve_.reset();
    vue_ = std::move(vue);
}

void RechercheDansPage::montrer() {
    if (visible_) return;
    visible_ = true;
    origine_ = origineDe(vue_->url());
    if (controles_) controles_->montrer(true);
}

void RechercheDansPage::cacher() {
    visible_ = false;
    if (controles_) controles_->montrer(false);
}

void RechercheDansPage::ouvrir() {
    if (!vue_) return;
    const bool dejaVisible = visible_;
    montrer();
    if (controles_) controles_->focaliserChamp();
    // Reopened on the last search: its matches are highlighted and counted again.
    if (!dejaVisible && !texte_.empty()) chercher(SensRecherche::nouvelle);
    afficherStatut();
}

void RechercheDansPage::suivant() {
    pas(SensRecherche::suivante);
}

void RechercheDansPage::precedent() {
    pas(SensRecherche::precedente);
}

void RechercheDansPage::pas(SensRecherche sens) {
    if (!vue_) return;
    // Keys may come before the field has reported its last change.
    if (controles_ && visible_ && controles_->texteChamp() != texte_) {
        texteChange(controles_->texteChamp());
        return;
    }
    if (texte_.empty()) {
        ouvrir();
        return;
    }
    const bool dejaVisible = visible_;
    montrer();
    // Nothing found (the page may have changed since), or the bar just reopened: from the top.
    // A step sent while a search runs is answered after it, in order.
    chercher(trouve_ == false || !dejaVisible ? SensRecherche::nouvelle : sens);
    afficherStatut();
}

void RechercheDansPage::fermer() {
    if (!visible_) return;
    cacher();
    trouve_.reset();
    if (!vue_) return;
    vue_->finirRecherche();
    vue_->focaliser();
}

void RechercheDansPage::texteChange(const std::string& texte) {
    if (!vue_ || texte == texte_) return;
    texte_ = texte;
    trouve_.reset();
    if (texte_.empty()) {
        vue_->finirRecherche();
    } else {
        chercher(SensRecherche::nouvelle);
    }
    afficherStatut();
}

void RechercheDansPage::chercher(SensRecherche sens) {
    if (attentes_.size() == attentesMax) attentes_.pop_front();
    attentes_.push_back(sens);
    if (sens == SensRecherche::nouvelle) trouve_.reset();
    vue_->chercher(texte_, sens);
}

void RechercheDansPage::resultat(bool trouve, std::optional<unsigned> nombre) {
    if (attentes_.empty()) return;
    const SensRecherche sens = attentes_.front();
    attentes_.pop_front();
    if (!trouve) {
        trouve_ = false;
    } else if (sens == SensRecherche::nouvelle) {
        trouve_ = true;
        total_ = nombre;
        index_ = 1;
    } else if (trouve_ == true && total_ && *total_ > 0) {
        // A step: the engine's count then means nothing, the match moved one on.
        const unsigned n = *total_;
        index_ = sens == SensRecherche::suivante ? (index_ >= n ? 1 : index_ + 1)
                                                 : (index_ <= 1 ? n : index_ - 1);
    }
    // Later answers are for searches sent since: only the last one is shown.
    if (attentes_.empty()) afficherStatut();
}

void RechercheDansPage::pageChargee(const std::optional<std::string>& url) {
    if (!visible_) return;
    if (origineDe(url) != origine_) {
        fermer();
        return;
    }
    attentes_.clear();
    if (!texte_.empty()) chercher(SensRecherche::nouvelle);
    afficherStatut();
}

void RechercheDansPage::afficherStatut() {
    if (!controles_) return;
    if (texte_.empty() || !trouve_) return controles_->statut("", false);
    if (!*trouve_) return controles_->statut("Aucun résultat", true);
    if (!total_) return controles_->statut("", false);
    if (*total_ > resultatsRechercheMax) {
        return controles_->statut("Plus de " + std::to_string(resultatsRechercheMax) + " résultats",
                                  false);
    }
    controles_->statut(std::to_string(index_) + " sur " + std::to_string(*total_), false);
}

}  // namespace brindex
