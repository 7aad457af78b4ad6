#include "container/regles.hpp"

#include <algorithm>

#include "address/texte.hpp"
#include "brand/marque.hpp"

namespace brindex {

std::string titreFenetre(const std::optional<std::string>& titrePage) {
    // Only spaces and tabs are trimmed: a title made of line breaks is shown as it is.
    const std::string page = titrePage.value_or(std::string());
    const auto titre = retirerBlancs(page, Blancs::espaces);
    return std::string(titre.empty() ? Marque::nom : titre);
}

std::vector<std::string> languesOrthographe(const std::vector<std::string>& nomsLocale) {
    std::vector<std::string> langues;
    const auto langue = [](const std::string& l) { return l.substr(0, l.find('_')); };
    const auto ajouter = [&](const std::string& nom) {
        // A bare language is left out where one of its countries already is.
        const bool present = std::any_of(langues.begin(), langues.end(), [&](const auto& l) {
            return l == nom || (nom.find('_') == std::string::npos && langue(l) == nom);
        });
        if (!present) langues.push_back(nom);
    };
    for (const auto& nom : nomsLocale) {
        const std::string l = nom.substr(0, nom.find_first_of(".@"));
        if (!l.empty() && l != "C" && l != "POSIX") ajouter(l);
    }
    for (const char* defaut : {"fr_FR", "en_US"}) {
        const std::string l = langue(defaut);
        if (std::none_of(langues.begin(), langues.end(),
                         [&](const auto& x) { return langue(x) == l; }))
            ajouter(defaut);
    }
    return langues;
}

std::string ligneOrthographe(const std::vector<std::string>& languesRetenues) {
    if (languesRetenues.empty()) return "orthographe ECHEC aucun dictionnaire";
    std::string ligne = "orthographe OK";
    for (const auto& l : languesRetenues) ligne += " " + l;
    return ligne;
}

}  // namespace brindex
