#include "fenetres_gtk.hpp"

#include <charconv>
#include <string>

#include "container/connexion.hpp"
#include "dialogues_gtk.hpp"

namespace brindex::gtk {

namespace {

// Takes a widget out of whatever box it was in, for another screen to hold.
void detacherDeSaBoite(GtkWidget* widget) {
    if (GtkWidget* parent = gtk_widget_get_parent(widget); parent && GTK_IS_BOX(parent)) {
        gtk_box_remove(GTK_BOX(parent), widget);
    }
}

// The space screen: the window's strip of bars, then the web view under a thin progress bar.
class EcranEspace : public Ecran {
  public:
    EcranEspace(GtkWidget* webView, GtkWidget* barre, GtkWidget* bandeau) {
        GtkWidget* colonne = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
        gtk_widget_add_css_class(colonne, "ecran");
        detacherDeSaBoite(bandeau);
        gtk_box_append(GTK_BOX(colonne), bandeau);
        GtkWidget* superposition = gtk_overlay_new();
        gtk_widget_set_vexpand(superposition, TRUE);
        if (GtkWidget* parent = gtk_widget_get_parent(webView)) {
            // A view can only have one parent; a previous screen may still hold it.
            if (GTK_IS_OVERLAY(parent)) gtk_overlay_set_child(GTK_OVERLAY(parent), nullptr);
        }
        gtk_overlay_set_child(GTK_OVERLAY(superposition), webView);
        gtk_widget_set_valign(barre, GTK_ALIGN_START);
        gtk_widget_set_halign(barre, GTK_ALIGN_FILL);
        gtk_overlay_add_overlay(GTK_OVERLAY(superposition), barre);
        gtk_box_append(GTK_BOX(colonne), superposition);
        racine_ = Ref<GtkWidget>::prendre(colonne);
        focus_ = webView;
    }
    GtkWidget* focusInitial() const override { return focus_; }

  private:
    GtkWidget* focus_;
};

std::optional<int> entier(const std::optional<std::string>& texte) {
    if (!texte) return std::nullopt;
    int valeur = 0;
    const auto fin = texte->data() + texte->size();
    const auto [p, e] = std::from_chars(texte->data(), fin, valeur);
    if (e != std::errc() || p != fin) return std::nullopt;
    return valeur;
}

}  // namespace

// ---- Every window ----

template <typename Interface>
FenetreGtk<Interface>::FenetreGtk(GtkApplication* application, const ParametresFenetre& parametres,
                                  std::function<void()> vaFermer)
    : vaFermer_(std::move(vaFermer)) {
    installerStyle();
    fenetre_ = Ref<GtkWidget>::prendre(gtk_application_window_new(application));
    GtkWindow* f = fenetre();
    gtk_application_window_set_show_menubar(GTK_APPLICATION_WINDOW(f), TRUE);
    gtk_window_set_default_size(f, static_cast<int>(parametres.largeur),
                                static_cast<int>(parametres.hauteur));
    gtk_widget_set_size_request(GTK_WIDGET(f), static_cast<int>(parametres.largeurMin),
                                static_cast<int>(parametres.hauteurMin));
    gtk_window_set_title(f, parametres.titre.c_str());
    gtk_widget_add_css_class(GTK_WIDGET(f), "brindex");
    bandeau_ = Ref<GtkWidget>::prendre(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0));
    gtk_widget_set_name(bandeau_.get(), "bandeau");
    g_signal_connect(f, "close-request", G_CALLBACK(surDemandeFermeture), this);
    g_signal_connect(f, "destroy", G_CALLBACK(+[](GtkWidget*, gpointer donnees) {
                         static_cast<FenetreGtk*>(donnees)->detruite_ = true;
                     }),
                     this);
}

template <typename Interface>
FenetreGtk<Interface>::~FenetreGtk() {
    g_signal_handlers_disconnect_by_data(fenetre_.get(), this);
    // Let go by the program rather than closed by the user: the window goes with its object.
    if (!detruite_) gtk_window_destroy(fenetre());
}

