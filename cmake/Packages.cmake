# The Debian packages that `cpack` makes of the preset "package": the libraries, what applications are built with, and
# the program. cmake/Install.cmake says which file belongs to which. Their version is the project's; a release adds its
# entry to cmake/packages/changelog.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The kesta developers <kesta-developers@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL library development program)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE "")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(library_package libkesta${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/packages/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
"logging databases of film and video editing, shared libraries
kesta keeps the logs of a film or video production: tables of clips with their
reels, scenes, takes, time codes, key codes and notes. It loads and saves them
as plain text files, and finds, tags, sorts, merges and edits their records.

This package contains the library and its support libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkesta-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"logging databases of film and video editing, development files
kesta keeps the logs of a film or video production: tables of clips with their
reels, scenes, takes, time codes, key codes and notes.

This package contains what applications are built with: the headers, the CMake
package kesta, the pkg-config file, and the debugger's views of its types.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME kesta)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS bash-completion)
set(CPACK_COMPONENT_PROGRAM_DEPENDS library)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
"shows, checks and edits the logs of film and video editing
kesta works on the logs of a film or video production: tables of clips with
their reels, scenes, takes, time codes, key codes and notes. It shows, finds,
edits, sorts and merges their records, and reads and writes the log exchange
files of cameras, labs and dailies tools.")

# What each package says about itself, in its own folder: where it comes from, its licence, its changes.
set(changelog ${PROJECT_BINARY_DIR}/changelog.gz)
kesta_compressed(${PROJECT_SOURCE_DIR}/cmake/packages/changelog ${changelog})
add_custom_target(kesta_packages_files ALL DEPENDS ${changelog})
foreach(component IN ITEMS library development program)
    string(TOUPPER ${component} upper)
    install(FILES ${changelog} cmake/packages/copyright COMPONENT ${component} EXCLUDE_FROM_ALL
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
endforeach()
configure_file(cmake/packages/library.lintian-overrides ${PROJECT_BINARY_DIR}/lintian/${library_package} @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lintian/${library_package} COMPONENT library EXCLUDE_FROM_ALL
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides)

include(CPack)
