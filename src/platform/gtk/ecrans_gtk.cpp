#include "ecrans_gtk.hpp"

#include <algorithm>
#include <string_view>

#include "screens/disposition.hpp"

namespace brindex::gtk {

namespace {

namespace D = Disposition;

struct Borne {
    int largeur;
    bool exacte;
};

GtkSizeRequestMode modeBorne(GtkWidget*) {
    return GTK_SIZE_REQUEST_HEIGHT_FOR_WIDTH;
}

void mesurerBorne(GtkWidget* boite, GtkOrientation orientation, int pour, int* minimum,
                  int* naturel, int* ligneMin, int* ligneNat) {
    const auto* borne = static_cast<const Borne*>(g_object_get_data(G_OBJECT(boite), "borne"));
    GtkWidget* enfant = gtk_widget_get_first_child(boite);
    *minimum = *naturel = 0;
    *ligneMin = *ligneNat = -1;
    if (!enfant || !borne) return;
    if (orientation == GTK_ORIENTATION_HORIZONTAL) {
        int min = 0;
        int nat = 0;
        gtk_widget_measure(enfant, orientation, -1, &min, &nat, nullptr, nullptr);
        if (borne->exacte) {
            *minimum = *naturel = std::max(borne->largeur, min);
        } else {
            *naturel = std::min(nat, borne->largeur);
            *minimum = std::min(min, *naturel);
        }
        return;
    }
    if (pour < 0) {
        int nat = 0;
        gtk_widget_measure(enfant, GTK_ORIENTATION_HORIZONTAL, -1, nullptr, &nat, nullptr, nullptr);
        pour = borne->exacte ? borne->largeur : std::min(nat, borne->largeur);
    }
    gtk_widget_measure(enfant, orientation, pour, minimum, naturel, nullptr, nullptr);
}

void allouerBorne(GtkWidget* boite, int largeur, int hauteur, int ligne) {
    if (GtkWidget* enfant = gtk_widget_get_first_child(boite)) {
        gtk_widget_allocate(enfant, largeur, hauteur, ligne, nullptr);
    }
}

GtkWidget* etiquette(const D::Texte& modele, const char* classe, std::string_view texte,
                     bool largeurExacte = true) {
    GtkWidget* label = gtk_label_new(std::string(texte).c_str());
    gtk_widget_add_css_class(label, classe);
    if (modele.centre) {
        gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
        gtk_label_set_xalign(GTK_LABEL(label), 0.5f);
    }
    if (!modele.largeur) return label;
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD);
    return largeurBornee(label, static_cast<int>(*modele.largeur), largeurExacte);
}

GtkWidget* bouton(const D::Bouton& modele, const char* nom) {
    GtkWidget* b = gtk_button_new_with_label(std::string(modele.titre).c_str());
    gtk_widget_set_name(b, nom);
    gtk_widget_add_css_class(b, modele.taille == D::TailleControle::grande ? "grand" : "normal");
    if (modele.parDefaut) gtk_widget_add_css_class(b, "defaut");
    return b;
}

// The space below an item of a column; a hidden item takes its space away with it.
void espaceSous(GtkWidget* element, double espace) {
    gtk_widget_set_margin_bottom(element, static_cast<int>(espace));
}

// A column centred in the screen, its centre `decalage` pixels above the screen's.
GtkWidget* ecranCentre(GtkWidget* colonne, double decalage) {
    GtkWidget* ecran = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_add_css_class(ecran, "ecran");
    gtk_widget_set_hexpand(ecran, TRUE);
    gtk_widget_set_vexpand(ecran, TRUE);
    gtk_widget_set_halign(colonne, GTK_ALIGN_CENTER);
    gtk_widget_set_valign(colonne, GTK_ALIGN_CENTER);
    gtk_widget_set_vexpand(colonne, TRUE);
    gtk_widget_set_margin_bottom(colonne, static_cast<int>(2 * decalage));
    gtk_box_append(GTK_BOX(ecran), colonne);
    return ecran;
}

// Return anywhere in the screen runs `action`, before the focused widget sees the key.
void toucheEntree(GtkWidget* ecran, GtkShortcutFunc action, gpointer donnees) {
    GtkEventController* controleur = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(controleur, GTK_PHASE_CAPTURE);
    GtkShortcutTrigger* touches = gtk_alternative_trigger_new(
        gtk_keyval_trigger_new(GDK_KEY_Return, GdkModifierType(0)),
        gtk_alternative_trigger_new(gtk_keyval_trigger_new(GDK_KEY_KP_Enter, GdkModifierType(0)),
                                    gtk_keyval_trigger_new(GDK_KEY_ISO_Enter, GdkModifierType(0))));
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(controleur),
        gtk_shortcut_new(touches, gtk_callback_action_new(action, donnees, nullptr)));
    gtk_widget_add_controller(ecran, controleur);
}

