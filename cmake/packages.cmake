# What cmake --install puts in place, and the packages that cpack makes of it.
include(GNUInstallDirs)
install(TARGETS vrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES doc/vrel.6 DESTINATION ${CMAKE_INSTALL_MANDIR}/man6)
install(FILES data/vrel.opn DESTINATION ${CMAKE_INSTALL_DATADIR}/vrel)

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_CONTACT "Vrel developers <developers@vrel.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "chess engine that speaks UCI")
set(CPACK_PACKAGE_DESCRIPTION
    "Vrel plays and analyses chess. A chess interface starts it and talks to it
by UCI, the Universal Chess Interface; a person can type at it as well.
It also builds opening books from PGN files, runs test suites, scans games
for doubtful moves, tunes its evaluation and plays matches against itself.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/debian.cmake)
include(CPack)
