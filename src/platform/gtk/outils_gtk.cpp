#include "outils_gtk.hpp"

#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>

#include <time.h>
#include <unistd.h>

#include "screens/disposition.hpp"

// The icon's PNG, built into the program at compile time.
extern const unsigned char brindexIcone[];
extern const std::size_t brindexIconeTaille;

namespace brindex::gtk {

namespace {

namespace D = Disposition;

int graisse(D::Graisse g) {
    switch (g) {
        case D::Graisse::normale:
            return 400;
        case D::Graisse::legere:
            return 300;
        case D::Graisse::moyenne:
            return 500;
        case D::Graisse::demiGrasse:
            return 600;
    }
    return 400;
}

void police(std::ostringstream& s, const D::Police& p) {
    s << "font-size:" << p.taille << "px;font-weight:" << graisse(p.graisse) << ";";
}

void regleTexte(std::ostringstream& s, const char* classe, const D::Texte& t) {
    s << "label." << classe << "{";
    police(s, t.police);
    s << "color:" << css(t.couleur, t.opacite) << ";}\n";
}

// Pixel heights GTK buttons and entries take for the three control sizes.
int hauteurControle(D::TailleControle taille) {
    switch (taille) {
        case D::TailleControle::petite:
            return 22;
        case D::TailleControle::normale:
            return 28;
        case D::TailleControle::grande:
            return 34;
    }
    return 28;
}

std::string feuilleDeStyle() {
    std::ostringstream s;
    s << "window.brindex, .ecran{background-color:" << css(Marque::fond) << ";}\n";
    namespace C = D::Configuration;
    namespace E = D::Erreur;
    regleTexte(s, "titre", C::titre);
    regleTexte(s, "intro", C::intro);
    regleTexte(s, "libelle", C::libelle);
    regleTexte(s, "message", C::message);
    regleTexte(s, "aide", C::texteAide);
    regleTexte(s, "signe", E::signe);
    regleTexte(s, "titre-erreur", E::titre);
    regleTexte(s, "explication", E::explication);
    s << "entry.champ{";
    police(s, C::policeChamp);
    s << "min-height:" << hauteurControle(D::TailleControle::grande) << "px;}\n";
    s << "button.grand{min-height:" << hauteurControle(D::TailleControle::grande)
      << "px;padding:0 18px;}\n";
    s << "button.normal{min-height:" << hauteurControle(D::TailleControle::normale) << "px;}\n";
    s << "button.connexion{";
    police(s, C::policeConnexion);
    s << "}\n";
    // Return presses this button; it sits on the accent colour with white text.
    s << "button.defaut{background:" << css(Marque::accent)
      << ";color:white;border-color:" << css(Marque::accent) << ";box-shadow:none;}\n";
    s << "button.defaut:hover{background:" << css(Marque::accent, 0.85) << ";}\n";
    s << "button.defaut:disabled{background:" << css(Marque::accent, 0.4) << ";}\n";
    s << "progressbar.chargement trough{min-height:3px;background:none;border:none;}\n";
    s << "progressbar.chargement progress{min-height:3px;background:" << css(Marque::accent)
      << ";border:none;border-radius:0;margin:0;}\n";
    s << "progressbar.chargement{min-height:3px;padding:0;}\n";
    s << ".alerte-titre{font-weight:700;font-size:15px;}\n";
    s << ".barre-connexion{background-color:" << css(Marque::carte)
      << ";color:" << css(Marque::texte) << ";border-bottom:1px solid " << css(Marque::ligne)
      << ";padding:4px 12px;}\n";
    s << ".barre-recherche{background-color:" << css(Marque::carte) << ";border-bottom:1px solid "
      << css(Marque::ligne) << ";padding:4px 8px;}\n";
    s << ".barre-recherche label{color:" << css(Marque::attenue) << ";min-width:150px;}\n";
    s << ".barre-recherche label.echec{color:" << css(Marque::erreur) << ";}\n";
    return s.str();
}

}  // namespace

std::string css(const Couleur& c, double opacite) {
    std::ostringstream s;
    s << "rgba(" << std::lround(c.rouge * 255) << "," << std::lround(c.vert * 255) << ","
      << std::lround(c.bleu * 255) << "," << c.alpha * opacite << ")";
    return s.str();
}

void installerStyle() {
    static bool fait = false;
    if (fait) return;
    GdkDisplay* ecran = gdk_display_get_default();
    if (!ecran) return;
    fait = true;
    // The palette is dark: the toolkit's own controls follow.
    g_object_set(gtk_settings_get_for_display(ecran), "gtk-application-prefer-dark-theme", TRUE,
                 nullptr);
    GtkCssProvider* fournisseur = gtk_css_provider_new();
    const std::string texte = feuilleDeStyle();
    gtk_css_provider_load_from_data(fournisseur, texte.c_str(), -1);
    gtk_style_context_add_provider_for_display(ecran, GTK_STYLE_PROVIDER(fournisseur),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(fournisseur);
}

GdkPaintable* icone() {
    static GdkTexture* texture = [] {
        GBytes* octets = g_bytes_new_static(brindexIcone, brindexIconeTaille);
        GdkTexture* t = gdk_texture_new_from_bytes(octets, nullptr);
        g_bytes_unref(octets);
        return t;
    }();
    return texture ? GDK_PAINTABLE(texture) : nullptr;
}

}  // namespace brindex::gtk

namespace brindex::gtk {

namespace {

const bool trace = g_getenv("BRINDEX_TRACE") != nullptr;

// Milliseconds since the process was executed: its start time since boot, from /proc, against
// the boot clock (the dynamic linking of WebKit and GTK, before main, counts too).
double depuisExec() {
    static const double exec = [] {
        gchar* stat = nullptr;
        if (!g_file_get_contents("/proc/self/stat", &stat, nullptr, nullptr)) return 0.0;
        std::istringstream champs(std::string(stat).substr(std::string(stat).rfind(')') + 2));
        g_free(stat);
        std::string champ;
        // The fields after the command's name start at the 3rd; the start time is the 22nd.
        for (int i = 3; i < 22 && champs >> champ;) ++i;
        double ticks = 0;
        champs >> ticks;
        return ticks * 1000.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
    }();
    timespec t{};
    clock_gettime(CLOCK_BOOTTIME, &t);
    return static_cast<double>(t.tv_sec) * 1000.0 + static_cast<double>(t.tv_nsec) / 1e6 - exec;
}

}  // namespace

bool traceDemandee() {
    return trace;
}

void jalon(const char* quoi) {
    if (!trace) return;
    g_printerr("brindex +%.0f %s\n", depuisExec(), quoi);
}

void jalonPremiereImage(GtkWidget* widget) {
    static bool vue = false;
    GdkFrameClock* horloge = gtk_widget_get_frame_clock(widget);
    if (!trace || vue || !horloge) return;
    vue = true;
    g_signal_connect(horloge, "after-paint", G_CALLBACK(+[](GdkFrameClock* h, gpointer) {
                         jalon("premiere image");
                         g_signal_handlers_disconnect_matched(h, G_SIGNAL_MATCH_DATA, 0, 0, nullptr,
                                                              nullptr, &vue);
                     }),
                     &vue);
}

}  // namespace brindex::gtk
