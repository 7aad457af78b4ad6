#include "container/echecs.hpp"

namespace brindex {

bool echecIgnore(const ErreurChargement& erreur) {
    return (erreur.domaine == domaineUrl && erreur.code == -999) ||
           (erreur.domaine == domaineWebKit && erreur.code == 102);
}

bool echecReseau(const ErreurChargement& erreur) {
    if (erreur.domaine != domaineUrl) return false;
    switch (erreur.code) {
        case -1001:  // timed out
        case -1003:  // host not found: no name server answers while offline
        case -1004:  // can't connect
        case -1005:  // connection lost
        case -1009:  // not connected
        case -1018:  // roaming off
        case -1020:  // data not allowed
            return true;
        default:
            return false;
    }
}

std::string ligneEchec(const ErreurChargement& erreur) {
    return "navigation ECHEC " + erreur.domaine + "/" + std::to_string(erreur.code) + " " +
           erreur.description;
}

std::string ligneSucces(const std::optional<std::string>& url) {
    return "navigation OK " + url.value_or("?");
}

std::string detailLisible(const ErreurChargement& erreur, const std::optional<Url>& adresseEspace) {
    if (erreur.domaine != domaineUrl) return erreur.description;
    switch (erreur.code) {
        case -1200:
        case -1201:
        case -1202:
        case -1204:
            return "Le certificat de sécurité du serveur n'est pas valide. Contactez la personne "
                   "qui administre votre espace.";
        case -1022:
            return "Cette adresse exige une connexion sécurisée (https). Vérifiez l'adresse de "
                   "votre espace.";
        case -1009:
        case -1005:
            return "Votre connexion internet semble coupée. Vérifiez le réseau puis réessayez.";
        case -1004:
        case -1001:
            return "Le serveur de votre espace ne répond pas. Il est peut-être en cours de "
                   "maintenance — réessayez dans quelques instants.";
        case -1003: {
            const std::string hote = adresseEspace ? adresseEspace->hote() : std::string();
            return "L'adresse « " + hote +
                   " » est introuvable. Vérifiez-la, ou contactez la personne qui administre "
                   "votre espace.";
        }
        default:
            return erreur.description;
    }
}

}  // namespace brindex
