#include "application_gtk.hpp"

#include <glib-unix.h>
#include <webkit/webkit.h>

#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "app/menus.hpp"
#include "app/rendu.hpp"
#include "log/journal.hpp"
#include "services_gtk.hpp"
#include "vue_web_gtk.hpp"

namespace brindex::gtk {

namespace {

// The renderers the user named through the environment, which always win.
bool gskImpose() {
    return g_getenv("GSK_RENDERER") != nullptr;
}
bool compositionImposee() {
    return g_getenv("WEBKIT_DISABLE_COMPOSITING_MODE") != nullptr;
}
bool dmabufImpose() {
    return g_getenv("WEBKIT_DISABLE_DMABUF_RENDERER") != nullptr;
}

// "performClose:" becomes the action "performClose".
std::string nomAction(const ElementMenu& element) {
    std::string nom(element.selecteur);
    if (!nom.empty() && nom.back() == ':') nom.pop_back();
    return nom;
}

// Keys Linux users also expect beside the menu's own.
std::vector<std::string> accelerateursEnPlus(Commande commande) {
    if (commande == Commande::pleinEcran) return {"F11"};
    if (commande == Commande::zoomPlus) return {"<Control>equal", "<Control>KP_Add"};
    if (commande == Commande::zoomMoins) return {"<Control>KP_Subtract"};
    if (commande == Commande::recharger) return {"F5"};
    if (commande == Commande::rechercherSuivant) return {"F3"};
    if (commande == Commande::rechercherPrecedent) return {"<Shift>F3"};
    return {};
}

// Editing commands go to the focused web view, or to the focused GTK widget's own action.
struct Edition {
    Commande commande;
    const char* web;  // WebKit's editing command name
    const char* action;
};

const Edition* edition(Commande commande) {
    static const Edition editions[] = {
        {Commande::couper, WEBKIT_EDITING_COMMAND_CUT, "clipboard.cut"},
        {Commande::copier, WEBKIT_EDITING_COMMAND_COPY, "clipboard.copy"},
        {Commande::coller, WEBKIT_EDITING_COMMAND_PASTE, "clipboard.paste"},
        {Commande::toutSelectionner, WEBKIT_EDITING_COMMAND_SELECT_ALL, "selection.select-all"},
        {Commande::annuler, WEBKIT_EDITING_COMMAND_UNDO, "text.undo"},
        {Commande::retablir, WEBKIT_EDITING_COMMAND_REDO, "text.redo"},
    };
    for (const Edition& e : editions) {
        if (e.commande == commande) return &e;
    }
    return nullptr;
}

// With the trace on, SIGUSR1 prints how many entries each table of the application holds, on
// one line: "brindex tables origines=1 secondaires=0 …".
gboolean surDemandeTables(gpointer donnees) {
    const auto* application = static_cast<const ApplicationGtk*>(donnees);
    std::string ligne = "brindex tables";
    if (const Controleur* c = application->controleur()) {
        for (const auto& [nom, taille] : c->tailles()) {
            ligne += std::string(" ") + nom + "=" + std::to_string(taille);
        }
    }
    if (const PlateformeGtk* p = application->plateforme()) {
        ligne += " telechargementsMoteur=" + std::to_string(p->telechargementsSuivis());
    }
    ligne += " vuesWeb=" + std::to_string(VueWebGtk::vivantes());
    ligne += " fenetres=" +
             std::to_string(g_list_length(gtk_application_get_windows(application->application())));
    g_printerr("%s\n", ligne.c_str());
    return G_SOURCE_CONTINUE;
}

struct ActionMenu {
    ApplicationGtk* application;
    Commande commande;
    Cible cible;
};

}  // namespace

ApplicationGtk::ApplicationGtk()
    : application_(Ref<GtkApplication>::adopter(gtk_application_new(
          std::string(Marque::identifiant).c_str(), G_APPLICATION_DEFAULT_FLAGS))) {
    g_signal_connect(application_.get(), "activate", G_CALLBACK(surActivation), this);
}

ApplicationGtk::~ApplicationGtk() {
    g_signal_handlers_disconnect_by_data(application_.get(), this);
    if (sourceTables_ != 0) g_source_remove(sourceTables_);
    // The controller's windows go before the platform that made them.
    controleur_.reset();
    plateforme_.reset();
}

int ApplicationGtk::executer(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--help" || std::string_view(argv[i]) == "-h") {
            std::cout << "brindex : ouvre votre espace Brindex dans sa propre fenêtre ; aucune "
                         "option.\n";
            return 0;
        }
    }
    // Without a graphics device GTK is told, before it opens the display, not to prepare GL, and
    // WebKit, before its first view, not to look for it.
    renduSansCarte_ = choisirRenduSansCarte(carteGraphiquePresente(), gskImpose(),
                                            compositionImposee(), dmabufImpose());
    if (renduSansCarte_ && renduSansCarte_->sansGl) {
        const char* debogage = g_getenv("GDK_DEBUG");
        const std::string drapeaux =
            debogage && *debogage ? std::string(debogage) + ",gl-disable" : "gl-disable";
        g_setenv("GDK_DEBUG", drapeaux.c_str(), TRUE);
    }
    if (renduSansCarte_ && renduSansCarte_->sansDmabuf) {
        g_setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", TRUE);
        // Nor is there a render node: named, WebKit doesn't open EGL to find one, which loads
        // Mesa's software driver and LLVM here (20 MB); web processes that hand their pages over
        // in shared memory never open it.
        g_setenv("WEBKIT_WEB_RENDER_DEVICE_FILE", "/dev/null", FALSE);
    }
    char* seul[] = {argc > 0 ? argv[0] : nullptr, nullptr};
    return g_application_run(G_APPLICATION(application_.get()), argc > 0 ? 1 : 0, seul);
}

