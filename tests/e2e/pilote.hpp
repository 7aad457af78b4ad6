#pragma once

// Drives the real Linux application from inside its own process: waits by turning the main
// loop, finds widgets by name, runs scripts in pages, and reads what the application left
// behind (its log, its settings, the test space's requests, the URIs given to other apps).

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "application_gtk.hpp"

namespace brindex::e2e {

struct Echec : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Fails the scenario with a message.
[[noreturn]] void echouer(const std::string& message);
void verifier(bool condition, const std::string& message);

// Turns the main loop until `condition` holds; fails after `secondes`.
void attendre(const std::function<bool()>& condition, double secondes, const std::string& quoi);
// Turns the main loop for a while.
void patienter(double secondes);

std::string variable(const char* nom);

// ---- What the user sees ----
std::vector<GtkWindow*> fenetresVisibles(gtk::ApplicationGtk& application);
GtkWidget* chercher(GtkWidget* racine, const std::string& nom);
// The widget of that name in any visible window.
GtkWidget* chercherPartout(gtk::ApplicationGtk& application, const std::string& nom);
std::string texte(GtkWidget* widget);  // a label's or an entry's text
void cliquer(GtkWidget* bouton);
// The main window's web view, when the space is shown.
WebKitWebView* vueWebPrincipale(gtk::ApplicationGtk& application);
// Runs a script in a page and gives its result as text.
std::string script(WebKitWebView* vue, const std::string& source);
// A real click (through the X server, as a user's) in the middle of the page's element.
void cliquerDans(WebKitWebView* vue, const std::string& selecteur);
// A real click in the middle of a widget.
void cliquerWidget(GtkWidget* widget);
// Real key presses into the window that has the focus, in xdotool's words ("Return",
// "ctrl+r").
void touches(GtkWindow* fenetre, const std::string& combinaison);
// A screenshot of the screen into the folder named by BRINDEX_E2E_CAPTURES, if set.
void capturer(const std::string& nom);

// ---- What the application left behind ----
std::string lireFichier(const std::string& chemin);
std::vector<std::string> lignes(const std::string& chemin);
bool contient(const std::string& texte, const std::string& morceau);
std::string journal();  // the application's log
// The test space's request log, one JSON object per line.
std::vector<std::string> requetes();
std::vector<std::string> ouverts();  // URIs handed to the default handlers

// A second test space started by the scenario itself; stopped when it goes.
class Serveur {
  public:
    explicit Serveur(int port);
    ~Serveur();
    Serveur(const Serveur&) = delete;
    Serveur& operator=(const Serveur&) = delete;

  private:
    GPid pid_ = 0;
};

// A TCP port on 127.0.0.1 that nothing listens on right now.
int portLibre();

}  // namespace brindex::e2e
