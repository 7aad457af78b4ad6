#pragma once

#include <gio/gio.h>

#include <string>

#include "container/ports.hpp"

namespace brindex::gtk {

inline bool reseauDisponible() {
    return g_network_monitor_get_network_available(g_network_monitor_get_default());
}

// A GLib, libsoup or WebKitGTK error in the URL-loading vocabulary the core understands
// (NSURLErrorDomain codes, WebKitErrorDomain/102). Anything else keeps its own domain, code
// and message. `reseau`: whether GLib's network monitor sees a network at all; without one, a
// name that can't be resolved says nothing about the name.
ErreurChargement erreurDepuisGError(const GError* erreur, bool reseau = reseauDisponible());

// A certificate refused during a load, from GLib's TLS flags.
ErreurChargement erreurTls(GTlsCertificateFlags defauts, std::string description);

}  // namespace brindex::gtk