void ApplicationGtk::surActivation(GApplication*, gpointer donnees) {
    auto* soi = static_cast<ApplicationGtk*>(donnees);
    if (soi->controleur_) {
        // Launched again: the reopen rule, as for a click on the macOS Dock icon; with windows
        // on screen, the application only comes forward with the one the user used last.
        GtkApplication* app = soi->application_.get();
        bool visibles = false;
        for (GList* l = gtk_application_get_windows(app); l; l = l->next) {
            GtkWidget* f = GTK_WIDGET(l->data);
            GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(f));
            visibles =
                visibles ||
                (gtk_widget_get_visible(f) && surface && GDK_IS_TOPLEVEL(surface) &&
                 !(gdk_toplevel_get_state(GDK_TOPLEVEL(surface)) & GDK_TOPLEVEL_STATE_MINIMIZED));
        }
        reouvrir(*soi->controleur_, visibles);
        if (GtkWindow* active = gtk_application_get_active_window(app); visibles && active) {
            gtk_window_present(active);
        }
        return;
    }
    Journal::definirChemin(cheminJournalGtk());
    // The installed icon, named after the application.
    gtk_window_set_default_icon_name(std::string(Marque::identifiant).c_str());
    jalon("application enregistree");
    // The renderer, before GTK makes one for the first window.
    const auto rendu = soi->renduSansCarte_
                           ? *soi->renduSansCarte_
                           : choisirRendu(rendeurGlGtk(), gskImpose(), compositionImposee());
    if (rendu.rendeurCairo) g_setenv("GSK_RENDERER", "cairo", TRUE);
    Journal::ecrire(rendu.ligneJournal);
    jalon("rendu choisi");
    soi->plateforme_ = std::make_unique<PlateformeGtk>(soi->application_.get());
    soi->plateforme_->definirSansComposition(rendu.sansComposition);
    soi->controleur_ = Controleur::creer(*soi->plateforme_);
    soi->plateforme_->definirControleur(soi->controleur_);
    if (const auto principale = soi->plateforme_->fenetrePrincipale()) {
        // Closing the main window ends the application.
        g_signal_connect_swapped(principale->fenetre(), "destroy", G_CALLBACK(g_application_quit),
                                 soi->application_.get());
    }
    if (traceDemandee() && soi->sourceTables_ == 0) {
        soi->sourceTables_ = g_unix_signal_add(SIGUSR1, surDemandeTables, soi);
    }
    jalon("fenetre construite");
    lancer(*soi, *soi->controleur_);
    jalon("lancement fini");
    if (soi->apresLancement) soi->apresLancement();
}

// One menu of the bar, or a submenu, as GMenu sections between its separators; each item's
// action and accelerators are registered on the application.
GMenu* ApplicationGtk::menuGtk(const Menu& menu) {
    GtkApplication* app = application_.get();
    GMenu* sousMenu = g_menu_new();
    GMenu* section = g_menu_new();
    const auto fermerSection = [&] {
        if (g_menu_model_get_n_items(G_MENU_MODEL(section)) > 0) {
            g_menu_append_section(sousMenu, nullptr, G_MENU_MODEL(section));
            g_object_unref(section);
            section = g_menu_new();
        }
    };
    for (const ElementMenu& element : menu.elements) {
        if (element.separateur) {
            fermerSection();
            continue;
        }
        if (element.macosSeulement) continue;
        const std::string titre(element.titre);
        if (element.sousMenu) {
            GMenu* contenu = menuGtk(*element.sousMenu);
            g_menu_append_submenu(section, titre.c_str(), G_MENU_MODEL(contenu));
            g_object_unref(contenu);
            continue;
        }
        if (!element.commande) continue;
        const std::string nom = nomAction(element);
        GSimpleAction* action = g_simple_action_new(nom.c_str(), nullptr);
        auto* donnees = new ActionMenu{this, *element.commande, cibleDe(menu, element)};
        g_signal_connect_data(
            action, "activate", G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer d) {
                const auto* a = static_cast<ActionMenu*>(d);
                // Items aimed at the controller reach it; the others go to GTK's own
                // receivers.
                if (a->cible == Cible::controleur && a->application->controleur()) {
                    a->application->controleur()->executer(a->commande);
                } else {
                    a->application->commandeStandard(a->commande);
                }
            }),
            donnees, [](gpointer d, GClosure*) { delete static_cast<ActionMenu*>(d); },
            GConnectFlags(0));
        g_action_map_add_action(G_ACTION_MAP(app), G_ACTION(action));
        g_object_unref(action);

        const std::string detaille = "app." + nom;
        std::vector<std::string> touches;
        if (auto principal = accelerateurGtk(element); !principal.empty()) {
            touches.push_back(std::move(principal));
        }
        for (auto& autre : accelerateursEnPlus(*element.commande)) touches.push_back(autre);
        std::vector<const char*> liste;
        for (const auto& t : touches) liste.push_back(t.c_str());
        liste.push_back(nullptr);
        gtk_application_set_accels_for_action(app, detaille.c_str(), liste.data());
        g_menu_append(section, titre.c_str(), detaille.c_str());
    }
    fermerSection();
    g_object_unref(section);
    return sousMenu;
}

