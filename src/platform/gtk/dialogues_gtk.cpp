#include "dialogues_gtk.hpp"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "brand/marque.hpp"
#include "outils_gtk.hpp"

namespace brindex::gtk {

namespace {
constexpr const char* cleVerrous = "brindex-verrous";
}  // namespace

VerrouContenu::VerrouContenu(GtkWindow* fenetre)
    : contenu_(Ref<GtkWidget>::partager(fenetre ? gtk_window_get_child(fenetre) : nullptr)) {
    if (!contenu_) return;
    GObject* objet = G_OBJECT(contenu_.get());
    const int verrous = GPOINTER_TO_INT(g_object_get_data(objet, cleVerrous));
    g_object_set_data(objet, cleVerrous, GINT_TO_POINTER(verrous + 1));
    gtk_widget_set_sensitive(contenu_.get(), FALSE);
}

VerrouContenu::~VerrouContenu() {
    if (!contenu_) return;
    GObject* objet = G_OBJECT(contenu_.get());
    const int verrous = GPOINTER_TO_INT(g_object_get_data(objet, cleVerrous)) - 1;
    g_object_set_data(objet, cleVerrous, GINT_TO_POINTER(verrous > 0 ? verrous : 0));
    if (verrous <= 0) gtk_widget_set_sensitive(contenu_.get(), TRUE);
}

namespace {

// What an open alert needs until it closes.
struct EtatAlerte {
    std::function<void(ReponseAlerte)> reponse;
    GtkWidget* champ = nullptr;
    std::vector<GtkWidget*> champs;
    GtkWidget* caseACocher = nullptr;
    bool modifie = false;
    bool repondu = false;

    void repondre(std::size_t bouton) {
        if (repondu) return;
        repondu = true;
        ReponseAlerte r;
        r.bouton = bouton;
        if (champ) r.champ = gtk_editable_get_text(GTK_EDITABLE(champ));
        r.champModifie = modifie;
        for (GtkWidget* c : champs) r.champs.emplace_back(gtk_editable_get_text(GTK_EDITABLE(c)));
        r.caseCochee = caseACocher && gtk_check_button_get_active(GTK_CHECK_BUTTON(caseACocher));
        // Moved out first: the answer may open another alert or close this one's owner.
        auto rappel = std::move(reponse);
        if (rappel) rappel(std::move(r));
    }
};

EtatAlerte* etatDe(GtkWidget* fenetre) {
    return static_cast<EtatAlerte*>(g_object_get_data(G_OBJECT(fenetre), "etat-alerte"));
}

void surBouton(GtkButton* bouton, gpointer fenetre) {
    const auto index = static_cast<std::size_t>(
        GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(bouton), "index-bouton")));
    // Closed first, so that an alert the answer opens is not stacked under this one.
    g_object_ref(fenetre);
    gtk_widget_set_visible(GTK_WIDGET(fenetre), FALSE);
    if (EtatAlerte* etat = etatDe(GTK_WIDGET(fenetre))) etat->repondre(index);
    gtk_window_destroy(GTK_WINDOW(fenetre));
    g_object_unref(fenetre);
}

gboolean surFermeture(GtkWindow* fenetre, gpointer) {
    if (EtatAlerte* etat = etatDe(GTK_WIDGET(fenetre))) etat->repondre(ReponseAlerte::aucunBouton);
    return FALSE;
}

GtkWidget* etiquette(const std::string& texte, const char* classe) {
    GtkWidget* label = gtk_label_new(texte.c_str());
    if (classe) gtk_widget_add_css_class(label, classe);
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(label), 48);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0f);
    return label;
}

}  // namespace

