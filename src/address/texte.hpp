#pragma once

#include <string_view>

namespace brindex {

// Which characters are trimmed from the ends of a UTF-8 text.
enum class Blancs {
    espaces,          // the Unicode space separators and the tab
    espacesEtLignes,  // all Unicode separators, the tab, line breaks U+000A-U+000D and U+0085
};

// The text without the given characters at either end; inside it nothing changes. Bytes
// that are not valid UTF-8 are never trimmed.
std::string_view retirerBlancs(std::string_view texte, Blancs blancs);

}  // namespace brindex
