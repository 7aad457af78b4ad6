#pragma once

#include <cstddef>
#include <string>
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

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool estUtf8(std::string_view texte);

// The length in bytes of the UTF-8 sequence starting at `debut`, or 0 where none valid starts.
std::size_t longueurUtf8(std::string_view texte, std::size_t debut);

// The length of the longest prefix of at most `octets` bytes that doesn't end inside a UTF-8
// sequence.
std::size_t coupureUtf8(std::string_view texte, std::size_t octets);

// What a native control shows of a text a page or a server handed over: at most `caracteres`
// code points and `lignes` lines, then "…"; bytes that are not UTF-8 become U+FFFD. Toolkits
// lay out a long unbroken text in time that grows much faster than its length.
std::string extrait(std::string_view texte, std::size_t caracteres, std::size_t lignes);

}  // namespace brindex
