# Writes a C++ source holding the bytes of a file, so the program carries its own artwork.
file(READ ${ENTREE} octets HEX)
string(LENGTH "${octets}" longueur)
math(EXPR taille "${longueur} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," octets "${octets}")
file(WRITE ${SORTIE} "#include <cstddef>\n"
    "extern const unsigned char ${NOM}[] = {${octets}};\n"
    "extern const std::size_t ${NOM}Taille = ${taille};\n")
