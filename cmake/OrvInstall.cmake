# Install and packaging: the library with its headers, CMake package and pkg-config file, the programs with their
# manual, and a Debian package of each (run-time, development, programs).

include(CMakePackageConfigHelpers)

set(ORV_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/OrvLibrary")

set(libraries OrvLibrary)
if(ORV_BUILD_APPS)
    list(APPEND libraries OrvHost)
    set_target_properties(OrvHost PROPERTIES EXPORT_NAME Host INSTALL_RPATH "$ORIGIN")
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/OrvHost"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
        FILES_MATCHING PATTERN "*.h"
        PATTERN "*_p.h" EXCLUDE)
endif()
install(TARGETS ${libraries} EXPORT OrvLibraryTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development)

# Every header that a host may include. Internal headers end in _p.h, and the headers of the JSON room are internal too.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/OrvLibrary"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
    FILES_MATCHING PATTERN "*.h"
    PATTERN "*_p.h" EXCLUDE
    PATTERN "json" EXCLUDE
    PATTERN "impl" EXCLUDE)
install(FILES "${PROJECT_BINARY_DIR}/generated/OrvLibrary/OrvLibraryVersion.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/OrvLibrary" COMPONENT development)

set_target_properties(OrvLibrary PROPERTIES EXPORT_NAME Library)
install(EXPORT OrvLibraryTargets NAMESPACE Orv:: DESTINATION "${ORV_CMAKE_DIR}" COMPONENT development)
export(EXPORT OrvLibraryTargets NAMESPACE Orv:: FILE "${PROJECT_BINARY_DIR}/OrvLibraryTargets.cmake")

configure_package_config_file(cmake/OrvLibraryConfig.cmake.in "${PROJECT_BINARY_DIR}/OrvLibraryConfig.cmake"
    INSTALL_DESTINATION "${ORV_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvLibraryConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/OrvLibraryConfig.cmake" "${PROJECT_BINARY_DIR}/OrvLibraryConfigVersion.cmake"
    DESTINATION "${ORV_CMAKE_DIR}" COMPONENT development)

# Relative to the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH ORV_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(packaging/orvlibrary.pc.in "${PROJECT_BINARY_DIR}/orvlibrary.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/orvlibrary.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

if(ORV_BUILD_APPS)
    configure_file(packaging/orvhost.pc.in "${PROJECT_BINARY_DIR}/orvhost.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/orvhost.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
    include(OrvInstallPrograms)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvlibrary)
set(CPACK_PACKAGE_VENDOR "Orv")
set(CPACK_PACKAGE_CONTACT "Orv maintainers <maintainers@orvlibrary.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME liborvlibrary${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvlibrary-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "liborvlibrary${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}), qtbase5-dev, libboost-dev")
if(ORV_BUILD_APPS)
    list(APPEND CPACK_COMPONENTS_ALL programs)
    set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME orv-library)
    set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION utils)
    # Dependencies that the symbols do not show: the library of the same build, and the driver for catalog databases.
    set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS
        "liborvlibrary${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}), libqt5sql5-sqlite")
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/OrvLibrary;${PROJECT_BINARY_DIR}/OrvHost")
endif()
include(CPack)
