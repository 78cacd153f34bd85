# What cmake --install puts in place: header, libraries, CMake package, pkg-config file, programs to
# copy, papers. The components are the packages that packages.cmake makes on Debian.
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/pincel)
if(WIN32)
  # As in the source tree, so that the links between the papers hold.
  set(papers_dir .)
  set(licence_dir licenses)
else()
  set(papers_dir ${CMAKE_INSTALL_DOCDIR})
  set(licence_dir ${CMAKE_INSTALL_DATADIR}/licenses/pincel)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/include/pincel.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS pincel pincel_static EXPORT pincel-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
if(WIN32)
  install(FILES ${PINCEL_RUNTIME_DLL_PATH} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  install(FILES ${PINCEL_DEF} ${PINCEL_MSVC_IMPORT_LIBRARY} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

install(EXPORT pincel-targets NAMESPACE pincel:: DESTINATION ${package_dir})
set(include_dir ${CMAKE_INSTALL_INCLUDEDIR})
set(library_dir ${CMAKE_INSTALL_LIBDIR})
set(dll_dir ${CMAKE_INSTALL_BINDIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/pincel-config.cmake.in
  ${PROJECT_BINARY_DIR}/installed/pincel-config.cmake INSTALL_DESTINATION ${package_dir}
  PATH_VARS include_dir library_dir dll_dir)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pincel-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/installed/pincel-config.cmake
  ${PROJECT_BINARY_DIR}/pincel-config-version.cmake DESTINATION ${package_dir})

# The build folder is a package as well: -Dpincel_DIR=build/release.
export(EXPORT pincel-targets NAMESPACE pincel:: FILE ${PROJECT_BINARY_DIR}/pincel-targets.cmake)
set(include_dir ${PROJECT_SOURCE_DIR}/include)
set(library_dir ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY})
set(dll_dir ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/pincel-config.cmake.in
  ${PROJECT_BINARY_DIR}/pincel-config.cmake INSTALL_DESTINATION ${PROJECT_BINARY_DIR}
  INSTALL_PREFIX ${PROJECT_BINARY_DIR} PATH_VARS include_dir library_dir dll_dir)

# Found from where the file itself lies, so that an installed tree can move.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/pincel.pc.in ${PROJECT_BINARY_DIR}/pincel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pincel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${papers_dir}
  PATTERN __pycache__ EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${papers_dir} COMPONENT documentation)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${papers_dir} COMPONENT documentation
  FILES_MATCHING PATTERN *.md PATTERN *.png)
# Cross builds cannot run what writes the manual, so they take the one of the native build.
if(CMAKE_CROSSCOMPILING)
  set(manual_dir ${PROJECT_SOURCE_DIR}/build/release/manual)
else()
  set(manual_dir ${PROJECT_BINARY_DIR}/manual)
endif()
set(PINCEL_MANUAL ${manual_dir} CACHE PATH "The built manual, which is installed if it is there")
mark_as_advanced(PINCEL_MANUAL)
install(DIRECTORY ${PINCEL_MANUAL}/ DESTINATION ${papers_dir}/manual
  COMPONENT documentation OPTIONAL)

# Debian's packages have these texts in their copyright files instead.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${licence_dir} COMPONENT licences)
# Parts of these libraries are inside the binaries, so their licences go along.
if(EXISTS ${PINCEL_DEPS}/licenses)
  install(DIRECTORY ${PINCEL_DEPS}/licenses/ DESTINATION ${licence_dir} COMPONENT licences
    FILES_MATCHING PATTERN "highway-*" PATTERN "libjpeg-turbo-*")
endif()
if(EXISTS ${PINCEL_DEPS}/share/doc/libjpeg-turbo/README.ijg)
  install(FILES ${PINCEL_DEPS}/share/doc/libjpeg-turbo/README.ijg DESTINATION ${licence_dir}
    COMPONENT licences RENAME libjpeg-turbo-README.ijg)
endif()
if(WIN32)
  # Of libgcc's DLL, where the compiler came as Debian's package.
  install(FILES /usr/share/doc/gcc-mingw-w64-i686-win32-runtime/copyright OPTIONAL
    DESTINATION ${licence_dir} COMPONENT licences RENAME libgcc-copyright)
endif()

if(PROJECT_IS_TOP_LEVEL)
  include(packages)
endif()
