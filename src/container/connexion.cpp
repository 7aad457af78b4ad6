#include "container/connexion.hpp"

#include <algorithm>

#include "address/normalisation.hpp"
#include "address/texte.hpp"
#include "address/url.hpp"
#include "log/journal.hpp"

namespace brindex {

namespace {

// What a dialog shows of a server's realm.
constexpr std::size_t caracteresRoyaumeMax = 200;
constexpr std::size_t lignesRoyaumeMax = 2;

bool portParDefaut(const Origine& origine) {
    return origine.port() == (origine.scheme() == "https" ? 443 : 80);
}

// As for the space: plain http only on the user's own machine or network.
bool schemePermis(const Origine& origine) {
    return origine.scheme() == "https" || estHoteLocalOuPrive(origine.host());
}

// The names of a URL's query parameters, with their raw values.
std::vector<std::pair<std::string_view, std::string_view>> parametres(std::string_view url) {
    std::vector<std::pair<std::string_view, std::string_view>> resultat;
    const auto debut = url.find('?');
    if (debut == std::string_view::npos) return resultat;
    std::string_view requete = url.substr(debut + 1);
    requete = requete.substr(0, requete.find('#'));
    while (!requete.empty()) {
        const auto fin = requete.find('&');
        const std::string_view paire = requete.substr(0, fin);
        const auto egal = paire.find('=');
        resultat.emplace_back(paire.substr(0, egal), egal == std::string_view::npos
                                                         ? std::string_view()
                                                         : paire.substr(egal + 1));
        if (fin == std::string_view::npos) break;
        requete.remove_prefix(fin + 1);
    }
    return resultat;
}

}  // namespace

// ---- Sign-in sites ----

std::optional<Origine> siteConnexion(std::string_view texte) {
    const auto url = Url::analyser(retirerBlancs(texte, Blancs::espacesEtLignes));
    if (!url || url->utilisateur() || url->motDePasse() || url->requete() || url->fragment() ||
        (!url->chemin().empty() && url->chemin() != "/")) {
        return std::nullopt;
    }
    auto origine = Origine::depuis(*url);
    if (!origine || !schemePermis(*origine)) return std::nullopt;
    return origine;
}

std::string hoteAffiche(const Origine& origine) {
    const bool ipv6 = origine.host().find(':') != std::string::npos;
    std::string hote = ipv6 ? "[" + origine.host() + "]" : origine.host();
    if (!portParDefaut(origine)) hote += ":" + std::to_string(origine.port());
    return hote;
}

std::string texteOrigine(const Origine& origine) {
    return origine.scheme() + "://" + hoteAffiche(origine);
}

bool SitesConnexion::contient(const Origine& origine) const {
    return std::find(administrateur.begin(), administrateur.end(), origine) !=
               administrateur.end() ||
           std::find(approuves.begin(), approuves.end(), origine) != approuves.end();
}

SitesConnexion lireSitesConnexion(const Administration& administration,
                                  const std::optional<std::string>& approuves) {
    SitesConnexion sites;
    sites.question = administration.questionConnexion.value_or(true);
    for (const auto& texte : administration.originesConnexion) {
        if (const auto site = siteConnexion(texte)) {
            sites.administrateur.push_back(*site);
        } else {
            Journal::ecrire("site de connexion IGNORE " + texte);
        }
    }
    const std::string texte = approuves.value_or(std::string());
    std::string_view reste = texte;
    while (!reste.empty()) {
        const auto fin = reste.find('\n');
        if (const auto site = siteConnexion(reste.substr(0, fin))) sites.approuves.push_back(*site);
        if (fin == std::string_view::npos) break;
        reste.remove_prefix(fin + 1);
    }
    return sites;
}

std::string ajouterApprobation(const std::optional<std::string>& approuves, const Origine& site) {
    SitesConnexion sites = lireSitesConnexion({}, approuves);
    auto& liste = sites.approuves;
    liste.erase(std::remove(liste.begin(), liste.end(), site), liste.end());
    liste.push_back(site);
    if (liste.size() > approbationsMax) {
        liste.erase(liste.begin(), liste.end() - static_cast<std::ptrdiff_t>(approbationsMax));
    }
    std::string texte;
    for (const auto& origine : liste) texte += (texte.empty() ? "" : "\n") + texteOrigine(origine);
    return texte;
}

// ---- The round trip ----

bool demandeDeConnexion(const ActionNavigation& action) {
    if (action.type == TypeNavigation::formulaire) return true;
    bool typeReponse = false;
    bool client = false;
    const std::string url = action.url.value_or(std::string());
    for (const auto& [nom, valeur] : parametres(url)) {
        if (nom == "SAMLRequest" || (nom == "wa" && valeur == "wsignin1.0")) return true;
        typeReponse = typeReponse || nom == "response_type";
        client = client || nom == "client_id";
    }
    return typeReponse && client;
}

DecisionConnexion deciderConnexion(const ActionNavigation& action, const Origine& espace,
                                   const std::optional<TrajetConnexion>& trajet,
                                   const SitesConnexion& sites, bool lienClique, bool demande,
                                   std::chrono::steady_clock::time_point maintenant,
                                   const BornesConnexion& bornes) {
    using Choix = DecisionConnexion::Choix;
    if (!action.url) return {};
    const auto destination = Origine::depuis(*action.url);
    // Back to the space is always allowed: that is how a round trip ends.
    if (!destination || *destination == espace) return {};
    if (trajet &&
        (maintenant - trajet->debut >= bornes.duree || trajet->navigations >= bornes.navigations)) {
        return {Choix::expirer, trajet->site};
    }
    if (sites.contient(*destination)) return {Choix::entrer, destination};
    if (lienClique) return {};
    if (trajet) return {Choix::refuser, destination};
    if (sites.question && schemePermis(*destination) && demande) {
        return {Choix::demander, destination};
    }
    return {};
}

std::optional<std::size_t> pasVersEspace(const std::vector<std::string>& arriere,
                                         const Origine& espace) {
    for (std::size_t i = 0; i < arriere.size(); ++i) {
        if (Origine::depuis(arriere[i]) == espace) return i + 1;
    }
    return std::nullopt;
}

// ---- Texts ----

Alerte questionConnexion(const Origine& site) {
    Alerte alerte;
    alerte.message = "Connexion à votre espace";
    alerte.informatif = "Votre espace vous envoie vers " + hoteAffiche(site) +
                        " pour vous identifier. Continuer sur ce site dans Brindex ?";
    alerte.boutons = {"Continuer", "Annuler"};
    alerte.boutonEchap = 1;
    return alerte;
}

std::string texteBarreConnexion(const Origine& site) {
    return "Connexion via " + hoteAffiche(site) +
           (site.scheme() == "http" ? " (non sécurisée)" : "");
}

Alerte alerteExpiration(const Origine& site, bool parDuree) {
    Alerte alerte;
    alerte.message = "Connexion interrompue";
    alerte.informatif = "La connexion via " + hoteAffiche(site) +
                        (parDuree ? " a pris trop de temps" : " a enchaîné trop de pages") +
                        " sans revenir à votre espace : vous voici de retour à son accueil. "
                        "Réessayez, ou contactez la personne qui administre votre espace.";
    alerte.boutons = {"OK"};
    return alerte;
}

std::string detailConnexionRefusee(const Origine& site) {
    return "Votre espace vous identifie sur " + hoteAffiche(site) +
           ", un site que vous n'avez pas accepté. Réessayez pour que la question vous soit "
           "posée de nouveau, ou changez d'adresse.";
}

std::string detailSiteRefuse(const Origine& site) {
    return "Votre espace vous envoie vers " + hoteAffiche(site) +
           ", un autre site, que Brindex n'ouvre pas dans sa fenêtre. S'il s'agit du site où votre "
           "entreprise vous identifie, demandez à la personne qui administre votre espace de "
           "l'ajouter aux sites de connexion.";
}

// ---- HTTP authentication ----

namespace {

std::optional<Origine> origineDemande(const DemandeAuthentification& demande) {
    const bool ipv6 = demande.hote.find(':') != std::string::npos;
    return Origine::depuis(demande.scheme + "://" +
                           (ipv6 ? "[" + demande.hote + "]" : demande.hote) + ":" +
                           std::to_string(demande.port));
}

}  // namespace

bool authentificationPermise(const DemandeAuthentification& demande, const Origine& espace,
                             const SitesConnexion& sites) {
    if (demande.proxy) return true;
    const auto origine = origineDemande(demande);
    return origine && (*origine == espace || sites.contient(*origine));
}

Alerte alerteAuthentification(const DemandeAuthentification& demande) {
    const auto origine = origineDemande(demande);
    const std::string hote = origine ? hoteAffiche(*origine)
                                     : extrait(demande.hote, caracteresRoyaumeMax, 1) + ":" +
                                           std::to_string(demande.port);
    std::string texte = demande.nouvelEssai
                            ? "L'identifiant ou le mot de passe n'a pas été accepté. "
                            : std::string();
    texte += (demande.proxy ? "Le proxy " : "Le serveur ") + hote +
             " demande votre identifiant et votre mot de passe";
    if (!demande.royaume.empty()) {
        texte +=
            " pour « " + extrait(demande.royaume, caracteresRoyaumeMax, lignesRoyaumeMax) + " »";
    }
    texte += ".";
    Alerte alerte;
    alerte.message = "Identification requise";
    alerte.informatif = std::move(texte);
    alerte.boutons = {"Se connecter", "Annuler"};
    alerte.champs = {{"Identifiant", demande.identifiantPropose.value_or(std::string()), false},
                     {"Mot de passe", "", true}};
    if (demande.peutMemoriser) alerte.caseACocher = "Mémoriser";
    alerte.boutonEchap = 1;
    return alerte;
}

}  // namespace brindex
