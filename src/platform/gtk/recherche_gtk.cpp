#include "recherche_gtk.hpp"

namespace brindex::gtk {

namespace {

RechercheDansPage& de(gpointer donnees) {
    return *static_cast<RechercheDansPage*>(donnees);
}

GtkWidget* bouton(const char* icone, const char* bulle, const char* nom) {
    GtkWidget* b = gtk_button_new_from_icon_name(icone);
    gtk_widget_set_tooltip_text(b, bulle);
    gtk_widget_set_name(b, nom);
    gtk_widget_add_css_class(b, "flat");
    gtk_widget_set_focus_on_click(b, FALSE);
    return b;
}

}  // namespace

BarreRechercheGtk::BarreRechercheGtk(GtkBox* bandeau, std::shared_ptr<RechercheDansPage> recherche)
    : recherche_(std::move(recherche)) {
    barre_ = Ref<GtkWidget>::prendre(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6));
    GtkWidget* barre = barre_.get();
    gtk_widget_set_name(barre, "barre-recherche");
    gtk_widget_add_css_class(barre, "barre-recherche");
    champ_ = gtk_search_entry_new();
    gtk_widget_set_name(champ_, "champ-recherche");
    g_object_set(champ_, "placeholder-text", texteChampRecherche, nullptr);
    gtk_widget_set_size_request(champ_, 280, -1);
    statut_ = gtk_label_new("");
    gtk_widget_set_name(statut_, "statut-recherche");
    gtk_label_set_xalign(GTK_LABEL(statut_), 0.0f);
    GtkWidget* precedent = bouton("go-up-symbolic", texteResultatPrecedent, "recherche-precedent");
    GtkWidget* suivant = bouton("go-down-symbolic", texteResultatSuivant, "recherche-suivant");
    GtkWidget* fermer = bouton("window-close-symbolic", texteFermerRecherche, "recherche-fermer");
    gtk_widget_set_hexpand(statut_, TRUE);
    for (GtkWidget* w : {champ_, precedent, suivant, statut_, fermer}) {
        gtk_box_append(GTK_BOX(barre), w);
    }
    RechercheDansPage* r = recherche_.get();
    g_signal_connect(champ_, "search-changed", G_CALLBACK(+[](GtkSearchEntry* e, gpointer d) {
                         de(d).texteChange(gtk_editable_get_text(GTK_EDITABLE(e)));
                     }),
                     r);
    // The entry's own Ctrl+G and Shift+Ctrl+G, where the menu's don't come first.
    g_signal_connect_swapped(champ_, "next-match", G_CALLBACK(+[](gpointer d) { de(d).suivant(); }),
                             r);
    g_signal_connect_swapped(champ_, "previous-match",
                             G_CALLBACK(+[](gpointer d) { de(d).precedent(); }), r);
    g_signal_connect_swapped(suivant, "clicked", G_CALLBACK(+[](gpointer d) { de(d).suivant(); }),
                             r);
    g_signal_connect_swapped(precedent, "clicked",
                             G_CALLBACK(+[](gpointer d) { de(d).precedent(); }), r);
    g_signal_connect_swapped(fermer, "clicked", G_CALLBACK(+[](gpointer d) { de(d).fermer(); }), r);
    // Return, Shift+Return and Escape before the entry sees them.
    GtkEventController* touches = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(touches, GTK_PHASE_CAPTURE);
    g_signal_connect(touches, "key-pressed", G_CALLBACK(surTouche), r);
    gtk_widget_add_controller(champ_, touches);
    gtk_widget_set_visible(barre, FALSE);
    gtk_box_append(bandeau, barre);
    recherche_->attacher(this);
}

BarreRechercheGtk::~BarreRechercheGtk() {
    recherche_->attacher(nullptr);
    GtkWidget* barre = barre_.get();
    if (GtkWidget* parent = gtk_widget_get_parent(barre)) gtk_box_remove(GTK_BOX(parent), barre);
}

gboolean BarreRechercheGtk::surTouche(GtkEventControllerKey*, guint touche, guint,
                                      GdkModifierType etat, gpointer donnees) {
    if (touche == GDK_KEY_Escape) {
        de(donnees).fermer();
        return TRUE;
    }
    if (touche == GDK_KEY_Return || touche == GDK_KEY_KP_Enter || touche == GDK_KEY_ISO_Enter) {
        if (etat & GDK_SHIFT_MASK) {
            de(donnees).precedent();
        } else {
            de(donnees).suivant();
        }
        return TRUE;
    }
    return FALSE;
}

void BarreRechercheGtk::montrer(bool visible) {
    gtk_widget_set_visible(barre_.get(), visible);
}

void BarreRechercheGtk::focaliserChamp() {
    gtk_widget_grab_focus(champ_);
    gtk_editable_select_region(GTK_EDITABLE(champ_), 0, -1);
}

std::string BarreRechercheGtk::texteChamp() const {
    return gtk_editable_get_text(GTK_EDITABLE(champ_));
}

void BarreRechercheGtk::statut(const std::string& texte, bool echec) {
    gtk_label_set_text(GTK_LABEL(statut_), texte.c_str());
    if (echec) {
        gtk_widget_add_css_class(statut_, "echec");
    } else {
        gtk_widget_remove_css_class(statut_, "echec");
    }
}

}  // namespace brindex::gtk
