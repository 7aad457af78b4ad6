#include "app/rendu.hpp"

#include <array>

#include "address/url.hpp"

namespace brindex {

namespace {

// What Mesa, Google and Microsoft call their software rasterisers.
constexpr std::array<std::string_view, 7> rendeursLogiciels = {"llvmpipe",
                                                               "softpipe",
                                                               "swrast",
                                                               "software rasterizer",
                                                               "swiftshader",
                                                               "lavapipe",
                                                               "microsoft basic render"};

ChoixRendu composer(bool logiciel, const std::string& raison, bool gskImpose,
                    bool compositionImposee) {
    ChoixRendu choix;
    choix.logiciel = logiciel;
    choix.rendeurCairo = logiciel && !gskImpose;
    choix.sansComposition = logiciel && !compositionImposee;
    choix.ligneJournal =
        std::string("rendu ") + (logiciel ? "logiciel" : "materiel") + " (" + raison + ")";
    if (choix.rendeurCairo) choix.ligneJournal += ", cairo";
    if (choix.sansComposition) choix.ligneJournal += ", sans composition";
    if (gskImpose || compositionImposee) choix.ligneJournal += ", environnement respecte";
    return choix;
}

}  // namespace

ChoixRendu choisirRendu(const std::optional<std::string>& rendeurGl, bool gskImpose,
                        bool compositionImposee) {
    bool logiciel = !rendeurGl || rendeurGl->empty();
    const std::string nom = enMinuscules(rendeurGl.value_or(""));
    for (const auto r : rendeursLogiciels) logiciel = logiciel || nom.find(r) != std::string::npos;
    return composer(logiciel, rendeurGl ? *rendeurGl : std::string("pas de GL"), gskImpose,
                    compositionImposee);
}

std::optional<ChoixRendu> choisirRenduSansCarte(bool carteGraphique, bool gskImpose,
                                                bool compositionImposee, bool dmabufImpose) {
    if (carteGraphique) return std::nullopt;
    auto choix = composer(true, "pas de carte graphique", gskImpose, compositionImposee);
    // A renderer the user named may want GL: then GTK prepares it as usual.
    choix.sansGl = !gskImpose;
    choix.sansDmabuf = !dmabufImpose;
    return choix;
}

}  // namespace brindex
