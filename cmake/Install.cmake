# Where the parts of an installed tree lie.
set(documentFolder ${CMAKE_INSTALL_DATAROOTDIR}/doc/ibis-load)

install(
  TARGETS ibis
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ibis DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

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
