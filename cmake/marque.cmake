# The brand's fixed values, read from the one place that holds them (src/brand/marque.hpp), so
# that bundles, packages and their metadata say what the application says.
file(STRINGS ${PROJECT_SOURCE_DIR}/src/brand/marque.hpp BRINDEX_LIGNES_MARQUE
     REGEX "^inline constexpr std::string_view [a-zA-Z]+ = \"")
foreach(ligne IN LISTS BRINDEX_LIGNES_MARQUE)
    string(REGEX REPLACE "^inline constexpr std::string_view ([a-zA-Z]+) = \"([^\"]*)\".*"
                         "\\1;\\2" paire "${ligne}")
    list(GET paire 0 nom)
    list(GET paire 1 valeur)
    set(BRINDEX_MARQUE_${nom} "${valeur}")
endforeach()
if(NOT BRINDEX_MARQUE_version STREQUAL PROJECT_VERSION)
    message(FATAL_ERROR "version ${BRINDEX_MARQUE_version} in marque.hpp, ${PROJECT_VERSION} here")
endif()
set(BRINDEX_IDENTIFIANT ${BRINDEX_MARQUE_identifiant})
