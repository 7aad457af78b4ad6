#pragma once

#include <functional>
#include <string>

namespace brindex {

// Fills the main window when the space can't be reached: its explanation and two buttons.
class VueErreur {
  public:
    explicit VueErreur(std::string detail, std::string titre = "Espace injoignable")
        : detail_(std::move(detail)), titre_(std::move(titre)) {}

    const std::string& detail() const { return detail_; }
    const std::string& titre() const { return titre_; }

    std::function<void()> onReessayer;
    std::function<void()> onChangerAdresse;

    // "Réessayer".
    void reessayer() {
        if (onReessayer) onReessayer();
    }
    // "Changer d'adresse…".
    void changer() {
        if (onChangerAdresse) onChangerAdresse();
    }

  private:
    std::string detail_;
    std::string titre_;
};

}  // namespace brindex
