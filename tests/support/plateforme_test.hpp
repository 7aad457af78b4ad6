#pragma once

// An in-memory platform that records what the core asks of it and lets a test play the web
// engine and the user.

#include <cctype>
#include <deque>
#include <filesystem>
#include <map>

#include "container/ports.hpp"
#include "container/recherche.hpp"

namespace brindex::test {

struct ReglagesMemoire : Reglages {
    std::optional<std::string> lire(const std::string& cle) const override {
        const auto it = valeurs.find(cle);
        return it == valeurs.end() ? std::nullopt : std::optional(it->second);
    }
    void ecrire(const std::string& cle, const std::optional<std::string>& valeur) override {
        valeurs.erase(cle);
        if (valeur) valeurs.emplace(cle, *valeur);
    }
    std::map<std::string, std::string> valeurs;
};

// Takes the oldest of the waiting answers or requests.
template <class T>
T premier(std::deque<T>& file) {
    T t = std::move(file.front());
    file.pop_front();
    return t;
}

// Holds every probe until the test answers it, oldest first.
struct TransportTest : TransportHttp {
    void envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) override {
        requetes.push_back(requete);
        enAttente.push_back(std::move(fin));
    }
    void repondre(EchangeTermine echange) { premier(enAttente)(std::move(echange)); }
    std::vector<RequeteSonde> requetes;
    std::deque<std::function<void(EchangeTermine)>> enAttente;
};

struct VueWebTest : VueWeb {
    explicit VueWebTest(bool avecConfiguration) : creeeAvecConfiguration(avecConfiguration) {}
    void charger(const std::string& u, double d) override { chargements.emplace_back(u, d); }
    void arreter() override { actions.push_back("arreter"); }
    void recharger() override { agir("recharger"); }
    void rechargerOrigine() override { agir("rechargerOrigine"); }
    void reculer() override { agir("reculer"); }
    void avancer() override { agir("avancer"); }
    void essayerFermer() override { agir("essayerFermer"); }
    void agir(const std::string& acte) {
        actions.push_back(acte);
        if (moteur) moteur(*this, acte);
    }
    std::function<void(VueWebTest&, const std::string&)> moteur;
    bool confirmation = false;
    std::vector<std::string> departs;
    double zoom() const override { return zoom_; }
    void definirZoom(double z) override { zoom_ = z; }
    std::optional<std::string> url() const override { return urlCourante; }
    std::optional<std::string> titre() const override { return titreCourant; }
    double progression() const override { return progressionCourante; }
    bool aUnePageARecharger() const override { return pageCourante; }
    void detacher() override { detachee = true; }
    void terminerProcessus() override { actions.push_back("terminer"); }
    void trancher(Politique p) override { tranchees.push_back(p); }
    std::vector<std::string> historiqueArriere(std::size_t) const override { return arriere; }
    void reculerDe(std::size_t n) override { actions.push_back("reculerDe " + std::to_string(n)); }
    void chercher(const std::string& t, SensRecherche s) override { recherches.emplace_back(t, s); }
    void finirRecherche() override { actions.push_back("finirRecherche"); }
    void focaliser() override { actions.push_back("focaliser"); }
    void imprimer(const std::string& f, std::function<void()> ferme) override {
        fichiersImpression.push_back(f);
        impressions.push_back(std::move(ferme));
    }

    bool creeeAvecConfiguration, detachee = false, pageCourante = false;
    std::vector<Politique> tranchees;
    std::vector<std::string> arriere;
    std::vector<std::pair<std::string, double>> chargements;
    std::vector<std::string> actions;
    std::vector<std::pair<std::string, SensRecherche>> recherches;
    // What each print dialog shown runs when it closes.
    std::vector<std::function<void()>> impressions;
    std::vector<std::string> fichiersImpression;
    std::optional<std::string> urlCourante, titreCourant;
    double progressionCourante = 0, zoom_ = 1.0;
};

struct ConfigurationTest : ConfigurationMoteur {};
struct TelechargementTest : Telechargement {};