// The Return shortcut points at its screen object; the widgets may outlive that object for a
// moment, so the shortcut goes with it.
void retirerRaccourcis(GtkWidget* racine) {
    if (!racine) return;
    GListModel* controleurs = gtk_widget_observe_controllers(racine);
    for (guint i = g_list_model_get_n_items(controleurs); i-- > 0;) {
        auto* c = static_cast<GtkEventController*>(g_list_model_get_item(controleurs, i));
        if (GTK_IS_SHORTCUT_CONTROLLER(c)) gtk_widget_remove_controller(racine, c);
        g_object_unref(c);
    }
    g_object_unref(controleurs);
}

}  // namespace

GtkWidget* largeurBornee(GtkWidget* enfant, int largeur, bool exacte) {
    GtkWidget* boite = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    g_object_set_data_full(G_OBJECT(boite), "borne", new Borne{largeur, exacte},
                           [](gpointer p) { delete static_cast<Borne*>(p); });
    gtk_widget_set_layout_manager(boite,
                                  gtk_custom_layout_new(modeBorne, mesurerBorne, allouerBorne));
    gtk_box_append(GTK_BOX(boite), enfant);
    return boite;
}

// ---- Configuration ----

EcranConfiguration::EcranConfiguration(std::shared_ptr<VueConfiguration> vue)
    : vue_(std::move(vue)) {
    namespace C = D::Configuration;

    GtkWidget* logo = gtk_image_new_from_paintable(icone());
    gtk_image_set_pixel_size(GTK_IMAGE(logo), static_cast<int>(C::cote));
    gtk_widget_set_size_request(logo, static_cast<int>(C::cote), static_cast<int>(C::cote));
    espaceSous(logo, C::sousLogo);

    GtkWidget* titre = etiquette(C::titre, "titre", C::titre.texte);
    espaceSous(titre, C::sousTitre);
    GtkWidget* intro = etiquette(C::intro, "intro", C::intro.texte);
    espaceSous(intro, C::sousIntro);

    champ_ = gtk_entry_new();
    gtk_widget_set_name(champ_, "champ");
    gtk_widget_add_css_class(champ_, "champ");
    gtk_widget_set_size_request(champ_, static_cast<int>(C::largeurChamp), -1);
    const std::string exemple = std::string(C::prefixeExemple) + std::string(Marque::hoteExemple);
    gtk_entry_set_placeholder_text(GTK_ENTRY(champ_), exemple.c_str());
    gtk_entry_set_input_purpose(GTK_ENTRY(champ_), GTK_INPUT_PURPOSE_URL);
    bouton_ = bouton(C::connexion, "bouton");
    gtk_widget_add_css_class(bouton_, "connexion");
    GtkWidget* ligneSaisie =
        gtk_box_new(GTK_ORIENTATION_HORIZONTAL, static_cast<int>(C::espacementSaisie));
    gtk_box_append(GTK_BOX(ligneSaisie), champ_);
    gtk_box_append(GTK_BOX(ligneSaisie), bouton_);

    // The label's leading edge lines up with the entry row's: both sit in one block.
    GtkWidget* libelle = etiquette(C::libelle, "libelle", C::libelle.texte);
    gtk_widget_set_halign(libelle, GTK_ALIGN_START);
    espaceSous(libelle, C::sousLibelle);
    GtkWidget* blocSaisie = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(blocSaisie), libelle);
    gtk_box_append(GTK_BOX(blocSaisie), ligneSaisie);
    espaceSous(blocSaisie, C::sousSaisie);

    roue_ = gtk_spinner_new();
    gtk_widget_set_name(roue_, "roue");
    gtk_widget_set_size_request(roue_, 16, 16);
    gtk_widget_set_valign(roue_, GTK_ALIGN_CENTER);
    GtkWidget* message = gtk_label_new("");
    message_ = message;
    gtk_widget_set_name(message_, "messageErreur");
    gtk_widget_add_css_class(message_, "message");
    gtk_label_set_justify(GTK_LABEL(message_), GTK_JUSTIFY_CENTER);
    gtk_label_set_wrap(GTK_LABEL(message_), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(message_), PANGO_WRAP_WORD);
    gtk_label_set_lines(GTK_LABEL(message_), C::lignesMessage);
    gtk_label_set_ellipsize(GTK_LABEL(message_), PANGO_ELLIPSIZE_END);
    styleMessage_ = Ref<GtkCssProvider>::adopter(gtk_css_provider_new());
    gtk_style_context_add_provider(gtk_widget_get_style_context(message_),
                                   GTK_STYLE_PROVIDER(styleMessage_.get()),
                                   GTK_STYLE_PROVIDER_PRIORITY_APPLICATION + 1);
    GtkWidget* ligneEtat =
        gtk_box_new(GTK_ORIENTATION_HORIZONTAL, static_cast<int>(D::Configuration::espacementEtat));
    gtk_widget_set_halign(ligneEtat, GTK_ALIGN_CENTER);
    gtk_box_append(GTK_BOX(ligneEtat), roue_);
    gtk_box_append(GTK_BOX(ligneEtat),
                   largeurBornee(message, static_cast<int>(*C::message.largeur), false));
    espaceSous(ligneEtat, C::sousEtat);

    forcer_ = bouton(C::forcer, "boutonForcer");
    gtk_widget_set_halign(forcer_, GTK_ALIGN_CENTER);
    espaceSous(forcer_, D::espacementColonne);

    const std::string aide = std::string(C::aide) + std::string(Marque::domaineSite);
    GtkWidget* texteAide = etiquette(C::texteAide, "aide", aide);

    GtkWidget* pile = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (GtkWidget* element : {logo, titre, intro, blocSaisie, ligneEtat, forcer_, texteAide}) {
        gtk_widget_set_halign(element, GTK_ALIGN_CENTER);
        gtk_box_append(GTK_BOX(pile), element);
    }
    racine_ = Ref<GtkWidget>::prendre(ecranCentre(pile, C::decalageVertical));

    g_signal_connect(champ_, "changed", G_CALLBACK(surModification), this);
    g_signal_connect(champ_, "activate", G_CALLBACK(surValider), this);
    g_signal_connect(bouton_, "clicked", G_CALLBACK(surValider), this);
    g_signal_connect(forcer_, "clicked", G_CALLBACK(surForcer), this);
    toucheEntree(
        racine_.get(),
        [](GtkWidget*, GVariant*, gpointer donnees) -> gboolean {
            auto* ecran = static_cast<EcranConfiguration*>(donnees);
            // A disabled button doesn't answer its key.
            if (gtk_widget_get_sensitive(ecran->bouton_)) surValider(nullptr, donnees);
            return TRUE;
        },
        this);
}