void montrerAlerte(GtkWindow* parent, const Alerte& alerte,
                   std::function<void(ReponseAlerte)> reponse, Modalite modalite) {
    GtkWidget* fenetre = gtk_window_new();
    gtk_widget_add_css_class(fenetre, "alerte");
    gtk_window_set_title(GTK_WINDOW(fenetre), std::string(Marque::nom).c_str());
    const bool feuille = modalite == Modalite::feuille && parent;
    gtk_window_set_modal(GTK_WINDOW(fenetre), !feuille);
    gtk_window_set_resizable(GTK_WINDOW(fenetre), FALSE);
    if (parent) {
        gtk_window_set_transient_for(GTK_WINDOW(fenetre), parent);
        gtk_window_set_destroy_with_parent(GTK_WINDOW(fenetre), TRUE);
        if (GtkApplication* app = gtk_window_get_application(parent)) {
            gtk_window_set_application(GTK_WINDOW(fenetre), app);
        }
    }

    // A sheet blocks only its window's content, until it closes.
    if (feuille) {
        reponse = [suite = std::move(reponse),
                   verrou = std::make_shared<VerrouContenu>(parent)](ReponseAlerte r) mutable {
            verrou.reset();
            if (suite) suite(std::move(r));
        };
    }
    auto* etat = new EtatAlerte{};
    etat->reponse = std::move(reponse);
    // The state dies with the window; if the window goes without an answer, it still answers.
    g_object_set_data_full(G_OBJECT(fenetre), "etat-alerte", etat, [](gpointer p) {
        auto* e = static_cast<EtatAlerte*>(p);
        e->champ = nullptr;
        e->champs.clear();
        e->caseACocher = nullptr;
        e->repondre(ReponseAlerte::aucunBouton);
        delete e;
    });

    GtkWidget* colonne = gtk_box_new(GTK_ORIENTATION_VERTICAL, 10);
    gtk_widget_set_margin_top(colonne, 20);
    gtk_widget_set_margin_bottom(colonne, 16);
    gtk_widget_set_margin_start(colonne, 20);
    gtk_widget_set_margin_end(colonne, 20);
    gtk_widget_set_size_request(colonne, 340, -1);
    GtkWidget* titre = etiquette(alerte.message, "alerte-titre");
    gtk_widget_set_name(titre, "titre-alerte");
    gtk_box_append(GTK_BOX(colonne), titre);
    if (!alerte.informatif.empty()) {
        GtkWidget* texte = etiquette(alerte.informatif, nullptr);
        gtk_widget_set_name(texte, "texte-alerte");
        gtk_box_append(GTK_BOX(colonne), texte);
    }
    if (alerte.champ) {
        etat->champ = gtk_entry_new();
        gtk_widget_set_name(etat->champ, "champ-dialogue");
        gtk_editable_set_text(GTK_EDITABLE(etat->champ), alerte.champ->c_str());
        // Only the user's edits count: the entry can't hold every text a page may give.
        g_signal_connect(etat->champ, "changed", G_CALLBACK(+[](GtkEditable*, gpointer e) {
                             static_cast<EtatAlerte*>(e)->modifie = true;
                         }),
                         etat);
        gtk_widget_set_size_request(etat->champ, static_cast<int>(alerte.largeurChamp),
                                    static_cast<int>(alerte.hauteurChamp));
        gtk_widget_set_halign(etat->champ, GTK_ALIGN_START);
        gtk_entry_set_activates_default(GTK_ENTRY(etat->champ), TRUE);
        gtk_box_append(GTK_BOX(colonne), etat->champ);
    }
    if (!alerte.champs.empty()) {
        GtkWidget* grille = gtk_grid_new();
        gtk_grid_set_row_spacing(GTK_GRID(grille), 6);
        gtk_grid_set_column_spacing(GTK_GRID(grille), 10);
        for (std::size_t i = 0; i < alerte.champs.size(); ++i) {
            const ChampAlerte& c = alerte.champs[i];
            GtkWidget* libelle = gtk_label_new(c.libelle.c_str());
            gtk_label_set_xalign(GTK_LABEL(libelle), 1.0f);
            GtkWidget* entree = c.secret ? gtk_password_entry_new() : gtk_entry_new();
            const std::string nom = "champ-" + std::to_string(i);
            gtk_widget_set_name(entree, nom.c_str());
            gtk_editable_set_text(GTK_EDITABLE(entree), c.texte.c_str());
            gtk_widget_set_hexpand(entree, TRUE);
            if (GTK_IS_ENTRY(entree)) gtk_entry_set_activates_default(GTK_ENTRY(entree), TRUE);
            if (GTK_IS_PASSWORD_ENTRY(entree)) {
                gtk_password_entry_set_show_peek_icon(GTK_PASSWORD_ENTRY(entree), TRUE);
                g_object_set(entree, "activates-default", TRUE, nullptr);
            }
            gtk_grid_attach(GTK_GRID(grille), libelle, 0, static_cast<int>(i), 1, 1);
            gtk_grid_attach(GTK_GRID(grille), entree, 1, static_cast<int>(i), 1, 1);
            etat->champs.push_back(entree);
        }
        gtk_box_append(GTK_BOX(colonne), grille);
    }
    if (alerte.caseACocher) {
        etat->caseACocher = gtk_check_button_new_with_label(alerte.caseACocher->c_str());
        gtk_widget_set_name(etat->caseACocher, "case-alerte");
        gtk_box_append(GTK_BOX(colonne), etat->caseACocher);
    }

    // Rightmost first; the default button is the one Return presses.
    GtkWidget* rangee = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
    GtkWidget* defaut = nullptr;
    GtkWidget* echap = nullptr;
    gtk_widget_set_halign(rangee, GTK_ALIGN_END);
    gtk_widget_set_margin_top(rangee, 8);
    for (std::size_t i = alerte.boutons.size(); i-- > 0;) {
        GtkWidget* b = gtk_button_new_with_label(alerte.boutons[i].c_str());
        const std::string nom = "bouton-" + std::to_string(i);
        gtk_widget_set_name(b, nom.c_str());
        g_object_set_data(G_OBJECT(b), "index-bouton", GSIZE_TO_POINTER(i));
        g_signal_connect(b, "clicked", G_CALLBACK(surBouton), fenetre);
        gtk_box_append(GTK_BOX(rangee), b);
        if (i == alerte.boutonParDefaut) {
            gtk_widget_add_css_class(b, "suggested-action");
            defaut = b;
        }
        if (alerte.boutonEchap == i) echap = b;
    }
    gtk_box_append(GTK_BOX(colonne), rangee);
    gtk_window_set_child(GTK_WINDOW(fenetre), colonne);
    // Only a widget already in the window can be its default or take its focus: set earlier,
    // the focus went to the leftmost button, and Return answered "Annuler".
    gtk_window_set_default_widget(GTK_WINDOW(fenetre), defaut);
    GtkWidget* focus = etat->champ             ? etat->champ
                       : !etat->champs.empty() ? etat->champs.front()
                                               : defaut;
    gtk_window_set_focus(GTK_WINDOW(fenetre), focus);
    g_signal_connect(fenetre, "close-request", G_CALLBACK(surFermeture), nullptr);

    // Escape presses its button, or dismisses the alert.
    GtkEventController* touches = gtk_shortcut_controller_new();
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(touches),
        gtk_shortcut_new(gtk_keyval_trigger_new(GDK_KEY_Escape, GdkModifierType(0)),
                         echap ? gtk_callback_action_new(
                                     [](GtkWidget*, GVariant*, gpointer b) -> gboolean {
                                         g_signal_emit_by_name(b, "clicked");
                                         return TRUE;
                                     },
                                     echap, nullptr)
                               : gtk_named_action_new("window.close")));
    gtk_widget_add_controller(fenetre, touches);

    gtk_window_present(GTK_WINDOW(fenetre));
}

