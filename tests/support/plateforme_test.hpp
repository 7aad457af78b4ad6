#pragma once

// An in-memory platform that records what the core asks of it and lets a test play the web
// engine and the user.

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "container/ports.hpp"
#include "screens/vue_configuration.hpp"
#include "screens/vue_erreur.hpp"

namespace brindex::test {

class ReglagesMemoire : public Reglages {
  public:
    std::optional<std::string> lire(const std::string& cle) const override;
    void ecrire(const std::string& cle, const std::optional<std::string>& valeur) override;
    std::map<std::string, std::string> valeurs;
};

// Holds every probe until the test answers it.
class TransportTest : public TransportHttp {
  public:
    void envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) override;
    // Answers the oldest pending probe.
    void repondre(EchangeTermine echange);
    void repondreEspace();
    void repondreErreur(std::int64_t code);
    std::vector<RequeteSonde> requetes;
    std::deque<std::function<void(EchangeTermine)>> enAttente;
};

class VueWebTest : public VueWeb {
  public:
    explicit VueWebTest(ParametresVueWeb p, bool avecConfiguration)
        : parametres(std::move(p)), creeeAvecConfiguration(avecConfiguration) {}
    void charger(const std::string& u, double delai) override;
    void arreter() override { ++arrets; }
    void recharger() override { actions.push_back("recharger"); }
    void rechargerOrigine() override { actions.push_back("rechargerOrigine"); }
    void reculer() override { actions.push_back("reculer"); }
    void avancer() override { actions.push_back("avancer"); }
    double zoom() const override { return zoom_; }
    void definirZoom(double z) override { zoom_ = z; }
    std::optional<std::string> url() const override { return urlCourante; }
    std::optional<std::string> titre() const override { return titreCourant; }
    double progression() const override { return progressionCourante; }
    void detacher() override { detachee = true; }

    ParametresVueWeb parametres;
    bool creeeAvecConfiguration;
    std::vector<std::pair<std::string, double>> chargements;
    std::vector<std::string> actions;
    std::optional<std::string> urlCourante;
    std::optional<std::string> titreCourant;
    double progressionCourante = 0;
    double zoom_ = 1.0;
    int arrets = 0;
    bool detachee = false;
};

class ConfigurationTest : public ConfigurationMoteur {};
class TelechargementTest : public Telechargement {};

class ControlesTest : public ControlesConfiguration {
  public:
    std::string texteChamp() const override { return champ; }
    void definirTexteChamp(const std::string& t) override { champ = t; }
    void activerChamp(bool a) override { champActif = a; }
    void activerBouton(bool a) override { boutonActif = a; }
    void tournerRoue(bool m) override { roue = m; }
    void couleurMessage(const Couleur& c) override { couleur = c; }
    void texteMessage(const std::string& t) override { message = t; }
    void montrerForcer(bool v) override { forcer = v; }
    void focaliserChamp() override { ++focalisations; }

    std::string champ;
    bool champActif = false;
    bool boutonActif = false;
    bool roue = true;
    Couleur couleur{};
    std::string message = "?";
    bool forcer = true;
    int focalisations = 0;
};

class PlateformeTest;

class FenetreTest : public FenetrePrincipale {
  public:
    FenetreTest(PlateformeTest& p, ParametresFenetre params, std::function<void()> vaFermer)
        : plateforme(p),
          parametres(std::move(params)),
          vaFermer_(std::move(vaFermer)),
          titre(parametres.titre) {}
    void definirTitre(const std::string& t) override;
    bool estCle() const override { return cle; }
    void devant() override;
    void oublierFermeture() override { vaFermer_ = nullptr; }
    void fermer() override;
    void feuille(const Alerte& a) override { feuilles.push_back(a); }
    void montrerConfiguration(std::shared_ptr<VueConfiguration> vue) override;
    void montrerEspace(std::shared_ptr<VueWeb> vue) override;
    void montrerErreur(std::shared_ptr<VueErreur> vue) override;
    void progression(double valeur, bool visible) override {
        barre = valeur;
        barreVisible = visible;
    }
    // The user presses the close button.
    void fermerParUtilisateur();

    enum class Ecran { initial, configuration, espace, erreur };
    PlateformeTest& plateforme;
    ParametresFenetre parametres;
    std::function<void()> vaFermer_;
    std::string titre;
    bool cle = false;
    bool fermee = false;
    int passagesDevant = 0;
    Ecran ecran = Ecran::initial;
    std::shared_ptr<VueConfiguration> configuration;
    ControlesTest controles;
    std::shared_ptr<VueWeb> espace;
    std::shared_ptr<VueErreur> erreur;
    std::vector<Alerte> feuilles;
    double barre = -1;
    bool barreVisible = false;
};

class PlateformeTest : public Plateforme {
  public:
    std::shared_ptr<FenetrePrincipale> creerFenetrePrincipale(
        const ParametresFenetre& p, std::function<void()> vaFermer) override;
    std::shared_ptr<VueWeb> creerVueWeb(const ParametresVueWeb& p,
                                        const ConfigurationMoteur* configuration) override;
    std::shared_ptr<Fenetre> creerFenetreSecondaire(const ParametresFenetre& p,
                                                    std::shared_ptr<VueWeb> vue,
                                                    std::function<void()> vaFermer) override;
    void ouvrirUrl(const std::string& url) override { urlsOuvertes.push_back(url); }
    void reveler(const std::string& chemin) override { reveles.push_back(chemin); }
    void alerte(const Alerte& a, std::function<void(ReponseAlerte)> reponse) override;
    void choisirFichiers(const DemandeFichiers& d,
                         std::function<void(FichiersChoisis)> reponse) override;
    Reglages& reglages() override { return reglages_; }
    TransportHttp& transport() override { return transport_; }
    std::optional<std::string> dossierTelechargements() override { return telechargements; }
    std::string dossierPersonnel() override { return personnel; }
    bool existe(const std::string& chemin) override;
    std::vector<std::string> suffixesTemporairesTelechargement() const override {
        return suffixesTemporaires;
    }
    std::chrono::steady_clock::time_point maintenant() const override { return horloge; }

    // Makes this window the only key one (nullptr: none is key).
    void rendreCle(Fenetre* fenetre);
    void trace(std::string evenement) { evenements.push_back(std::move(evenement)); }

    ReglagesMemoire reglages_;
    TransportTest transport_;
    std::vector<std::shared_ptr<FenetreTest>> principales;
    std::vector<std::shared_ptr<FenetreTest>> secondaires;
    std::vector<std::shared_ptr<VueWebTest>> vues;
    std::vector<std::string> urlsOuvertes;
    std::vector<std::string> reveles;
    std::vector<Alerte> alertes;
    // Answers given to the next alerts, in order; an alert without one stays unanswered.
    std::deque<ReponseAlerte> reponsesAlertes;
    std::vector<DemandeFichiers> demandesFichiers;
    std::deque<FichiersChoisis> reponsesFichiers;
    std::optional<std::string> telechargements;
    std::string personnel = "/maison";
    // Paths that exist, unless `systemeDeFichiers` is set to test on the real file system.
    std::set<std::string> chemins;
    bool systemeDeFichiers = false;
    std::vector<std::string> suffixesTemporaires;
    std::chrono::steady_clock::time_point horloge{std::chrono::hours(1)};
    std::vector<std::string> evenements;
};

}  // namespace brindex::test