struct ControlesTest : ControlesConfiguration {
    std::string texteChamp() const override { return champ; }
    void definirTexteChamp(const std::string& t) override { champ = t; }
    void activerChamp(bool a) override { champActif = a; }
    void activerBouton(bool a) override { boutonActif = a; }
    void tournerRoue(bool m) override { roue = m; }
    void couleurMessage(const Couleur& c) override { couleur = c; }
    void texteMessage(const std::string& t) override { message = t; }
    void montrerForcer(bool v) override { forcer = v; }
    void focaliserChamp() override { ++focalisations; }

    std::string champ, message = "?";
    bool champActif = false, boutonActif = false, roue = true, forcer = true;
    Couleur couleur{};
    int focalisations = 0;
};

// What the windows tell their platform: the order of events, and which one becomes key.
struct Temoin {
    virtual ~Temoin() = default;
    virtual void rendreCle(Fenetre* fenetre) = 0;
    void trace(std::string evenement) { evenements.push_back(std::move(evenement)); }
    std::vector<std::string> evenements;
};

struct FenetreTest : FenetrePrincipale {
    enum class Ecran { initial, configuration, espace, erreur };

    FenetreTest(Temoin& t, const ParametresFenetre& p, std::function<void()> vaFermer)
        : temoin(t), vaFermer_(std::move(vaFermer)), titre(p.titre) {}
    void definirTitre(const std::string& t) override { titre = t; }
    bool estCle() const override { return cle; }
    void devant() override {
        ++passagesDevant;
        temoin.rendreCle(this);
        temoin.trace("devant");
    }
    void oublierFermeture() override { vaFermer_ = retenue = nullptr; }
    void retenirFermeture(std::function<bool()> demande) override { retenue = std::move(demande); }
    // The user's press on the close button.
    void demanderFermeture() { (!retenue || retenue()) ? fermer() : void(); }
    void fermer() override {
        if (fermee) return;
        fermee = true;
        cle = false;
        temoin.trace("fermer " + titre);
        if (auto rappel = std::move(vaFermer_)) rappel();
    }
    void feuille(const Alerte& a, std::function<void(ReponseAlerte)> reponse) override {
        feuilles.push_back(a);
        reponsesEnAttente.push_back(std::move(reponse));
    }
    void attacherRecherche(std::shared_ptr<RechercheDansPage> r) override { recherche = r; }
    void montrerConfiguration(std::shared_ptr<VueConfiguration> vue) override {
        montrer(Ecran::configuration, "ecran configuration");
        (configuration = std::move(vue))->attacher(controles = ControlesTest{});
    }
    void montrerEspace(std::shared_ptr<VueWeb>) override { montrer(Ecran::espace, "ecran espace"); }
    void montrerErreur(std::shared_ptr<VueErreur> vue) override {
        montrer(Ecran::erreur, "ecran erreur");
        erreur = std::move(vue);
    }
    void barreConnexion(const std::optional<std::string>& t, std::function<void()>) override {
        barre_ = t;
    }
    void progression(double valeur, bool visible) override {
        barre = valeur;
        barreVisible = visible;
    }
    void montrer(Ecran nouvel, const char* evenement) {
        ecran = nouvel;
        configuration.reset();
        erreur.reset();
        temoin.trace(evenement);
    }

    Temoin& temoin;
    std::function<void()> vaFermer_;
    std::function<bool()> retenue;
    std::string titre;
    bool cle = false, fermee = false, barreVisible = false;
    std::optional<std::string> barre_;
    int passagesDevant = 0;
    double barre = -1;
    Ecran ecran = Ecran::initial;
    std::shared_ptr<VueConfiguration> configuration;
    ControlesTest controles;
    std::shared_ptr<VueErreur> erreur;
    std::vector<Alerte> feuilles;
    std::shared_ptr<RechercheDansPage> recherche;
    // What each sheet runs when it closes, in the order they were shown.
    std::deque<std::function<void(ReponseAlerte)>> reponsesEnAttente;
};

