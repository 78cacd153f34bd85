# What cpack makes of a built tree: a ZIP file for Windows hosts; on Debian a package each for the
# shared object, for development and for the papers. The files come from install.cmake.

set(CPACK_PACKAGE_NAME pincel)
set(CPACK_PACKAGE_VENDOR "Pincel developers")
set(CPACK_PACKAGE_CONTACT "Pincel developers <developers@pincel.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
# Symbols and debugging information stay in the build folder: debug a build of your own, made with
# -DCMAKE_BUILD_TYPE=RelWithDebInfo.
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME pincel-${PROJECT_VERSION}-win32)
  # What library.cmake set for the DLL is not the time of the files in the archive.
  install(CODE "if(pincel_set_epoch)
      unset(ENV{SOURCE_DATE_EPOCH})
    endif()" ALL_COMPONENTS)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_COMPONENTS_ALL runtime development documentation)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

  set(what "It draws into memory that the program owns: blits with colour key,
scaling, alpha mixing, masks, fades, blend modes, filters, lines, fills,
conversion between formats, and BMP, GIF and JPEG loading.
.\n")

  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libpincel${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
  set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "${what}This package has the shared library.")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/packaging/symbols;${PROJECT_SOURCE_DIR}/packaging/triggers")

  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpincel-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libpincel${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libpincel-doc)
  set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "${what}This package has the header, the static library, and programs to copy.")

  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libpincel-doc)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION
    "${what}This package has the papers and, where it was built, the manual.")

  # What Debian wants beside the files of each package. A plain install leaves it out.
  set(debian_dir ${PROJECT_BINARY_DIR}/debian)
  file(READ ${PROJECT_SOURCE_DIR}/LICENSE pincel_licence)
  foreach(part highway-LICENSE-BSD3 libjpeg-turbo-LICENSE.md)
    set(licence "")
    if(EXISTS ${PINCEL_DEPS}/licenses/${part})
      file(READ ${PINCEL_DEPS}/licenses/${part} licence)
    endif()
    string(MAKE_C_IDENTIFIER ${part} variable)
    set(${variable} "${licence}")
  endforeach()
  configure_file(${PROJECT_SOURCE_DIR}/packaging/copyright.in ${debian_dir}/copyright @ONLY)
  find_program(PINCEL_GZIP gzip)
  mark_as_advanced(PINCEL_GZIP)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/packaging/changelog)
  if(PINCEL_GZIP)
    execute_process(COMMAND ${PINCEL_GZIP} -9nc ${PROJECT_SOURCE_DIR}/packaging/changelog
      OUTPUT_FILE ${debian_dir}/changelog.gz)
  endif()
  foreach(component runtime development documentation)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    install(FILES ${debian_dir}/copyright ${debian_dir}/changelog.gz
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component}
      EXCLUDE_FROM_ALL OPTIONAL)
  endforeach()
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/lintian-overrides
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT runtime EXCLUDE_FROM_ALL
    RENAME ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME})
endif()

include(CPack)
