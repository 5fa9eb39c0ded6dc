# What `cmake --install` puts under a prefix: the libraries, their public headers, the program with its manual page and
# the shells' completions, the CMake package kesta and the pkg-config file. The whole may be moved afterwards: each part
# finds the others from its own place. The components are the packages of cmake/Packages.cmake.
include(CMakePackageConfigHelpers)

# Public headers keep their folders. All of support/ is public; every other folder names what it shows.
file(GLOB support_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/support/*.h)
set(public_headers
    ${support_headers}
    expr/SExpr.h
    record/DBFieldTypes.h record/KSTBase.h record/LoadObserver.h record/dbrecord.h record/iKST.h record/kesta.h
    record/parts/CookieIndex.h record/parts/FieldList.h record/parts/GapVector.h record/parts/OnDemand.h
    record/parts/ParamList.h record/parts/Query.h
    view/KSTView.h view/KSTViewCursor.h view/KSTViewRep.h
    view/parts/Attachment.h view/parts/RowArray.h view/parts/RowIndex.h
    fieldmap/FieldMap.h
    container/ZRContainerFile.h)
foreach(header IN LISTS public_headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} COMPONENT development DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kesta/${folder})
endforeach()

file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(kesta misc zr OS PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(kesta_program PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
install(TARGETS kesta misc zr OS EXPORT kesta_targets
        LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(TARGETS kesta_program COMPONENT program)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kesta)
install(EXPORT kesta_targets NAMESPACE kesta:: FILE kesta-targets.cmake COMPONENT development
        DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kesta-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/kesta-config.cmake ${PROJECT_BINARY_DIR}/kesta-config-version.cmake
        COMPONENT development DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")
configure_file(cmake/kesta.pc.in ${PROJECT_BINARY_DIR}/kesta.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kesta.pc COMPONENT development DESTINATION ${pkgconfig_dir})

set(KESTA_ZSH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    CACHE STRING "Where zsh looks for completions, below the prefix")
set(manual_dir ${PROJECT_BINARY_DIR}/manual)
install(FILES ${manual_dir}/kesta.1.gz COMPONENT program DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${manual_dir}/kesta.bash RENAME kesta COMPONENT program
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${manual_dir}/kesta.zsh RENAME _kesta COMPONENT program DESTINATION ${KESTA_ZSH_COMPLETIONS_DIR})
install(FILES ${manual_dir}/kesta.fish COMPONENT program
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# Where a gdb of the same prefix looks when it loads the library of this name.
set(library_file ${CMAKE_SHARED_LIBRARY_PREFIX}kesta${CMAKE_SHARED_LIBRARY_SUFFIX}.${PROJECT_VERSION})
install(FILES tools/gdb/kesta-gdb.py RENAME ${library_file}-gdb.py COMPONENT development
        DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR})
