#pragma once

#import <WebKit/WebKit.h>

#include <memory>

#include "container/controleur.hpp"
#include "container/ports.hpp"

namespace brindex::cocoa {
class VueWebCocoa;
}

// Saves downloads where the controller says and reports their end. One for the application;
// WKDownload holds its delegate weakly, so the platform owns it.
@interface BrindexDelegueTelechargements : NSObject <WKDownloadDelegate>
- (instancetype)initAvecControleur:(std::weak_ptr<brindex::Controleur>)controleur;
@end

// The navigation and UI delegate of one web view: turns WebKit's callbacks into the
// controller's plain values and applies its answers.
@interface BrindexDelegueWeb : NSObject <WKNavigationDelegate, WKUIDelegate>
- (instancetype)initAvecVue:(brindex::cocoa::VueWebCocoa *)vue
                 controleur:(std::weak_ptr<brindex::Controleur>)controleur
            telechargements:(BrindexDelegueTelechargements *)telechargements;
// The view goes: nothing more reaches the controller.
- (void)detacher;
// The page asked to be printed.
- (void)impressionDemandee;
// WebKit's answer to one search of the page.
- (void)resultatRecherche:(BOOL)trouve;
@end

namespace brindex::cocoa {

// The configuration WebKit supplies when a page asks for a new window.
class ConfigurationCocoa : public ConfigurationMoteur {
   public:
    explicit ConfigurationCocoa(WKWebViewConfiguration *configuration)
        : configuration(configuration) {}
    WKWebViewConfiguration *configuration;
};

// A WKWebView whose delegate and observations reach the controller.
class VueWebCocoa final : public VueWeb, public std::enable_shared_from_this<VueWebCocoa> {
   public:
    VueWebCocoa(const ParametresVueWeb &parametres, WKWebViewConfiguration *fournie,
                std::weak_ptr<Controleur> controleur,
                BrindexDelegueTelechargements *telechargements);
    ~VueWebCocoa() override;
    VueWebCocoa(const VueWebCocoa &) = delete;
    VueWebCocoa &operator=(const VueWebCocoa &) = delete;

    WKWebView *webView() const { return webView_; }

    void charger(const std::string &url, double delaiSecondes) override;
    void arreter() override;
    void recharger() override;
    void rechargerOrigine() override;
    void reculer() override;
    void avancer() override;
    double zoom() const override;
    void definirZoom(double zoom) override;
    std::optional<std::string> url() const override;
    std::optional<std::string> titre() const override;
    double progression() const override;
    bool aUnePageARecharger() const override;
    void detacher() override;
    void trancher(Politique politique) override;
    std::vector<std::string> historiqueArriere(std::size_t maximum) const override;
    void reculerDe(std::size_t pas) override;
    // Answers WebKit's decision handler now, or keeps it when the controller answers later; a
    // previous one still waiting is then cancelled (WebKit wants every handler called once).
    void decider(Politique politique, std::function<void(Politique)> repondre);
    void essayerFermer() override;
    void chercher(const std::string &texte, SensRecherche sens) override;
    void finirRecherche() override;
    void focaliser() override;
    void imprimer(const std::string &fichierPdf, std::function<void()> ferme) override;

   private:
    WKWebView *webView_;
    std::weak_ptr<Controleur> controleur_;
    BrindexDelegueWeb *delegue_;
    // The title and progress observations of the main web view; they end with detacher().
    id observateur_ = nil;
    // The space's own view leaves its window's content when it goes; a popup's stays in its
    // window until the window has closed.
    bool principale_ = false;
    std::function<void(Politique)> enAttente_;
};

}  // namespace brindex::cocoa
