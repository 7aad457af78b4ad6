#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace brindex {

// The main window's title for a page title: trimmed of spaces and tabs, "Brindex" when empty.
std::string titreFenetre(const std::optional<std::string>& titrePage);

// The progress bar shows until the load is complete.
inline bool barreVisible(double progression) {
    return progression < 1.0;
}

// Page zoom steps: plain double additions, clamped, so values drift as doubles do.
inline double zoomAugmente(double zoom) {
    const double valeur = zoom + 0.1;
    return valeur > 3.0 ? 3.0 : valeur;
}
inline double zoomDiminue(double zoom) {
    const double valeur = zoom - 0.1;
    return valeur <= 0.5 ? 0.5 : valeur;
}
inline double zoomNormal(double) {
    return 1.0;
}

// Time-out of every load of the space, in seconds.
inline constexpr double delaiChargement = 60.0;

// One press of a mouse button or a key allows one opening (the default browser, a mail or
// telephone handler, a new window) for this long; web pages' own transient activation lasts
// about as long, so a page may open its login window once its server has answered.
inline constexpr std::chrono::seconds dureeActivation{5};
// Windows refused after one action of the user that still get a log line each.
inline constexpr unsigned fenetresRefuseesNotees = 20;
// A content process that ends again this soon after the previous end is not reloaded again.
inline constexpr std::chrono::seconds delaiRechuteProcessus{30};

// The languages spelling is checked in: the user's locale's (from the most to the least
// precise names the system gives, "fr_CA.UTF-8", "fr_CA", "fr", "C"), then French and English
// unless the locale already has them. The engine keeps those whose dictionary is installed.
std::vector<std::string> languesOrthographe(const std::vector<std::string>& nomsLocale);
// The log line that says which languages the engine took.
std::string ligneOrthographe(const std::vector<std::string>& languesRetenues);

// What a native dialog shows of a text a page or a server chose.
inline constexpr std::size_t caracteresDialogueMax = 1000;
inline constexpr std::size_t lignesDialogueMax = 25;
// What a prompt's field shows of the page's default text.
inline constexpr std::size_t caracteresChampMax = 10000;

}  // namespace brindex
