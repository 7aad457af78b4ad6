#pragma once

#include <webkit/webkit.h>

#include <functional>
#include <string>

namespace brindex::gtk {

// GTK's print dialog for the page, over its window (whose content waits meanwhile), printing
// to any printer or to a PDF file, `fichierPdf` unless the user picks another. It never blocks:
// `ferme` runs once the dialog closes; a print that then fails calls `echec` with the system's
// words.
void dialogueImpression(WebKitWebView* vue, const std::string& fichierPdf,
                        std::function<void()> ferme, std::function<void(const std::string&)> echec);

}  // namespace brindex::gtk
