#pragma once

#include <gtk/gtk.h>

#include <string>
#include <utility>

#include "brand/marque.hpp"

namespace brindex::gtk {

// Holds one reference to a GObject and drops it when it goes.
template <typename T>
class Ref {
  public:
    Ref() = default;
    // Takes a new widget's floating reference, or adds one to an object GTK holds itself (a
    // toplevel window).
    static Ref prendre(T* objet) {
        Ref r;
        if (objet) r.objet_ = static_cast<T*>(g_object_ref_sink(objet));
        return r;
    }
    // Takes over the reference a constructor handed out (transfer full, not floating).
    static Ref adopter(T* objet) {
        Ref r;
        r.objet_ = objet;
        return r;
    }
    // Adds a reference of its own.
    static Ref partager(T* objet) {
        Ref r;
        if (objet) r.objet_ = static_cast<T*>(g_object_ref(objet));
        return r;
    }
    Ref(const Ref& autre) : objet_(autre.objet_) {
        if (objet_) g_object_ref(objet_);
    }
    Ref(Ref&& autre) noexcept : objet_(std::exchange(autre.objet_, nullptr)) {}
    Ref& operator=(Ref autre) noexcept {
        std::swap(objet_, autre.objet_);
        return *this;
    }
    ~Ref() {
        if (objet_) g_object_unref(objet_);
    }
    T* get() const { return objet_; }
    explicit operator bool() const { return objet_ != nullptr; }

  private:
    T* objet_ = nullptr;
};

inline GdkRGBA rgba(const Couleur& c, double opacite = 1.0) {
    return GdkRGBA{static_cast<float>(c.rouge), static_cast<float>(c.vert),
                   static_cast<float>(c.bleu), static_cast<float>(c.alpha * opacite)};
}

// The colour as CSS text, "rgba(8,17,25,1)".
std::string css(const Couleur& c, double opacite = 1.0);

// Installs, once for the display, the style sheet of the application's own widgets.
void installerStyle();

// The application's icon, drawn from the artwork built into the program.
GdkPaintable* icone();

}  // namespace brindex::gtk

namespace brindex::gtk {

// With BRINDEX_TRACE set, writes "brindex +<ms> <what>" to standard error: the milestones of
// the launch, from the program's execution (scripts/banc-essai reads them).
void jalon(const char* quoi);
// The same, once, when the window of `widget` has next been painted.
void jalonPremiereImage(GtkWidget* widget);
// Whether BRINDEX_TRACE is set.
bool traceDemandee();

}  // namespace brindex::gtk
