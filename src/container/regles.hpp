#pragma once

#include <optional>
#include <string>

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

}  // namespace brindex
