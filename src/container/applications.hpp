#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "brand/reglages.hpp"

namespace brindex {

// Whether links of this scheme may ever leave for another application of the system (a
// meeting, a chat, a company tool): never the web's own schemes, which the navigation rules
// handle, nor what reads local files, runs code or serves the engine's and the application's
// own data. `scheme` is in lower case.
bool schemeVersApplication(std::string_view scheme);

enum class ChoixLienApplication { refuser, demander, ouvrir };

// A link the user clicked, with a scheme of another application: refused when the scheme may
// not leave or no application takes it; opened at once when the user said to always open this
// scheme for the space; otherwise the user is asked.
ChoixLienApplication deciderLienApplication(std::string_view scheme, bool application, bool retenu);

// What the question shows of the application's name, which comes from the system's records
// of installed applications.
inline constexpr std::size_t caracteresNomApplication = 80;

// The schemes the user always opens with their application for the space, read from the
// settings like anything stored: well-formed schemes that may leave, a few at most.
std::vector<std::string> schemesApprouves(const Reglages& reglages);
void approuverScheme(Reglages& reglages, std::string_view scheme);

// The main page's zoom kept for the space, as a whole percentage; a stored value that isn't one,
// or lies outside the zoom's bounds, counts as none.
std::optional<double> zoomRetenu(const Reglages& reglages);
void retenirZoom(Reglages& reglages, double zoom);

}  // namespace brindex
