# The shared library pincel::pincel and the static library pincel::pincel_static.

set(folders surface convert draw mix blend filters loaders exports)
list(TRANSFORM folders PREPEND ${PROJECT_SOURCE_DIR}/ OUTPUT_VARIABLE patterns)
list(TRANSFORM patterns APPEND /*.cc)
file(GLOB PINCEL_SOURCES CONFIGURE_DEPENDS ${patterns})
set(entry_point ${PROJECT_SOURCE_DIR}/surface/dll_main.cc)
list(REMOVE_ITEM PINCEL_SOURCES ${entry_point})

# One compilation serves both libraries.
add_library(pincel_objects OBJECT ${PINCEL_SOURCES})
if(WIN32)
  # The module-definition file says what leaves the DLL. Objects that said so themselves would make
  # every program that links the static library export the whole interface.
  target_compile_definitions(pincel_objects PRIVATE PINCEL_STATIC)
endif()
target_link_libraries(pincel_objects PRIVATE pincel_settings)
target_compile_options(pincel_objects PRIVATE
  ${PINCEL_LIBRARY_WARNINGS} ${PINCEL_INSTRUMENTATION})
# Compile settings only: nothing but the two libraries below links the archives.
target_include_directories(pincel_objects SYSTEM PRIVATE
  $<TARGET_PROPERTY:hwy::hwy,INTERFACE_INCLUDE_DIRECTORIES>
  $<TARGET_PROPERTY:libjpeg-turbo::jpeg-static,INTERFACE_INCLUDE_DIRECTORIES>)
target_compile_definitions(pincel_objects PRIVATE HWY_STATIC_DEFINE)
# -O3 makes these half as large again, and slower.
set_source_files_properties(
  ${PROJECT_SOURCE_DIR}/mix/mix_rows.cc ${PROJECT_SOURCE_DIR}/filters/blur_rows.cc
  PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>)
if(PINCEL_ABI_INFO)
  target_compile_options(pincel_objects PRIVATE -g)
endif()

include(exports)
add_library(pincel SHARED $<TARGET_OBJECTS:pincel_objects>)
add_library(pincel::pincel ALIAS pincel)
target_include_directories(pincel INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(pincel PRIVATE $<BUILD_INTERFACE:pincel_settings>
  $<BUILD_INTERFACE:hwy::hwy> $<BUILD_INTERFACE:libjpeg-turbo::jpeg-static>)
set_target_properties(pincel PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE CXX)
if(WIN32)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/pincel.rc.in ${PROJECT_BINARY_DIR}/pincel.rc @ONLY)
  target_sources(pincel PRIVATE ${entry_point} ${PROJECT_BINARY_DIR}/pincel.rc ${PINCEL_DEF})
  target_compile_definitions(pincel PRIVATE PINCEL_STATIC)
  set_target_properties(pincel PROPERTIES
    PREFIX "" IMPORT_PREFIX lib IMPORT_SUFFIX .dll.a VERSION "" SOVERSION "")
  # libgcc is shared because an exception crosses into a MinGW host only through a common unwinder.
  target_link_options(pincel PRIVATE
    -static-libstdc++ -shared-libgcc LINKER:--no-insert-timestamp)
  # Nor is one inserted when the DLL is stripped for a package.
  install(CODE "if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
      set(ENV{SOURCE_DATE_EPOCH} 0)
      set(pincel_set_epoch TRUE)
    endif()" ALL_COMPONENTS)

  set(PINCEL_RUNTIME_DLL libgcc_s_dw2-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${PINCEL_RUNTIME_DLL}
    OUTPUT_VARIABLE PINCEL_RUNTIME_DLL_PATH OUTPUT_STRIP_TRAILING_WHITESPACE)
  file(REAL_PATH ${PINCEL_RUNTIME_DLL_PATH} PINCEL_RUNTIME_DLL_PATH)
  file(COPY ${PINCEL_RUNTIME_DLL_PATH} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})

  # The import library for MSVC hosts, in the short form that their linkers write themselves.
  find_program(PINCEL_LLVM_DLLTOOL llvm-dlltool)
  mark_as_advanced(PINCEL_LLVM_DLLTOOL)
  if(PINCEL_LLVM_DLLTOOL)
    set(PINCEL_MSVC_IMPORT_LIBRARY ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/pincel.lib)
    add_custom_command(OUTPUT ${PINCEL_MSVC_IMPORT_LIBRARY}
      COMMAND ${PINCEL_LLVM_DLLTOOL} -m i386 -d ${PINCEL_MSVC_DEF} -l ${PINCEL_MSVC_IMPORT_LIBRARY}
      DEPENDS ${PINCEL_MSVC_DEF} VERBATIM)
    add_custom_target(pincel_msvc_import ALL DEPENDS ${PINCEL_MSVC_IMPORT_LIBRARY})
  else()
    message(STATUS "The import library for MSVC hosts is left out: llvm-dlltool is missing")
  endif()
else()
  target_link_options(pincel PRIVATE LINKER:--exclude-libs,ALL)
  # Sanitizers need names of their own, inside and outside.
  if(NOT PINCEL_SANITIZE)
    target_link_options(pincel PRIVATE LINKER:-z,defs
      LINKER:--version-script=${PINCEL_VERSION_SCRIPT})
    set_target_properties(pincel PROPERTIES LINK_DEPENDS ${PINCEL_VERSION_SCRIPT})
  endif()
endif()

add_library(pincel_static STATIC $<TARGET_OBJECTS:pincel_objects>)
add_library(pincel::pincel_static ALIAS pincel_static)
target_include_directories(pincel_static INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_definitions(pincel_static INTERFACE PINCEL_STATIC)
set_target_properties(pincel_static PROPERTIES LINKER_LANGUAGE CXX)
if(NOT WIN32)
  set_target_properties(pincel_static PROPERTIES OUTPUT_NAME pincel)
endif()
# Both go into the archive, so that a user links one file and need not have them.
foreach(merged hwy::hwy libjpeg-turbo::jpeg-static)
  add_custom_command(TARGET pincel_static POST_BUILD
    COMMAND ${CMAKE_COMMAND} -DAR=${CMAKE_AR} -DINTO=$<TARGET_FILE:pincel_static>
      -DFROM=$<TARGET_FILE:${merged}> -P ${PROJECT_SOURCE_DIR}/cmake/merge_archive.cmake
    VERBATIM)
endforeach()