EcranConfiguration::~EcranConfiguration() {
    for (GtkWidget* w : {champ_, bouton_, forcer_}) g_signal_handlers_disconnect_by_data(w, this);
    retirerRaccourcis(racine_.get());
}

void EcranConfiguration::surModification(GtkEditable*, gpointer donnees) {
    auto* ecran = static_cast<EcranConfiguration*>(donnees);
    if (ecran->ecritureInterne_) return;
    const auto vue = ecran->vue_;
    vue->texteModifie();
}

void EcranConfiguration::surValider(GtkWidget*, gpointer donnees) {
    // The view may replace this screen while it runs: hold it for the call.
    const auto vue = static_cast<EcranConfiguration*>(donnees)->vue_;
    vue->valider();
}

void EcranConfiguration::surForcer(GtkButton*, gpointer donnees) {
    const auto vue = static_cast<EcranConfiguration*>(donnees)->vue_;
    vue->forcer();
}

std::string EcranConfiguration::texteChamp() const {
    return gtk_editable_get_text(GTK_EDITABLE(champ_));
}

void EcranConfiguration::definirTexteChamp(const std::string& texte) {
    ecritureInterne_ = true;
    gtk_editable_set_text(GTK_EDITABLE(champ_), texte.c_str());
    gtk_editable_set_position(GTK_EDITABLE(champ_), -1);
    ecritureInterne_ = false;
}