void choisirFichiers(GtkWindow* parent, const DemandeFichiers& demande,
                     std::function<void(FichiersChoisis)> reponse) {
    const GtkFileChooserAction action = demande.dossiers && !demande.fichiers
                                            ? GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER
                                            : GTK_FILE_CHOOSER_ACTION_OPEN;
    GtkFileChooserNative* selecteur = gtk_file_chooser_native_new(
        std::string(Marque::nom).c_str(), parent, action, "Ouvrir", "Annuler");
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(selecteur), FALSE);
    gtk_file_chooser_set_select_multiple(GTK_FILE_CHOOSER(selecteur), demande.plusieurs);
    gtk_file_chooser_set_create_folders(GTK_FILE_CHOOSER(selecteur), demande.creerDossiers);

    using Rappel = std::function<void(FichiersChoisis)>;
    auto* rappel = new Rappel(std::move(reponse));
    g_signal_connect_data(
        selecteur, "response",
        G_CALLBACK(+[](GtkNativeDialog* dialogue, int code, gpointer donnees) {
            auto* r = static_cast<Rappel*>(donnees);
            FichiersChoisis choisis;
            if (code == GTK_RESPONSE_ACCEPT) {
                std::vector<std::string> chemins;
                GListModel* fichiers = gtk_file_chooser_get_files(GTK_FILE_CHOOSER(dialogue));
                for (guint i = 0; i < g_list_model_get_n_items(fichiers); ++i) {
                    auto* fichier = static_cast<GFile*>(g_list_model_get_item(fichiers, i));
                    if (char* chemin = g_file_get_path(fichier)) {
                        chemins.emplace_back(chemin);
                        g_free(chemin);
                    }
                    g_object_unref(fichier);
                }
                g_object_unref(fichiers);
                choisis = std::move(chemins);
            }
            auto fin = std::move(*r);
            // The dialog is released before the page hears back.
            g_object_unref(dialogue);
            if (fin) fin(std::move(choisis));
        }),
        rappel, [](gpointer donnees, GClosure*) { delete static_cast<Rappel*>(donnees); },
        GConnectFlags(0));
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(selecteur));
}

}  // namespace brindex::gtk
