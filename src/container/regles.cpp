#include "container/regles.hpp"

#include "address/texte.hpp"
#include "brand/marque.hpp"

namespace brindex {

std::string titreFenetre(const std::optional<std::string>& titrePage) {
    // Only spaces and tabs are trimmed: a title made of line breaks is shown as it is.
    const std::string page = titrePage.value_or(std::string());
    const auto titre = retirerBlancs(page, Blancs::espaces);
    return std::string(titre.empty() ? Marque::nom : titre);
}

}  // namespace brindex