void EcranConfiguration::activerChamp(bool actif) {
    gtk_widget_set_sensitive(champ_, actif);
}

void EcranConfiguration::activerBouton(bool actif) {
    gtk_widget_set_sensitive(bouton_, actif);
}

void EcranConfiguration::tournerRoue(bool enMarche) {
    gtk_spinner_set_spinning(GTK_SPINNER(roue_), enMarche);
    // Stopped, it keeps its place but isn't drawn.
    gtk_widget_set_opacity(roue_, enMarche ? 1.0 : 0.0);
}

void EcranConfiguration::couleurMessage(const Couleur& couleur) {
    couleur_ = couleur;
    const std::string regle = "label{color:" + css(couleur) + ";}";
    gtk_css_provider_load_from_data(styleMessage_.get(), regle.c_str(), -1);
}

void EcranConfiguration::texteMessage(const std::string& texte) {
    gtk_label_set_text(GTK_LABEL(message_), texte.c_str());
}

void EcranConfiguration::montrerForcer(bool visible) {
    gtk_widget_set_visible(forcer_, visible);
}

void EcranConfiguration::focaliserChamp() {
    gtk_widget_grab_focus(champ_);
}

// ---- Error ----

EcranErreur::EcranErreur(std::shared_ptr<VueErreur> vue) : vue_(std::move(vue)) {
    namespace E = D::Erreur;
    GtkWidget* signe = etiquette(E::signe, "signe", E::signe.texte);
    espaceSous(signe, D::espacementColonne);
    GtkWidget* titre = etiquette(E::titre, "titre-erreur", vue_->titre());
    gtk_widget_set_name(titre, "titre-erreur");
    espaceSous(titre, D::espacementColonne);
    GtkWidget* explication = etiquette(E::explication, "explication", vue_->detail());
    gtk_widget_set_name(explication, "explication");
    espaceSous(explication, E::sousExplication);

    changer_ = bouton(E::changer, "changerAdresse");
    reessayer_ = bouton(E::reessayer, "reessayer");
    GtkWidget* boutons =
        gtk_box_new(GTK_ORIENTATION_HORIZONTAL, static_cast<int>(E::espacementBoutons));
    gtk_box_append(GTK_BOX(boutons), changer_);
    gtk_box_append(GTK_BOX(boutons), reessayer_);

    GtkWidget* colonne = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (GtkWidget* element : {signe, titre, explication, boutons}) {
        gtk_widget_set_halign(element, GTK_ALIGN_CENTER);
        gtk_box_append(GTK_BOX(colonne), element);
    }
    racine_ = Ref<GtkWidget>::prendre(ecranCentre(colonne, E::decalageVertical));

    g_signal_connect(reessayer_, "clicked", G_CALLBACK(surReessayer), this);
    g_signal_connect(changer_, "clicked", G_CALLBACK(surChanger), this);
    toucheEntree(
        racine_.get(),
        [](GtkWidget*, GVariant*, gpointer donnees) -> gboolean {
            surReessayer(nullptr, donnees);
            return TRUE;
        },
        this);
}

EcranErreur::~EcranErreur() {
    for (GtkWidget* w : {reessayer_, changer_}) g_signal_handlers_disconnect_by_data(w, this);
    retirerRaccourcis(racine_.get());
}

void EcranErreur::surReessayer(GtkWidget*, gpointer donnees) {
    // Retrying replaces this screen while the call runs.
    const auto vue = static_cast<EcranErreur*>(donnees)->vue_;
    vue->reessayer();
}

void EcranErreur::surChanger(GtkButton*, gpointer donnees) {
    const auto vue = static_cast<EcranErreur*>(donnees)->vue_;
    vue->changer();
}

}  // namespace brindex::gtk
