#pragma once

#include <webkit/webkit.h>

#include <map>
#include <memory>

#include "container/controleur.hpp"
#include "container/ports.hpp"
#include "fenetres_gtk.hpp"
#include "reglages_gtk.hpp"
#include "services_gtk.hpp"
#include "transport_soup.hpp"

namespace brindex::gtk {

// A download under way, known by its WebKitDownload.
class TelechargementGtk : public Telechargement {
  public:
    explicit TelechargementGtk(WebKitDownload* telechargement)
        : telechargement_(Ref<WebKitDownload>::partager(telechargement)) {}
    bool echoue = false;

  private:
    Ref<WebKitDownload> telechargement_;
};

// What the controller asks of Linux: GTK windows, WebKitGTK views, GLib services.
class PlateformeGtk : public Plateforme {
  public:
    explicit PlateformeGtk(GtkApplication* application);
    ~PlateformeGtk() override;
    PlateformeGtk(const PlateformeGtk&) = delete;
    PlateformeGtk& operator=(const PlateformeGtk&) = delete;

    // The controller that the engine's callbacks reach; held weakly.
    void definirControleur(std::weak_ptr<Controleur> controleur);
    // Web views then never composite in hardware (GL would run in software).
    void definirSansComposition(bool sansComposition) { sansComposition_ = sansComposition; }

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
    std::vector<std::string> suffixesTemporairesTelechargement() const override;
    bool balayagePossible() const override;
    void plusTard(std::chrono::milliseconds delai, std::function<void()> action) override;
    Administration administration() const override;

    std::shared_ptr<FenetrePrincipaleGtk> fenetrePrincipale() const { return principale_.lock(); }
    // Downloads of the engine being followed (the debug trace counts them).
    std::size_t telechargementsSuivis() const { return telechargements_.size(); }
    // The window that dialogs belong to: the active one, else the main window.
    GtkWindow* fenetreParente() const;

  private:
    static void surTelechargement(WebKitNetworkSession*, WebKitDownload*, gpointer);
    static gboolean surDestination(WebKitDownload*, char*, gpointer);
    static void surEchecTelechargement(WebKitDownload*, GError*, gpointer);
    static void surFinTelechargement(WebKitDownload*, gpointer);
    std::shared_ptr<TelechargementGtk> entree(WebKitDownload* telechargement) const;

    GtkApplication* application_;
    // Every view's cookies, site data and cache, kept across launches.
    Ref<WebKitNetworkSession> session_;
    std::weak_ptr<Controleur> controleur_;
    ReglagesGtk reglages_;
    TransportSoup transport_;
    std::weak_ptr<FenetrePrincipaleGtk> principale_;
    std::map<WebKitDownload*, std::shared_ptr<TelechargementGtk>> telechargements_;
    bool sansComposition_ = false;
    std::unique_ptr<SurveillanceReprise> reprise_;
};

}  // namespace brindex::gtk
