#include "container/impression.hpp"

namespace brindex {

DecisionImpression deciderImpression(EtatImpression& etat, bool parUtilisateur,
                                     std::chrono::steady_clock::time_point maintenant) {
    if (etat.dialogueOuvert) return DecisionImpression::ignorer;
    if (!parUtilisateur) {
        if (etat.derniereAutomatique &&
            maintenant - *etat.derniereAutomatique < intervalleImpressionAutomatique) {
            if (etat.refusNote) return DecisionImpression::ignorer;
            etat.refusNote = true;
            return DecisionImpression::refuser;
        }
        etat.derniereAutomatique = maintenant;
        etat.refusNote = false;
    }
    etat.dialogueOuvert = true;
    return DecisionImpression::ouvrir;
}

}  // namespace brindex
