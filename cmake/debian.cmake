# Run by cpack on the files of a package. Debian keeps games in a folder of their own, and wants the manual compressed
# and a log of changes in its own form. That the program runs at a fixed address is meant: it is faster so.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
    file(RENAME ${usr}/bin ${usr}/games)
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(WRITE ${usr}/share/doc/vrel/changelog
        "vrel (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n  * See CHANGELOG.md.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    file(WRITE ${usr}/share/lintian/overrides/vrel "vrel: hardening-no-pie [usr/games/vrel]\n")
    execute_process(COMMAND gzip -9n ${usr}/share/doc/vrel/changelog ${usr}/share/man/man6/vrel.6
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
