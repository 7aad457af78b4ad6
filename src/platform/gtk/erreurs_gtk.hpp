#pragma once

#include <gio/gio.h>

#include <string>

#include "container/ports.hpp"

namespace brindex::gtk {

// A GLib, libsoup or WebKitGTK error in the URL-loading vocabulary the core understands
// (NSURLErrorDomain codes, WebKitErrorDomain/102). Anything else keeps its own domain, code
// and message.
ErreurChargement erreurDepuisGError(const GError* erreur);

// A certificate refused during a load, from GLib's TLS flags.
ErreurChargement erreurTls(GTlsCertificateFlags defauts, std::string description);

}  // namespace brindex::gtk
