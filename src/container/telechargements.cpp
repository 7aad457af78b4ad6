#include "container/telechargements.hpp"

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
                              const std::function<bool(const std::string&)>& existe) {
    const std::string nom = nomDeFichierSur(suggere);
    std::string candidat = joindre(dossier, nom);
    if (!existe(candidat)) return candidat;

    // A leading dot starts a hidden name, not an extension.
    const auto point = nom.find_last_of('.');
    const bool avecExtension = point != std::string::npos && point != 0 && point + 1 < nom.size();
    const std::string souche = avecExtension ? nom.substr(0, point) : nom;
    const std::string extension = avecExtension ? nom.substr(point + 1) : std::string();

    for (unsigned long long compteur = 2;; ++compteur) {
        std::string variante = souche + " (" + std::to_string(compteur) + ")";
        if (!extension.empty()) variante += "." + extension;
        candidat = joindre(dossier, variante);
        if (!existe(candidat)) return candidat;
    }
}

}  // namespace brindex