template <typename Interface>
gboolean FenetreGtk<Interface>::surDemandeFermeture(GtkWindow*, gpointer donnees) {
    auto* soi = static_cast<FenetreGtk*>(donnees);
    // Held while the pages are asked; the controller closes the window once they agreed.
    if (auto retenue = soi->retenue_; retenue && !retenue()) return TRUE;
    soi->avantFermeture();
    // The callback may release this object: it runs from a copy, last.
    if (auto rappel = soi->vaFermer_) rappel();
    return FALSE;
}

template <typename Interface>
void FenetreGtk<Interface>::definirTitre(const std::string& titre) {
    gtk_window_set_title(fenetre(), titre.c_str());
}

template <typename Interface>
bool FenetreGtk<Interface>::estCle() const {
    return gtk_window_is_active(fenetre());
}

template <typename Interface>
void FenetreGtk<Interface>::devant() {
    gtk_window_present(fenetre());
}

template <typename Interface>
void FenetreGtk<Interface>::fermer() {
    gtk_window_close(fenetre());
}

template <typename Interface>
void FenetreGtk<Interface>::feuille(const Alerte& alerte,
                                    std::function<void(ReponseAlerte)> reponse) {
    montrerAlerte(fenetre(), alerte, std::move(reponse), Modalite::feuille);
}

template <typename Interface>
void FenetreGtk<Interface>::barreConnexion(const std::optional<std::string>& texte,
                                           std::function<void()> annuler) {
    annulerConnexion_ = std::move(annuler);
    if (!texte) {
        if (barreConnexion_) gtk_box_remove(bandeau(), barreConnexion_);
        barreConnexion_ = nullptr;
        return;
    }
    if (!barreConnexion_) {
        barreConnexion_ = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
        gtk_widget_set_name(barreConnexion_, "barre-connexion");
        gtk_widget_add_css_class(barreConnexion_, "barre-connexion");
        GtkWidget* libelle = gtk_label_new(nullptr);
        gtk_widget_set_name(libelle, "texte-connexion");
        gtk_widget_set_hexpand(libelle, TRUE);
        gtk_label_set_xalign(GTK_LABEL(libelle), 0.0f);
        gtk_label_set_ellipsize(GTK_LABEL(libelle), PANGO_ELLIPSIZE_END);
        GtkWidget* bouton = gtk_button_new_with_label(boutonBarreConnexion);
        gtk_widget_set_name(bouton, "annuler-connexion");
        g_signal_connect(bouton, "clicked", G_CALLBACK(+[](GtkButton*, gpointer donnees) {
                             auto* soi = static_cast<FenetreGtk*>(donnees);
                             if (auto rappel = soi->annulerConnexion_) rappel();
                         }),
                         this);
        gtk_box_append(GTK_BOX(barreConnexion_), libelle);
        gtk_box_append(GTK_BOX(barreConnexion_), bouton);
        gtk_box_append(bandeau(), barreConnexion_);
    }
    gtk_label_set_text(GTK_LABEL(gtk_widget_get_first_child(barreConnexion_)), texte->c_str());
}

template <typename Interface>
void FenetreGtk<Interface>::attacherRecherche(std::shared_ptr<RechercheDansPage> recherche) {
    recherche_ = std::make_unique<BarreRechercheGtk>(bandeau(), std::move(recherche));
}

template class FenetreGtk<FenetrePrincipale>;
template class FenetreGtk<Fenetre>;

// ---- The main window ----

FenetrePrincipaleGtk::FenetrePrincipaleGtk(GtkApplication* application,
                                           const ParametresFenetre& parametres,
                                           std::function<void()> vaFermer, Reglages& reglages)
    : FenetreGtk(application, parametres, std::move(vaFermer)),
      reglages_(reglages),
      nomSauvegarde_(parametres.nomSauvegarde) {
    if (!nomSauvegarde_.empty()) {
        const auto largeur = entier(reglages_.lire(nomSauvegarde_ + "Largeur"));
        const auto hauteur = entier(reglages_.lire(nomSauvegarde_ + "Hauteur"));
        if (largeur && hauteur && *largeur >= parametres.largeurMin &&
            *hauteur >= parametres.hauteurMin && *largeur <= 16384 && *hauteur <= 16384) {
            gtk_window_set_default_size(fenetre(), *largeur, *hauteur);
        }
        if (reglages_.lire(nomSauvegarde_ + "Agrandie") == std::optional<std::string>("1")) {
            gtk_window_maximize(fenetre());
        }
    }
    barre_ = gtk_progress_bar_new();
    g_object_ref_sink(barre_);
    gtk_widget_set_name(barre_, "barreProgression");
    gtk_widget_add_css_class(barre_, "chargement");
    gtk_widget_set_visible(barre_, FALSE);
}

