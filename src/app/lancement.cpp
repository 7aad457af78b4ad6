#include "app/lancement.hpp"

#include "container/controleur.hpp"
#include "log/journal.hpp"

namespace brindex {

void lancer(Coquille& coquille, Controleur& controleur) {
    coquille.construireMenus();
    controleur.demarrer();
    coquille.activer();
    Journal::ecrire(ligneDemarrage);
}

bool reouvrir(Controleur& controleur, bool fenetresVisibles) {
    if (!fenetresVisibles) controleur.fenetre().devant();
    return true;
}

}  // namespace brindex
