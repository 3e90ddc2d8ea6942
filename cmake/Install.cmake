# Where the parts of an installed tree lie.
include(CMakePackageConfigHelpers)

set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/ibis-load)
set(documentFolder ${CMAKE_INSTALL_DATAROOTDIR}/doc/ibis-load)

install(
  TARGETS ibis
  EXPORT ibis-load-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ibis DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT ibis-load-targets NAMESPACE ibis-load:: DESTINATION ${packageFolder})
configure_package_config_file(cmake/ibis-load-config.cmake.in ibis-load-config.cmake
                              INSTALL_DESTINATION ${packageFolder})
write_basic_package_version_file(ibis-load-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ibis-load-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/ibis-load-config-version.cmake
        DESTINATION ${packageFolder})

# Paths relative to the file itself let an installed tree be moved; absolute ones stay as they are.
file(RELATIVE_PATH prefixFromPkgConfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" prefixFromPkgConfig ${prefixFromPkgConfig})
cmake_path(SET libraryFolderFromPrefix \${prefix})
cmake_path(APPEND libraryFolderFromPrefix ${CMAKE_INSTALL_LIBDIR})
cmake_path(SET headerFolderFromPrefix \${prefix})
cmake_path(APPEND headerFolderFromPrefix ${CMAKE_INSTALL_INCLUDEDIR})
configure_file(cmake/ibis-load.pc.in ibis-load.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ibis-load.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# No loader looks into this folder, so that the reference of the support library shadows no host's.
if(TARGET ibis_support)
  install(TARGETS ibis_support LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/ibis-load)
  install(
    DIRECTORY src/support
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ibis-load
    FILES_MATCHING
    PATTERN *.h)
endif()
if(TARGET ibis_load)
  install(TARGETS ibis_load LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/ibis-load)
endif()
if(TARGET ibis_load_cli)
  install(TARGETS ibis_load_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
        DESTINATION ${documentFolder})
install(DIRECTORY docs examples DESTINATION ${documentFolder})
