# The programs, their manual pages, the shell completion, the timer for checks, and the files for setting up a catalog
# service.

file(RELATIVE_PATH ORV_BIN_TO_LIB "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
# Relative to the program itself, so that an installed tree can be moved.
set_target_properties(orv-library orv-browser PROPERTIES INSTALL_RPATH "$ORIGIN/${ORV_BIN_TO_LIB}")
install(TARGETS orv-library orv-browser RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT programs)
install(FILES packaging/completion/orv-library.bash
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT programs RENAME orv-library)
# Off until a user switches the timer on.
install(FILES packaging/systemd/orv-library-check.service packaging/systemd/orv-library-check.timer
    DESTINATION lib/systemd/user COMPONENT programs)
install(FILES docs/troubleshooting.md DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/orv-library" COMPONENT programs)
install(FILES docs/service/README.md docs/service/behind-a-proxy.md docs/service/nginx-catalog.conf
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/orv-library/service" COMPONENT programs)
install(DIRECTORY docs/schemas
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/orv-library" COMPONENT programs FILES_MATCHING PATTERN "*.json")

find_program(ORV_SCDOC scdoc)
if(NOT ORV_SCDOC)
    message(STATUS "scdoc not found: the manual pages are not installed")
    return()
endif()
set(manual)
foreach(page IN ITEMS
        orv-browser
        orv-library
        orv-library-check
        orv-library-doctor
        orv-library-filters
        orv-library-help
        orv-library-history
        orv-library-hold
        orv-library-import
        orv-library-info
        orv-library-list
        orv-library-log
        orv-library-manufacturers
        orv-library-news
        orv-library-pack
        orv-library-paths
        orv-library-publish
        orv-library-release
        orv-library-restore
        orv-library-runs
        orv-library-sample
        orv-library-serve
        orv-library-settings
        orv-library-status
        orv-library-styles
        orv-library-undo
        orv-library-unpack
        orv-library-update
        orv-library-verify)
    set(output "${PROJECT_BINARY_DIR}/man/${page}.1")
    set(source "${PROJECT_SOURCE_DIR}/docs/man/${page}.1.scd")
    add_custom_command(OUTPUT "${output}" DEPENDS "${source}"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/man"
        COMMAND "${ORV_SCDOC}" <"${source}" >"${output}")
    list(APPEND manual "${output}")
endforeach()
add_custom_target(manual ALL DEPENDS ${manual})
install(FILES ${manual} DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT programs)
