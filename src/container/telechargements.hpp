#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brindex {

// The name an engine suggested, made safe to place inside the Downloads folder: only its last
// path component is kept, and a name that is empty, "." or ".." becomes "telechargement".
std::string nomDeFichierSur(std::string_view suggere);

// The folder downloads go to: the one the system reports, else "Downloads" in the home folder.
std::string dossierTelechargements(const std::optional<std::string>& systeme,
                                   const std::string& dossierPersonnel);

// A path in `dossier` where nothing (file or folder) exists yet: the name itself, else
// "stem (2).ext", "stem (3).ext"… Only the last extension counts: "archive.tar.gz" gives
// "archive.tar (2).gz". Nothing is ever overwritten.
std::string destinationUnique(const std::string& dossier, std::string_view suggere,
                              const std::function<bool(const std::string&)>& existe);

// The last path component of a path.
std::string nomDeChemin(std::string_view chemin);

}  // namespace brindex
