#pragma once

#include <optional>
#include <string>

#include "brand/reglages.hpp"
#include "container/ports.hpp"

namespace brindex::gtk {

// The settings in a GLib key file, group [brindex], one string per key. Read afresh at each
// use; written atomically; a file that can't be read counts as empty and is kept aside as
// "<name>.bak" so that the next write doesn't lose it.
class ReglagesGtk : public Reglages {
  public:
    explicit ReglagesGtk(std::string chemin) : chemin_(std::move(chemin)) {}
    // $XDG_CONFIG_HOME/brindex/brindex.conf
    static ReglagesGtk parDefaut();

    std::optional<std::string> lire(const std::string& cle) const override;
    void ecrire(const std::string& cle, const std::optional<std::string>& valeur) override;

    const std::string& chemin() const { return chemin_; }

  private:
    std::string chemin_;
};

// What the administrator set for every user: the system's key files brindex/brindex.conf in
// the XDG configuration folders (/etc/xdg first of all), group [brindex]; for each key, the
// first folder that sets it wins.
Administration administrationGtk();

}  // namespace brindex::gtk
