#include "impression_gtk.hpp"

#include <gtk/gtkunixprint.h>

#include <memory>

#include "dialogues_gtk.hpp"
#include "outils_gtk.hpp"

namespace brindex::gtk {

namespace {

// The printer and options last chosen, offered again for the next print. Never empty: GTK's
// file printer expects settings to start from.
Ref<GtkPrintSettings>& reglagesImpression() {
    static Ref<GtkPrintSettings> reglages =
        Ref<GtkPrintSettings>::adopter(gtk_print_settings_new());
    return reglages;
}

GtkWidget* listeImprimantes(GtkWidget* racine) {
    if (GTK_IS_COLUMN_VIEW(racine)) return racine;
    for (GtkWidget* e = gtk_widget_get_first_child(racine); e; e = gtk_widget_get_next_sibling(e)) {
        if (GtkWidget* liste = listeImprimantes(e)) return liste;
    }
    return nullptr;
}

// What an open dialog needs. However the dialog goes (answered, or with its window), its
// window is usable again and hears of it once.
struct Dialogue {
    Ref<WebKitWebView> vue;
    std::function<void()> ferme;
    std::function<void(const std::string&)> echec;
    // What waits for the dialog: the window's content.
    std::unique_ptr<VerrouContenu> verrou;

    ~Dialogue() {
        verrou.reset();
        if (ferme) ferme();
    }
};

void imprimer(WebKitWebView* vue, GtkPrintSettings* reglages, GtkPageSetup* page,
              std::function<void(const std::string&)> echec) {
    // WebKit's own dialog would run a loop of its own until it closes: the operation is given
    // what this dialog chose instead.
    WebKitPrintOperation* operation = webkit_print_operation_new(vue);
    webkit_print_operation_set_print_settings(operation, reglages);
    if (page) webkit_print_operation_set_page_setup(operation, page);
    using Echec = std::function<void(const std::string&)>;
    g_signal_connect_data(
        operation, "failed", G_CALLBACK(+[](WebKitPrintOperation*, GError* erreur, gpointer d) {
            if (auto& e = *static_cast<Echec*>(d))
                e(erreur && erreur->message ? erreur->message : "");
        }),
        new Echec(std::move(echec)), [](gpointer d, GClosure*) { delete static_cast<Echec*>(d); },
        GConnectFlags(0));
    // The operation lets itself go once it has finished.
    g_signal_connect(operation, "finished", G_CALLBACK(g_object_unref), nullptr);
    webkit_print_operation_print(operation);
}

}  // namespace

void dialogueImpression(WebKitWebView* vue, const std::string& fichierPdf,
                        std::function<void()> ferme,
                        std::function<void(const std::string&)> echec) {
    GtkRoot* racine = gtk_widget_get_root(GTK_WIDGET(vue));
    GtkWindow* parent = racine && GTK_IS_WINDOW(racine) ? GTK_WINDOW(racine) : nullptr;
    GtkWidget* dialogue = gtk_print_unix_dialog_new("Imprimer", parent);
    auto* d = GTK_PRINT_UNIX_DIALOG(dialogue);
    gtk_print_unix_dialog_set_manual_capabilities(
        d,
        GtkPrintCapabilities(GTK_PRINT_CAPABILITY_NUMBER_UP |
                             GTK_PRINT_CAPABILITY_NUMBER_UP_LAYOUT | GTK_PRINT_CAPABILITY_PAGE_SET |
                             GTK_PRINT_CAPABILITY_REVERSE | GTK_PRINT_CAPABILITY_COPIES |
                             GTK_PRINT_CAPABILITY_COLLATE | GTK_PRINT_CAPABILITY_SCALE));
    // The printer and options of the last print, and this page's own file.
    Ref<GtkPrintSettings> reglages =
        Ref<GtkPrintSettings>::adopter(gtk_print_settings_copy(reglagesImpression().get()));
    if (char* uri = g_filename_to_uri(fichierPdf.c_str(), nullptr, nullptr)) {
        gtk_print_settings_set(reglages.get(), GTK_PRINT_SETTINGS_OUTPUT_URI, uri);
        g_free(uri);
    }
    gtk_print_unix_dialog_set_settings(d, reglages.get());
    gtk_print_unix_dialog_set_embed_page_setup(d, TRUE);
    // Like a sheet: its window waits, the others don't; it goes with its window.
    gtk_window_set_modal(GTK_WINDOW(dialogue), FALSE);
    gtk_window_set_destroy_with_parent(GTK_WINDOW(dialogue), TRUE);
    auto* etat = new Dialogue{Ref<WebKitWebView>::partager(vue), std::move(ferme), std::move(echec),
                              std::make_unique<VerrouContenu>(parent)};
    g_object_set_data_full(G_OBJECT(dialogue), "impression", etat,
                           [](gpointer e) { delete static_cast<Dialogue*>(e); });
    g_signal_connect(
        dialogue, "response", G_CALLBACK(+[](GtkDialog* fenetre, int reponse, gpointer donnees) {
            auto* e = static_cast<Dialogue*>(donnees);
            g_signal_handlers_disconnect_by_data(fenetre, donnees);
            auto* choix = GTK_PRINT_UNIX_DIALOG(fenetre);
            if (reponse == GTK_RESPONSE_OK) {
                reglagesImpression() =
                    Ref<GtkPrintSettings>::adopter(gtk_print_unix_dialog_get_settings(choix));
                imprimer(e->vue.get(), reglagesImpression().get(),
                         gtk_print_unix_dialog_get_page_setup(choix), std::move(e->echec));
            }
            g_object_set_data(G_OBJECT(fenetre), "impression", nullptr);
            // GTK 4.8 unloads the printers after the list that shows them, and tells the
            // dialog, whose list is already gone: it no longer listens.
            if (GtkWidget* liste = listeImprimantes(GTK_WIDGET(fenetre))) {
                g_signal_handlers_disconnect_by_data(
                    gtk_column_view_get_model(GTK_COLUMN_VIEW(liste)), fenetre);
            }
            gtk_window_destroy(GTK_WINDOW(fenetre));
        }),
        etat);
    gtk_window_present(GTK_WINDOW(dialogue));
}

}  // namespace brindex::gtk