void ApplicationGtk::construireMenus() {
    GMenu* barre = g_menu_new();
    for (const Menu& menu : barreDeMenus()) {
        GMenu* sousMenu = menuGtk(menu);
        const std::string titre(menu.titre.empty() ? menu.titreBarre : menu.titre);
        g_menu_append_submenu(barre, titre.c_str(), G_MENU_MODEL(sousMenu));
        g_object_unref(sousMenu);
    }
    gtk_application_set_menubar(application_.get(), G_MENU_MODEL(barre));
    g_object_unref(barre);
}

void ApplicationGtk::activer() {
    if (controleur_) controleur_->fenetre().devant();
}

void ApplicationGtk::commandeStandard(Commande c) {
    GtkWindow* active = gtk_application_get_active_window(application_.get());
    if (const Edition* e = edition(c)) {
        GtkWidget* focus = active ? gtk_root_get_focus(GTK_ROOT(active)) : nullptr;
        for (GtkWidget* w = focus; w; w = gtk_widget_get_parent(w)) {
            if (WEBKIT_IS_WEB_VIEW(w)) {
                webkit_web_view_execute_editing_command(WEBKIT_WEB_VIEW(w), e->web);
                return;
            }
        }
        if (focus) gtk_widget_activate_action(focus, e->action, nullptr);
        return;
    }
    switch (c) {
        case Commande::aPropos:
            aPropos();
            return;
        case Commande::quitter:
            // Closing the main window closes the others and ends the application.
            if (const auto p = plateforme_ ? plateforme_->fenetrePrincipale() : nullptr) {
                gtk_window_close(p->fenetre());
            } else {
                g_application_quit(G_APPLICATION(application_.get()));
            }
            return;
        case Commande::fermerFenetre:
            if (active) gtk_window_close(active);
            return;
        case Commande::pleinEcran:
            if (!active) return;
            if (gtk_window_is_fullscreen(active)) {
                gtk_window_unfullscreen(active);
            } else {
                gtk_window_fullscreen(active);
            }
            return;
        case Commande::reduire:
            if (active) gtk_window_minimize(active);
            return;
        case Commande::reagrandir:
            if (!active) return;
            if (gtk_window_is_maximized(active)) {
                gtk_window_unmaximize(active);
            } else {
                gtk_window_maximize(active);
            }
            return;
        case Commande::masquer:
        case Commande::masquerAutres:
        case Commande::toutAfficher:
        case Commande::afficherOrthographe:
        case Commande::verifierOrthographe:
        case Commande::orthographeContinue:
        case Commande::grammaire:
        case Commande::correctionAutomatique:
            // macOS's own: WebKit checks spelling as the user types, its suggestions are in
            // the page's context menu.
            return;
        case Commande::annuler:
        case Commande::retablir:
        case Commande::couper:
        case Commande::copier:
        case Commande::coller:
        case Commande::toutSelectionner:
            return;  // handled above
        case Commande::recharger:
        case Commande::rechargerOrigine:
        case Commande::pagePrecedente:
        case Commande::pageSuivante:
        case Commande::accueil:
        case Commande::zoomPlus:
        case Commande::zoomMoins:
        case Commande::zoomReel:
        case Commande::changerEspace:
        case Commande::ouvrirSite:
        case Commande::ouvrirJournal:
        case Commande::imprimer:
        case Commande::rechercher:
        case Commande::rechercherSuivant:
        case Commande::rechercherPrecedent:
            if (controleur_) controleur_->executer(c);
            return;
    }
}

void ApplicationGtk::aPropos() {
    GtkWindow* parent = plateforme_ ? plateforme_->fenetreParente() : nullptr;
    const std::string nom(Marque::nom);
    const std::string version(Marque::version);
    const std::string site(Marque::urlSite);
    gtk_show_about_dialog(
        parent, "program-name", nom.c_str(), "version", version.c_str(), "logo", icone(), "website",
        site.c_str(), "website-label", std::string(Marque::domaineSite).c_str(), "comments",
        "Votre espace Brindex, dans sa propre fenêtre.", "title", "À propos de Brindex", nullptr);
}

}  // namespace brindex::gtk
