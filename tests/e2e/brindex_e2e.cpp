// End-to-end scenarios of the Linux application: the real GTK windows and WebKitGTK views,
// against the local test space, in a throw-away profile (see scenario.py), driven by real
// clicks and key presses.

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

#include "log/journal.hpp"
#include "pilote.hpp"
#include "reglages_gtk.hpp"

namespace brindex::e2e {
namespace {

using gtk::ApplicationGtk;

namespace fs = std::filesystem;

// Every text the configuration view's status line took since launch.
std::vector<std::string> messagesVus;

void suivreMessages(ApplicationGtk& app) {
    GtkWidget* message = chercherPartout(app, "messageErreur");
    if (!message) return;
    messagesVus.push_back(texte(message));
    g_signal_connect(message, "notify::label", G_CALLBACK(+[](GObject* label, GParamSpec*) {
                         messagesVus.push_back(gtk_label_get_text(GTK_LABEL(label)));
                     }),
                     nullptr);
}

// This process and all it started (WebKit's processes among them).
std::vector<std::string> descendants() {
    std::vector<std::string> pids;
    for (const auto& entree : fs::directory_iterator("/proc")) {
        const std::string pid = entree.path().filename();
        if (pid.find_first_not_of("0123456789") != std::string::npos) continue;
        for (std::string p = pid; !p.empty() && p != "0" && p != "1";) {
            if (p == std::to_string(getpid())) {
                pids.push_back(pid);
                break;
            }
            const std::string stat = lireFichier("/proc/" + p + "/stat");
            if (stat.rfind(')') == std::string::npos) break;  // ended meanwhile
            std::istringstream champs(stat.substr(stat.rfind(')') + 2));
            std::string etat;
            champs >> etat >> p;
        }
    }
    return pids;
}

// The web content processes of the pages.
std::vector<int> processusWeb() {
    std::vector<int> web;
    for (const auto& pid : descendants()) {
        if (contient(lireFichier("/proc/" + pid + "/comm"), "WebKitWebProces")) {
            web.push_back(std::stoi(pid));
        }
    }
    verifier(!web.empty(), "processus web introuvable");
    return web;
}

// The proportional set size of the whole process tree, in kB.
long pssArbre() {
    long total = 0;
    for (const auto& pid : descendants()) {
        std::istringstream lignes(lireFichier("/proc/" + pid + "/smaps_rollup"));
        for (std::string nom; lignes >> nom;) {
            long valeur = 0;
            if (nom == "Pss:" && lignes >> valeur) total += valeur;
        }
    }
    return total;
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool sousAsan = true;
#else
constexpr bool sousAsan = false;
#endif

// ---- Scenarios ----

void premierDemarrage(ApplicationGtk& app) {
    GtkWidget* champ = exiger(app, "champ");
    GtkWidget* message = exiger(app, "messageErreur");
    GtkWidget* roue = exiger(app, "roue");
    verifier(texte(champ).empty(), "le champ devrait être vide");
    verifier(gtk_widget_has_focus(gtk_widget_get_first_child(champ)) || gtk_widget_has_focus(champ),
             "le champ devrait avoir le focus");
    // The built-in addresses are tried, none answers, and nothing is shown.
    attendre([&] { return texte(message).empty() && !gtk_spinner_get_spinning(GTK_SPINNER(roue)); },
             40, "fin de la recherche des adresses par défaut");
    verifier(messagesVus.size() >= 2 && messagesVus[0] == "Recherche de votre espace…" &&
                 messagesVus.back().empty() && texte(champ).empty(),
             "la recherche s'est montrée puis effacée, sans adresse");
    verifier(!gtk_widget_get_visible(exiger(app, "boutonForcer")), "« Forcer » caché");
    capturer("configuration");

    gtk_editable_set_text(GTK_EDITABLE(champ), "pas une adresse");
    cliquer(exiger(app, "bouton"));
    verifier(contient(texte(message), "Adresse invalide — exemple :"), texte(message));
    capturer("configuration-invalide");

    gtk_editable_set_text(GTK_EDITABLE(champ), espace().c_str());
    verifier(texte(message).empty(), "taper efface le message");
    touches(principale(app), "Return");
    attendre([] { return std::ranges::count(messagesVus, "Vérification de l'adresse…") == 1; }, 10,
             "vérification en cours");

    WebKitWebView* vue = attendreEspace(app);
    verifier(requeteVue("/health", "\"Brindex-Desktop/1.0.0\""), "/health avec l'agent");
    verifier(gtk::ReglagesGtk::parDefaut().lire("espaceURL") == espace(), "adresse enregistrée");
    verifier(requeteVue("/", "Brindex-Desktop/1.0.0\""), "la page avec l'agent en suffixe");
    verifier(contient(journal(), "demarrage v1.0.0"), "ligne de démarrage");
    // Xvfb has no GPU: the light renderer, chosen by the application itself.
    verifier(contient(journal(), "rendu logiciel (") &&
                 contient(journal(), "), cairo, sans composition"),
             journal());
    const std::string titre = script(vue, "document.title");
    attendre([&] { return titre == gtk_window_get_title(principale(app)); }, 10,
             "titre de la fenêtre = titre de la page");
    const std::string agent = script(vue, "navigator.userAgent");
    verifier(agent.size() > 21 && agent.ends_with("Brindex-Desktop/1.0.0"), agent);
    capturer("espace");
}

void injoignable(ApplicationGtk& app) {
    GtkWidget* explication = exiger(app, "explication");
    verifier(contient(texte(explication), "Le serveur de votre espace ne répond pas"),
             texte(explication));
    verifier(contient(journal(), "navigation ECHEC NSURLErrorDomain/-1004"), journal());
    capturer("erreur");
    // The test space starts listening at the stored address, then stops again.
    const int serveur = std::stoi(variable("BRINDEX_E2E_SERVEUR_PID"));
    kill(serveur, SIGUSR1);
    touches(principale(app), "Return");  // "Réessayer"
    WebKitWebView* vue = attendreEspace(app, *gtk::ReglagesGtk::parDefaut().lire("espaceURL"));
    kill(serveur, SIGUSR2);
    // Once the space has loaded, a failure leaves the page and says so over the window.
    script(vue, "setTimeout(() => location.href = '/equipe', 1000); 'ok'");
    GtkWidget* feuille = alerte(app);
    verifier(texte(chercher(feuille, "titre-alerte")) == "Page inaccessible", "titre");
    verifier(contient(texte(chercher(feuille, "texte-alerte")), "ne répond pas"),
             texte(chercher(feuille, "texte-alerte")));
    verifier(gtk_window_get_transient_for(GTK_WINDOW(feuille)) == principale(app),
             "attachée à la fenêtre principale");
    verifier(vueWebPrincipale(app) == vue, "la page reste");
    cliquer(chercher(feuille, "bouton-0"));
}

// WebKitGTK has no time-out of its own for a load: the application's applies.
void delaiDepasse(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    // With a popup open, the sheet that comes blocks only the window it belongs to.
    cliquerDans(vue, "#ouvrir-fenetre");
    attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre secondaire");
    const auto principaleVue = app.controleur()->webView();
    // A server that answers in time: nothing is said, even once the delay has gone by.
    principaleVue->charger(espace() + "equipe", 2.0);
    attendreJournal("navigation OK " + espace() + "equipe");
    patienter(2.5);
    verifier(!chercherPartout(app, "bouton-0"), "aucune alerte pour une page arrivée à temps");
    principaleVue->charger(espace() + "lent", 1.0);
    GtkWidget* feuille = alerte(app, 10);
    verifier(!gtk_window_get_modal(GTK_WINDOW(feuille)) &&
                 !gtk_widget_get_sensitive(gtk_window_get_child(principale(app))),
             "modale pour sa fenêtre");
    for (GtkWindow* f : fenetresVisibles(app)) {
        verifier(f == principale(app) || GTK_WIDGET(f) == feuille ||
                     gtk_widget_get_sensitive(gtk_window_get_child(f)),
                 "la fenêtre secondaire reste utilisable");
    }
    verifier(texte(chercher(feuille, "titre-alerte")) == "Page inaccessible", "titre");
    verifier(contient(texte(chercher(feuille, "texte-alerte")), "ne répond pas"), "explication");
    verifier(contient(journal(), "navigation ECHEC NSURLErrorDomain/-1001"), journal());
    verifier(vueWebPrincipale(app) == vue, "la page reste");
    cliquer(chercher(feuille, "bouton-0"));
    verifier(gtk_widget_get_sensitive(gtk_window_get_child(principale(app))), "de nouveau active");
}

void liens(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    cliquerDans(vue, "#lien-externe");
    attendreOuvert([](const std::string& o) { return o == "https://www.brindex.example/"; },
                   "le lien externe remis au navigateur par défaut");
    cliquerDans(vue, "#lien-courriel");
    attendreOuvert([](const std::string& o) { return o.starts_with("mailto:"); },
                   "le lien mailto remis à la messagerie");
    verifier(webkit_web_view_get_uri(vue) == espace() && !contient(journal(), "REFUSEE"),
             "la page reste, rien de refusé");

    // A script sending the page elsewhere, then one clicking links by itself: nothing leaves.
    const std::size_t avant = ouverts().size();
    script(vue, "location.href = '/redirection'; 'ok'");
    attendreJournal("navigation externe automatique REFUSEE vers www.brindex.example");
    script(vue, "location.href = '/hostile/clics'; 'ok'");
    attendreJournal("navigation externe automatique REFUSEE vers mailto:x@brindex.example");
    // WebKitGTK doesn't say which frame navigates: a navigation elsewhere is refused once its
    // answer (here its failure) shows it filled the page, so a click the next one replaced
    // leaves no line.
    attendreJournal("REFUSEE vers www.brindex.example", 2);
    patienter(0.5);
    verifier(ouverts().size() == avant, "rien n'est lancé sans l'utilisateur");
    verifier(webkit_web_view_get_uri(vue) == espace() + "hostile/clics", "la page reste");

    // A frame of another site shows, its links load inside it; one aimed at the whole window
    // goes to the browser.
    const std::string port = espace().substr(espace().rfind(':') + 1);
    const std::string cadre = "http://localhost:" + port + "hostile/cadre";
    script(vue, "location.href = '/hostile/cadres'; 'ok'");
    const auto vu = [&](const std::string& url) {
        attendre([&] { return contient(script(vue, "JSON.stringify(window.vus || [])"), url); }, 10,
                 "cadre chargé : " + url);
    };
    vu(cadre);
    cliquerDans(vue, "#cadre");
    vu(cadre + "?n=2");
    cliquerDans(vue, "#cadre");
    attendreOuvert(
        [&](const std::string& o) { return o == "http://localhost:" + port + "hostile/haut"; },
        "le lien vers le haut remis au navigateur");
    verifier(webkit_web_view_get_uri(vue) == espace() + "hostile/cadres", "la page reste");
    verifier(!contient(journal(), "REFUSEE vers localhost"), journal());
}

void popup(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    const auto secondaire = [&] {
        attendre([&] { return fenetresVisibles(app).size() == 2; }, 20, "fenêtre secondaire");
        const auto fenetres = fenetresVisibles(app);
        return fenetres[0] == principale(app) ? fenetres[1] : fenetres[0];
    };
    cliquerDans(vue, "#ouvrir-fenetre");
    GtkWindow* fenetre = secondaire();
    verifier(app.controleur()->fenetresSecondaires().size() == 1, "une fenêtre secondaire");
    verifier(g_strcmp0(gtk_window_get_title(fenetre), "Brindex") == 0, "titre « Brindex »");
    auto* vueSecondaire = vueWebDe(GTK_WIDGET(fenetre));
    bool liberee = false;
    g_object_weak_ref(
        G_OBJECT(vueSecondaire), [](gpointer d, GObject*) { *static_cast<bool*>(d) = true; },
        &liberee);
    attendreJournal("navigation OK " + espace() + "fenetre");
    capturer("fenetre-secondaire");
    // Launched again while a window is on screen: nothing moves.
    attendre([&] { return gtk_application_get_active_window(app.application()) == fenetre; }, 10,
             "fenêtre secondaire active");
    g_application_activate(G_APPLICATION(app.application()));
    patienter(0.3);
    verifier(gtk_application_get_active_window(app.application()) == fenetre,
             "la fenêtre principale ne passe pas devant");
    script(vueSecondaire, "setTimeout(() => window.close(), 0); 'ok'");
    attendre([&] { return fenetresVisibles(app).size() == 1 && liberee; }, 20, "fermée, libérée");
    verifier(app.controleur()->fenetresSecondaires().empty() &&
                 app.controleur()->originesWebView().size() == 1,
             "seule la vue principale reste");

    // One click on a page that opens 300 windows: one window, a few lines in the log.
    script(vue, "location.href = '/hostile/clics'; 'ok'");
    attendreJournal("navigation OK " + espace() + "hostile/clics");
    cliquerDans(vue, "#flot");
    attendreJournal("nouvelle fenetre REFUSEE, les suivantes ne sont plus notees");
    secondaire();
    patienter(0.5);
    verifier(fenetresVisibles(app).size() == 2 && compter(journal(), "fenetre REFUSEE") == 21,
             "une seule fenêtre");
    app.controleur()->fermerFenetresSecondaires();

    // A blank window that the page writes into is held to the page's origin.
    script(vue, "location.href = '/'; 'ok'");
    attendre(
        [&] {
            return webkit_web_view_get_uri(vue) == espace() && !webkit_web_view_is_loading(vue);
        },
        10, "retour à l'accueil");
    cliquerDans(vue, "#ouvrir-vierge");
    secondaire();
    verifier(app.controleur()->originesWebView().size() == 2, "tenue à l'origine de l'ouvreur");

    // Twenty popups opened and closed by the user: their memory comes back, and no web process
    // outlives its window.
    app.controleur()->fermerFenetresSecondaires();
    patienter(1);
    const long avant = pssArbre();
    const auto webAvant = processusWeb().size();
    for (int i = 0; i < 20; ++i) {
        cliquerDans(vue, "#ouvrir-fenetre");
        gtk_window_close(secondaire());
        attendre([&] { return fenetresVisibles(app).size() == 1; }, 10, "popup fermée");
    }
    patienter(2);
    const long apres = pssArbre();
    // AddressSanitizer holds freed memory back on purpose: only the web processes count there.
    verifier((sousAsan || apres < avant * 1.1) && processusWeb().size() == webAvant,
             "mémoire " + std::to_string(avant) + " → " + std::to_string(apres) + " ko");

    // Closing the main window closes the others and ends the application; its size stays.
    gtk_window_close(principale(app));
    attendre([&] { return fenetresVisibles(app).empty(); }, 10, "toutes les fenêtres fermées");
    verifier(app.controleur()->fenetresSecondaires().empty(), "liste vidée");
    verifier(gtk::ReglagesGtk::parDefaut().lire("BrindexPrincipaleLargeur") == "1280",
             "taille de la fenêtre enregistrée");
}

void telechargements(ApplicationGtk& app) {
    const fs::path dossier = variable("BRINDEX_E2E_TELECHARGEMENTS");
    std::ofstream(dossier / "rapport.pdf") << "déjà là";
    // A file of the user's named like the engine's working file for "note.txt".
    std::ofstream(dossier / "note.txt.wkdownload") << "à moi";
    WebKitWebView* vue = attendreEspace(app);
    cliquerDans(vue, "#piece-jointe");
    attendreJournal("telechargement OK rapport (2).pdf");
    verifier(fs::file_size(dossier / "rapport (2).pdf") > 0 &&
                 lireFichier((dossier / "rapport.pdf").string()) == "déjà là",
             "« rapport (2).pdf » enregistré, l'existant intact");
    // Handed over as a path or as a file URI.
    attendreOuvert(
        [&](const std::string& o) { return o == dossier.string() || o.starts_with("file://"); },
        "le dossier montré dans le gestionnaire de fichiers");
    verifier(webkit_web_view_get_uri(vue) == espace(), "la page reste");

    // A link that asks for a download of a page the view could show.
    script(vue, "location.href = '/hostile/clics'; 'ok'");
    attendreJournal("navigation OK " + espace() + "hostile/clics");
    cliquerDans(vue, "#dl");
    attendreJournal("telechargement OK equipe.html");
    // Five downloads of one name at once: five files, each its own.
    script(vue,
           "for (let i = 1; i <= 5; i++) { const f = document.createElement('iframe');"
           " f.src = '/hostile/note?lent=1&i=' + i; document.body.append(f); } 'ok'");
    attendreJournal("telechargement ", 7);
    std::set<std::string> contenus;
    for (int i = 2; i <= 6; ++i) {
        const std::string nom = "note (" + std::to_string(i) + ").txt";
        verifier(contient(journal(), "telechargement OK " + nom), journal());
        contenus.insert(lireFichier((dossier / nom).string()));
    }
    verifier(contenus.size() == 5, "cinq contenus différents");
    verifier(lireFichier((dossier / "note.txt.wkdownload").string()) == "à moi", "fichier intact");

    // A name too long once the engine's suffix is added is shortened, and saved.
    std::string nom;
    for (int i = 0; i < 125; ++i) nom += "é";
    script(vue, "location.href = '/hostile/note?nom=" + nom + ".txt'; 'ok'");
    attendreJournal("telechargement OK ", 8);
    verifier(!contient(journal(), "ECHEC"), journal());

    // A failure whose reason is 20,000 characters with control bytes: a bounded alert at once,
    // one clean log line.
    const gint64 debut = g_get_monotonic_time();
    webkit_web_view_download_uri(vue, (espace() + "hostile/echec?long=20000").c_str());
    GtkWidget* f = alerte(app);
    verifier(secondesDepuis(debut) < 5, "alerte en " + std::to_string(secondesDepuis(debut)));
    verifier(texte(chercher(f, "titre-alerte")) == "Téléchargement impossible", "titre");
    verifier(texte(chercher(f, "texte-alerte")).size() <= 1006, "extrait");
    const auto echec = lignes(Journal::chemin()).back();
    verifier(contient(echec, "telechargement ECHEC Erreur \\x1B[31m\\x07") && echec.size() < 2100,
             echec);
    touches(GTK_WINDOW(f), "Return");
}

// Opens a page dialog from a script and gives the alert window once it shows.
GtkWidget* ouvrirDialogue(ApplicationGtk& app, WebKitWebView* vue, const std::string& appel) {
    script(vue, "window.r = undefined; setTimeout(() => { window.r = " + appel + "; }, 0); 'ok'");
    GtkWidget* fenetre = alerte(app);
    verifier(g_strcmp0(gtk_window_get_title(GTK_WINDOW(fenetre)), "Brindex") == 0, "titre Brindex");
    verifier(texte(chercher(fenetre, "bouton-0")) == "OK", "premier bouton OK");
    return fenetre;
}

// Answers the dialog with real keys and gives what the page received.
std::string repondre(ApplicationGtk& app, WebKitWebView* vue, GtkWidget* f, const char* touche) {
    touches(GTK_WINDOW(f), touche);
    attendre([&] { return !chercherPartout(app, "bouton-0"); }, 10, "fermeture du dialogue");
    std::string r;
    attendre(
        [&] { return (r = script(vue, "JSON.stringify(window.r) ?? 'undefined'")) != "undefined"; },
        10, "réponse reçue par la page");
    return r;
}

void dialogues(ApplicationGtk& app) {
    WebKitWebView* vue = attendreEspace(app);
    GtkWidget* f = ouvrirDialogue(app, vue, "(alert('Bonjour'), 'vu')");
    verifier(texte(chercher(f, "texte-alerte")) == "Bonjour" && !chercher(f, "bouton-1"),
             "une alerte : son message, un bouton");
    capturer("alerte");
    verifier(repondre(app, vue, f, "Return") == "\"vu\"", "alerte fermée");
    // A real click on the OK of an alert a page raised by itself lets the page open nothing.
    cliquerWidget(chercher(ouvrirDialogue(app, vue, "alert('Et alors ?')"), "bouton-0"));
    attendre([&] { return !chercherPartout(app, "bouton-0"); }, 10, "alerte fermée d'un clic");
    verifier(!app.controleur()->creerVueWebDemandee(*app.controleur()->webView(), espace(),
                                                    std::nullopt, gtk::ConfigurationGtk(vue)),
             "une fenêtre ouverte après le clic dans l'alerte");

    // Return presses "OK", Escape dismisses.
    struct Cas {
        const char* appel;
        const char* saisie;  // typed into the field first, if any
        const char* touche;
        const char* reponse;
    };
    for (const Cas& c : {Cas{"confirm('Continuer ?')", nullptr, "Return", "true"},
                         Cas{"confirm('Continuer ?')", nullptr, "Escape", "false"},
                         Cas{"prompt('Votre nom ?', 'Anne')", "Zoe", "Return", "\"Zoe\""},
                         Cas{"prompt('Votre nom ?')", nullptr, "Return", "\"\""},
                         Cas{"prompt('Votre nom ?', 'Anne')", "Zoe", "Escape", "null"}}) {
        f = ouvrirDialogue(app, vue, c.appel);
        if (GtkWidget* champ = chercher(f, "champ-dialogue")) {
            verifier(texte(champ) == (contient(c.appel, "Anne") ? "Anne" : ""), "texte par défaut");
            if (c.saisie) touches(GTK_WINDOW(f), "ctrl+a type " + std::string(c.saisie));
        } else {
            verifier(texte(chercher(f, "bouton-1")) == "Annuler", "second bouton Annuler");
        }
        const std::string r = repondre(app, vue, f, c.touche);
        verifier(r == c.reponse, std::string(c.appel) + " " + c.touche + " → " + r);
    }

    // One unbroken word of 64 KiB: shown at once, as an excerpt.
    const gint64 debut = g_get_monotonic_time();
    f = ouvrirDialogue(app, vue, "(alert('x'.repeat(65536)), 'vu')");
    verifier(secondesDepuis(debut) < 3, "alerte en " + std::to_string(secondesDepuis(debut)));
    verifier(texte(chercher(f, "texte-alerte")) == std::string(1000, 'x') + "…", "extrait");
    verifier(repondre(app, vue, f, "Return") == "\"vu\"", "alerte longue fermée");
    // A default text beyond what the field holds comes back whole.
    f = ouvrirDialogue(app, vue, "prompt('Jeton ?', 'j'.repeat(100000)).length");
    verifier(repondre(app, vue, f, "Return") == "100000", "texte par défaut rendu entier");

    // The file chooser stands free: the page's window stays usable while it is open.
    script(vue, "location.href = '/envoi'; 'ok'");
    attendreJournal("navigation OK " + espace() + "envoi");
    cliquerDans(vue, "#fichiers");
    GtkWindow* selecteur = nullptr;
    attendre(
        [&] {
            GListModel* toutes = gtk_window_get_toplevels();
            for (guint i = 0; i < g_list_model_get_n_items(toutes) && !selecteur; ++i) {
                auto* w = GTK_WINDOW(g_list_model_get_item(toutes, i));
                if (GTK_IS_FILE_CHOOSER(w) && gtk_widget_get_visible(GTK_WIDGET(w))) selecteur = w;
                g_object_unref(w);
            }
            return selecteur != nullptr;
        },
        10, "sélecteur de fichiers");
    verifier(!gtk_window_get_modal(selecteur), "sélecteur non modal");
    // Out of the way of the page (no window manager places it).
    xdotool("windowmove " +
            std::to_string(gdk_x11_surface_get_xid(gtk_native_get_surface(GTK_NATIVE(selecteur)))) +
            " 1300 900");
    capturer("selecteur");
    cliquerDans(vue, "nav a[href=\\\"/equipe\\\"]");
    attendreJournal("navigation OK " + espace() + "equipe");
    touches(selecteur, "Escape");
    attendre([&] { return !gtk_widget_get_visible(GTK_WIDGET(selecteur)); }, 10, "sélecteur fermé");
}

// A space stored in a form the engine writes differently, whose first page the server holds
// back: the web process dies meanwhile, and the space comes up all the same; then it dies again.
void processusWebMort(ApplicationGtk& app) {
    attendre([] { return requeteVue("/lent", "GET"); }, 20, "la première page demandée");
    kill(processusWeb().front(), SIGKILL);
    attendreJournal("processus web ECHEC plantage");
    attendreEspace(app, espace() + "lent");
    verifier(!contient(journal(), "REFUSEE"), journal());
    kill(processusWeb().front(), SIGKILL);
    const std::string explication = texte(exiger(app, "explication"));
    verifier(contient(explication, "s'est arrêtée de façon inattendue"), explication);
}

// The log's place holds a FIFO nobody reads: the application starts all the same.
void journalFifo(ApplicationGtk& app) {
    WebKitWebView* vue = nullptr;
    attendre([&] { return (vue = vueWebPrincipale(app)) && !webkit_web_view_is_loading(vue); }, 20,
             "l'espace chargé");
    verifier(webkit_web_view_get_uri(vue) == espace(), "la page de l'espace");
}

const Enregistrement inscrits[] = {
    {"premier-demarrage", {nullptr, premierDemarrage}},
    {"injoignable",
     {[] { stockerAdresse("http://127.0.0.1:" + variable("BRINDEX_E2E_PORT_LIBRE") + "/"); },
      injoignable}},
    {"delai-depasse", {espaceStocke, delaiDepasse}},
    {"liens", {espaceStocke, liens}},
    {"popup", {espaceStocke, popup}},
    {"telechargements", {espaceStocke, telechargements}},
    {"dialogues", {espaceStocke, dialogues}},
    {"processus-web",
     {[] {
          const std::string e = espace();
          stockerAdresse("http://0x7f.1" + e.substr(e.rfind(':')) + "lent");
      },
      processusWebMort}},
    {"journal-fifo",
     {[] {
          espaceStocke();
          const fs::path etat = fs::path(variable("XDG_STATE_HOME")) / "brindex";
          fs::create_directories(etat);
          verifier(mkfifo((etat / "Brindex.log").c_str(), 0600) == 0, "mkfifo");
      },
      journalFifo}},
};

}  // namespace
}  // namespace brindex::e2e

int main(int argc, char** argv) {
    using namespace brindex::e2e;
    if (argc < 2 || argc > 3 || !scenarios().contains(argv[1])) {
        std::cerr << "usage: brindex_e2e <scenario> [relance]\n";
        for (const auto& [nom, s] : scenarios()) std::cerr << "  " << nom << "\n";
        return 2;
    }
    // Started again (a new process, as a user's new launch: WebKit's network process and its
    // session cookies end with the first one): only what comes after runs.
    const Scenario& inscrit = scenarios().at(argv[1]);
    const Scenario scenario = argc == 3 ? Scenario{nullptr, inscrit.relance} : inscrit;
    try {
        if (scenario.avant) scenario.avant();
    } catch (const Echec& e) {
        std::cerr << "ÉCHEC : " << e.what() << "\n";
        return 1;
    }
    struct Contexte {
        brindex::gtk::ApplicationGtk* application;
        const std::function<void(brindex::gtk::ApplicationGtk&)>* etape;
        int statut;
    } contexte{nullptr, &scenario.deroulement, 0};
    // A launcher may pass a file or an address: the application ignores it.
    char ignore[] = "document-ignore.pdf";
    char* arguments[] = {argv[0], ignore, nullptr};
    for (const auto* etape : {&scenario.deroulement, &scenario.relance}) {
        if (!*etape || contexte.statut != 0) break;
        if (etape == &scenario.relance) {
            char relance[] = "relance";
            char* suite[] = {argv[0], argv[1], relance, nullptr};
            execv(argv[0], suite);
        }
        brindex::gtk::ApplicationGtk application;
        contexte.application = &application;
        contexte.etape = etape;
        // The step runs once the launch is over, from the main loop.
        application.apresLancement = [&contexte] {
            suivreMessages(*contexte.application);
            g_idle_add_once(
                [](gpointer d) {
                    auto* c = static_cast<Contexte*>(d);
                    try {
                        (*c->etape)(*c->application);
                    } catch (const std::exception& e) {
                        std::cerr << "ÉCHEC : " << e.what() << "\n";
                        c->statut = 1;
                    }
                    g_application_quit(G_APPLICATION(c->application->application()));
                },
                &contexte);
        };
        application.executer(2, arguments);
    }
    if (contexte.statut == 0) std::cout << "scénario réussi : " << argv[1] << "\n";
    return contexte.statut;
}
