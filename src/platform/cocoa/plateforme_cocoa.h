#pragma once

#import <AppKit/AppKit.h>
#import <Network/Network.h>

#include <memory>

#include "container/controleur.hpp"
#include "container/ports.hpp"
#import "platform/cocoa/fenetres_cocoa.h"
#import "platform/cocoa/vue_web_cocoa.h"

namespace brindex::cocoa {

// The user's defaults, one string per key.
class ReglagesCocoa : public Reglages {
  public:
    std::optional<std::string> lire(const std::string& cle) const override;
    void ecrire(const std::string& cle, const std::optional<std::string>& valeur) override;
};

// The probe's client: an ephemeral session, so nothing is stored; the body read only as far as
// the probe needs it; its answer is posted to the main queue.
class TransportCocoa : public TransportHttp {
  public:
    void envoyer(const RequeteSonde& requete, std::function<void(EchangeTermine)> fin) override;
};

// What the controller asks of macOS: AppKit windows, WebKit views, Foundation services.
class PlateformeCocoa : public Plateforme {
  public:
    PlateformeCocoa() = default;
    ~PlateformeCocoa() override;
    PlateformeCocoa(const PlateformeCocoa&) = delete;
    PlateformeCocoa& operator=(const PlateformeCocoa&) = delete;
    // Also starts watching the user's presses, which let pages open windows and other apps.
    void definirControleur(std::weak_ptr<Controleur> controleur);

    std::shared_ptr<FenetrePrincipale> creerFenetrePrincipale(
        const ParametresFenetre& parametres, std::function<void()> vaFermer) override;
    std::shared_ptr<VueWeb> creerVueWeb(const ParametresVueWeb& parametres,
                                        const ConfigurationMoteur* configuration) override;
    std::shared_ptr<Fenetre> creerFenetreSecondaire(const ParametresFenetre& parametres,
                                                    std::shared_ptr<VueWeb> vue,
                                                    std::function<void()> vaFermer) override;

    void ouvrirUrl(const std::string& url) override;
    std::optional<std::string> applicationPour(const std::string& url) override;
    void reveler(const std::string& chemin) override;
    void alerte(const Alerte& alerte, std::function<void(ReponseAlerte)> reponse) override;
    void choisirFichiers(const DemandeFichiers& demande,
                         std::function<void(FichiersChoisis)> reponse) override;

    Reglages& reglages() override { return reglages_; }
    TransportHttp& transport() override { return transport_; }

    std::optional<std::string> dossierTelechargements() override;
    std::string dossierPersonnel() override;
    bool existe(const std::string& chemin) override;
    void plusTard(std::chrono::milliseconds delai, std::function<void()> action) override;
    // The keys a configuration profile forces (managed preferences); what the user set
    // themselves doesn't count.
    Administration administration() const override;

    // ~/Library/Logs/Brindex.log; its folder is the system's.
    static std::string cheminJournal();

  private:
    std::weak_ptr<Controleur> controleur_;
    ReglagesCocoa reglages_;
    TransportCocoa transport_;
    BrindexDelegueTelechargements* telechargements_ = nil;
    id moniteur_ = nil;
    // The network coming back, the machine waking up.
    nw_path_monitor_t chemins_ = nil;
    id reveil_ = nil;
};

}  // namespace brindex::cocoa
