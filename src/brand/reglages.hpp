#pragma once

#include <optional>
#include <string>

namespace brindex {

// The user's settings store, one string per key (user defaults on macOS, a key file on Linux).
class Reglages {
  public:
    virtual ~Reglages() = default;
    virtual std::optional<std::string> lire(const std::string& cle) const = 0;
    // Stores the text, or removes the key when given none.
    virtual void ecrire(const std::string& cle, const std::optional<std::string>& valeur) = 0;
};

}  // namespace brindex