FenetrePrincipaleGtk::~FenetrePrincipaleGtk() {
    g_object_unref(barre_);
}

void FenetrePrincipaleGtk::avantFermeture() {
    if (nomSauvegarde_.empty()) return;
    const bool agrandie = gtk_window_is_maximized(fenetre());
    reglages_.ecrire(nomSauvegarde_ + "Agrandie", std::string(agrandie ? "1" : "0"));
    if (agrandie || gtk_window_is_fullscreen(fenetre())) return;
    int largeur = 0;
    int hauteur = 0;
    gtk_window_get_default_size(fenetre(), &largeur, &hauteur);
    if (largeur > 0 && hauteur > 0) {
        reglages_.ecrire(nomSauvegarde_ + "Largeur", std::to_string(largeur));
        reglages_.ecrire(nomSauvegarde_ + "Hauteur", std::to_string(hauteur));
    }
}

void FenetrePrincipaleGtk::remplacer(std::unique_ptr<Ecran> ecran) {
    // The new screen goes in before the old one's object goes, so that no widget of the old
    // screen outlives the object its signals point at while it is still shown.
    gtk_window_set_child(fenetre(), ecran->racine());
    ecran_ = std::move(ecran);
    if (GtkWidget* focus = ecran_->focusInitial()) gtk_widget_grab_focus(focus);
}

void FenetrePrincipaleGtk::montrerConfiguration(std::shared_ptr<VueConfiguration> vue) {
    auto ecran = std::make_unique<EcranConfiguration>(vue);
    auto* controles = ecran.get();
    remplacer(std::move(ecran));
    vue->attacher(*controles);
}

void FenetrePrincipaleGtk::montrerEspace(std::shared_ptr<VueWeb> vue) {
    auto* gtkVue = dynamic_cast<VueWebGtk*>(vue.get());
    if (!gtkVue) return;
    gtk_widget_set_visible(barre_, FALSE);
    if (GtkWidget* parent = gtk_widget_get_parent(barre_)) {
        gtk_overlay_remove_overlay(GTK_OVERLAY(parent), barre_);
    }
    remplacer(std::make_unique<EcranEspace>(gtkVue->widget(), barre_, GTK_WIDGET(bandeau())));
}

void FenetrePrincipaleGtk::montrerErreur(std::shared_ptr<VueErreur> vue) {
    auto ecran = std::make_unique<EcranErreur>(vue);
    remplacer(std::move(ecran));
}

void FenetrePrincipaleGtk::progression(double valeur, bool visible) {
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(barre_), valeur);
    gtk_widget_set_visible(barre_, visible);
}

// ---- Secondary windows ----

FenetreSecondaireGtk::FenetreSecondaireGtk(GtkApplication* application,
                                           const ParametresFenetre& parametres,
                                           std::shared_ptr<VueWeb> vue,
                                           std::function<void()> vaFermer)
    : FenetreGtk(application, parametres, std::move(vaFermer)), vue_(std::move(vue)) {
    auto* gtkVue = dynamic_cast<VueWebGtk*>(vue_.get());
    if (!gtkVue) return;
    GtkWidget* colonne = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(colonne), GTK_WIDGET(bandeau()));
    gtk_box_append(GTK_BOX(colonne), gtkVue->widget());
    gtk_window_set_child(fenetre(), colonne);
    // WebKit says when the new page may be shown.
    GtkWindow* f = fenetre();
    gtkVue->pretAAfficher = [f] { gtk_window_present(f); };
}

FenetreSecondaireGtk::~FenetreSecondaireGtk() {
    if (auto* gtkVue = dynamic_cast<VueWebGtk*>(vue_.get())) gtkVue->pretAAfficher = nullptr;
}

}  // namespace brindex::gtk
