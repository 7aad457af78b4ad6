#include "container/telechargements.hpp"

#include "address/texte.hpp"

#include <algorithm>

namespace brindex {

namespace {

std::string joindre(const std::string& dossier, std::string_view nom) {
    std::string chemin = dossier;
    if (chemin.empty() || chemin.back() != '/') chemin += '/';
    chemin += nom;
    return chemin;
}

}  // namespace

std::string nomDeChemin(std::string_view chemin) {
    while (!chemin.empty() && chemin.back() == '/') chemin.remove_suffix(1);
    const auto barre = chemin.find_last_of('/');
    return std::string(barre == std::string_view::npos ? chemin : chemin.substr(barre + 1));
}

std::string nomDeFichierSur(std::string_view suggere) {
    // A page chooses the suggested name: it must never lead outside the Downloads folder, so
    // only its last non-empty component is kept ("a/b/" keeps "b").
    std::string nom;
    std::string courant;
    for (const char c : suggere) {
        if (c == '/' || c == '\\') {
            if (!courant.empty()) nom = courant;
            courant.clear();
        } else if (c != '\0') {
            courant += c;
        }
    }
    if (!courant.empty()) nom = courant;
    if (nom.empty() || nom == "." || nom == "..") return "telechargement";
    return nom;
}

std::string dossierTelechargements(const std::optional<std::string>& systeme,
                                   const std::string& dossierPersonnel) {
    if (systeme && !systeme->empty()) return *systeme;
    return joindre(dossierPersonnel, "Downloads");
}

std::string destinationUnique(const std::string& dossier, std::string_view suggere,
                              const std::function<bool(const std::string&)>& existe,
                              std::size_t reserve) {
    const std::string nom = nomDeFichierSur(suggere);
    const std::size_t place = longueurNomFichierMax -
                              std::min(reserve, longueurNomFichierMax - longueurNomFichierMax / 2);

    // A leading dot starts a hidden name, not an extension; an "extension" that leaves no room
    // for a stem is part of the name.
    const auto point = nom.find_last_of('.');
    const bool avecExtension = point != std::string::npos && point != 0 && point + 1 < nom.size() &&
                               nom.size() - point + 16 <= place;
    const std::string souche = avecExtension ? nom.substr(0, point) : nom;
    const std::string extension = avecExtension ? nom.substr(point) : std::string();

    // The stem, cut so that stem + mark + extension fits.
    const auto candidat = [&](const std::string& marque) {
        const std::size_t pourSouche = place - extension.size() - marque.size();
        return joindre(dossier,
                       souche.substr(0, coupureUtf8(souche, pourSouche)) + marque + extension);
    };
    std::string chemin = candidat("");
    for (unsigned long long compteur = 2; existe(chemin); ++compteur) {
        chemin = candidat(" (" + std::to_string(compteur) + ")");
    }
    return chemin;
}

}  // namespace brindex
