#pragma once

#include <cstddef>
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

// The longest file name, in bytes, that the file systems Downloads folders live on accept
// (ext4, Btrfs, XFS, APFS…).
inline constexpr std::size_t longueurNomFichierMax = 255;

// A path in `dossier` where nothing (file or folder) exists yet: the name itself, else
// "stem (2).ext", "stem (3).ext"… Only the last extension counts: "archive.tar.gz" gives
// "archive.tar (2).gz". Nothing is ever overwritten. A name too long for the file system once
// `reserve` more bytes are added (what the download engine appends to its working file) loses
// the end of its stem, on a character boundary, and keeps its extension.
std::string destinationUnique(const std::string& dossier, std::string_view suggere,
                              const std::function<bool(const std::string&)>& existe,
                              std::size_t reserve = 0);

// The last path component of a path.
std::string nomDeChemin(std::string_view chemin);

}  // namespace brindex