struct PlateformeTest : Plateforme, Temoin {
    std::shared_ptr<FenetrePrincipale> creerFenetrePrincipale(
        const ParametresFenetre& p, std::function<void()> vaFermer) override {
        return principales.emplace_back(
            std::make_shared<FenetreTest>(*this, p, std::move(vaFermer)));
    }
    std::shared_ptr<VueWeb> creerVueWeb(const ParametresVueWeb& p,
                                        const ConfigurationMoteur* configuration) override {
        trace(p.principale ? "vue principale" : "vue secondaire");
        parametresVues.push_back(p);
        auto& vue = vues.emplace_back(std::make_shared<VueWebTest>(configuration != nullptr));
        vue->moteur = moteur;
        return vue;
    }
    std::shared_ptr<Fenetre> creerFenetreSecondaire(const ParametresFenetre& p,
                                                    std::shared_ptr<VueWeb> vue,
                                                    std::function<void()> vaFermer) override {
        auto& fenetre =
            secondaires.emplace_back(std::make_shared<FenetreTest>(*this, p, std::move(vaFermer)));
        fenetre->montrerEspace(std::move(vue));
        fenetre->devant();
        return fenetre;
    }
    void ouvrirUrl(const std::string& url) override { urlsOuvertes.push_back(url); }
    std::optional<std::string> applicationPour(const std::string& url) override {
        std::string scheme = url.substr(0, url.find(':'));
        for (char& c : scheme) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        const auto a = applications.find(scheme);
        return a == applications.end() ? std::nullopt : std::optional(a->second);
    }
    void reveler(const std::string& chemin) override { reveles.push_back(chemin); }
    void alerte(const Alerte& a, std::function<void(ReponseAlerte)> reponse) override {
        alertes.push_back(a);
        if (!reponsesAlertes.empty()) reponse(premier(reponsesAlertes));
    }
    void choisirFichiers(const DemandeFichiers& d,
                         std::function<void(FichiersChoisis)> reponse) override {
        demandesFichiers.push_back(d);
        if (!reponsesFichiers.empty()) reponse(premier(reponsesFichiers));
    }
    Reglages& reglages() override { return reglages_; }
    TransportHttp& transport() override { return transport_; }
    std::optional<std::string> dossierTelechargements() override { return telechargements; }
    std::string dossierPersonnel() override { return personnel; }
    bool existe(const std::string& chemin) override { return std::filesystem::exists(chemin); }
    std::vector<std::string> suffixesTemporairesTelechargement() const override {
        return suffixesTemporaires;
    }
    std::chrono::steady_clock::time_point maintenant() const override { return horloge; }
    bool balayagePossible() const override { return balayage; }
    void plusTard(std::chrono::milliseconds d, std::function<void()> a) override {
        differes.emplace(horloge + d, std::move(a));
    }
    // The clock moved on: what has come due runs, in order.
    void avancer(std::chrono::milliseconds d) {
        for (horloge += d; !differes.empty() && differes.begin()->first <= horloge;) {
            auto action = std::move(differes.begin()->second);
            differes.erase(differes.begin());
            action();
        }
    }
    Administration administration() const override { return admin; }
    // Makes this window the only key one (nullptr: none is key).
    void rendreCle(Fenetre* fenetre) override {
        for (auto& f : principales) f->cle = f.get() == fenetre;
        for (auto& f : secondaires) f->cle = f.get() == fenetre;
    }

    ReglagesMemoire reglages_;
    TransportTest transport_;
    std::vector<std::shared_ptr<FenetreTest>> principales, secondaires;
    std::vector<std::shared_ptr<VueWebTest>> vues;
    std::vector<ParametresVueWeb> parametresVues;
    bool balayage = true;
    std::function<void(VueWebTest&, const std::string&)> moteur;
    std::vector<std::string> urlsOuvertes, reveles;
    // The system's application for each scheme.
    std::map<std::string, std::string> applications;
    std::vector<Alerte> alertes;
    // Answers to the next alerts and file choices; one without stays unanswered.
    std::deque<ReponseAlerte> reponsesAlertes;
    std::vector<DemandeFichiers> demandesFichiers;
    std::deque<FichiersChoisis> reponsesFichiers;
    std::optional<std::string> telechargements;
    std::string personnel = "/maison";
    std::vector<std::string> suffixesTemporaires;
    std::chrono::steady_clock::time_point horloge{std::chrono::hours(1)};
    std::multimap<std::chrono::steady_clock::time_point, std::function<void()>> differes;
    Administration admin;
};

}  // namespace brindex::test
