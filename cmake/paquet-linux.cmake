# Installs the Linux application the way desktops expect it (program, launcher, icons of the
# hicolor theme, AppStream metadata, manual page, Debian documentation) and describes its
# Debian package (cpack -G DEB). Included from the GTK build, after the brindex target.
include(GNUInstallDirs)
include(${PROJECT_SOURCE_DIR}/cmake/marque.cmake)

set(BRINDEX_MAINTENEUR "${BRINDEX_MARQUE_nom} <equipe@${BRINDEX_MARQUE_domaineSite}>")
set(BRINDEX_DONNEES_LINUX ${PROJECT_SOURCE_DIR}/data/linux)
set(BRINDEX_GENERE ${PROJECT_BINARY_DIR}/linux)
# Installed files are readable by all, whatever the umask of whoever builds.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

configure_file(${BRINDEX_DONNEES_LINUX}/brindex.desktop.in
               ${BRINDEX_GENERE}/${BRINDEX_IDENTIFIANT}.desktop @ONLY)
configure_file(${BRINDEX_DONNEES_LINUX}/brindex.metainfo.xml.in
               ${BRINDEX_GENERE}/${BRINDEX_IDENTIFIANT}.metainfo.xml @ONLY)
configure_file(${BRINDEX_DONNEES_LINUX}/debian/copyright.in ${BRINDEX_GENERE}/copyright @ONLY)
configure_file(${BRINDEX_DONNEES_LINUX}/debian/changelog.in ${BRINDEX_GENERE}/changelog @ONLY)

# Manual page and changelog compressed as Debian wants them: no name, no time in the header.
find_program(BRINDEX_GZIP gzip REQUIRED)
foreach(fichier IN ITEMS ${BRINDEX_DONNEES_LINUX}/brindex.1 ${BRINDEX_GENERE}/changelog)
    get_filename_component(nom ${fichier} NAME)
    add_custom_command(OUTPUT ${BRINDEX_GENERE}/${nom}.gz
        COMMAND ${BRINDEX_GZIP} -9 -n -c ${fichier} > ${BRINDEX_GENERE}/${nom}.gz
        DEPENDS ${fichier} VERBATIM)
    list(APPEND BRINDEX_COMPRESSES ${BRINDEX_GENERE}/${nom}.gz)
endforeach()
add_custom_target(brindex_documentation ALL DEPENDS ${BRINDEX_COMPRESSES})

install(TARGETS brindex RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Stripped as Debian strips: the compiler's notes go too.
install(CODE "if(CMAKE_INSTALL_DO_STRIP)
    execute_process(COMMAND ${CMAKE_OBJCOPY} --remove-section=.comment --remove-section=.note
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/brindex\")
endif()")
install(FILES ${BRINDEX_GENERE}/${BRINDEX_IDENTIFIANT}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${BRINDEX_GENERE}/${BRINDEX_IDENTIFIANT}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${PROJECT_SOURCE_DIR}/data/icone/brindex.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        RENAME ${BRINDEX_IDENTIFIANT}.svg)
foreach(taille IN ITEMS 16 24 32 48 64 128 256 512)
    install(FILES ${PROJECT_SOURCE_DIR}/data/icone/brindex-${taille}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${taille}x${taille}/apps
            RENAME ${BRINDEX_IDENTIFIANT}.png)
endforeach()
install(FILES ${BRINDEX_GENERE}/brindex.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${BRINDEX_GENERE}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/brindex)
install(FILES ${BRINDEX_GENERE}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/brindex
        RENAME changelog.Debian.gz)
install(FILES ${BRINDEX_DONNEES_LINUX}/debian/lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME brindex)

# The Debian package. Its dependencies are read from the program by dpkg-shlibdeps.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brindex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_PACKAGE_VENDOR ${BRINDEX_MARQUE_nom})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${BRINDEX_MAINTENEUR})
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${BRINDEX_MARQUE_urlSite})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Spelling is checked in French and English where their dictionaries are installed.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "hunspell-fr | hunspell-dictionary-fr, hunspell-en-us | hunspell-dictionary-en")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
file(READ ${BRINDEX_DONNEES_LINUX}/debian/description CPACK_DEBIAN_PACKAGE_DESCRIPTION)
string(STRIP "${CPACK_DEBIAN_PACKAGE_DESCRIPTION}" CPACK_DEBIAN_PACKAGE_DESCRIPTION)
include(CPack)
add_dependencies(brindex brindex_documentation)
