# What cmake --install puts in place: header, both libraries, CMake package, pkg-config file, papers.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/pincel)

install(FILES ${PROJECT_SOURCE_DIR}/include/pincel.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS pincel pincel_static EXPORT pincel-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
  install(FILES ${PINCEL_RUNTIME_DLL_PATH} DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PINCEL_DEF} ${PINCEL_MSVC_IMPORT_LIBRARY} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

install(EXPORT pincel-targets NAMESPACE pincel:: DESTINATION ${package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/pincel-config.cmake.in
  ${PROJECT_BINARY_DIR}/pincel-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pincel-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/pincel-config.cmake
  ${PROJECT_BINARY_DIR}/pincel-config-version.cmake DESTINATION ${package_dir})

# Found from where the file itself lies, so that an installed tree can move.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/pincel.pc.in ${PROJECT_BINARY_DIR}/pincel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pincel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(licence_dir ${CMAKE_INSTALL_DATADIR}/licenses/pincel)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${licence_dir})
# Parts of these libraries are inside the binaries, so their licences go along.
if(EXISTS ${PINCEL_DEPS}/licenses)
  install(DIRECTORY ${PINCEL_DEPS}/licenses/ DESTINATION ${licence_dir}
    FILES_MATCHING PATTERN "highway-*" PATTERN "libjpeg-turbo-*")
endif()
if(EXISTS ${PINCEL_DEPS}/share/doc/libjpeg-turbo/README.ijg)
  install(FILES ${PINCEL_DEPS}/share/doc/libjpeg-turbo/README.ijg DESTINATION ${licence_dir}
    RENAME libjpeg-turbo-README.ijg)
endif()
