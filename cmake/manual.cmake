# The manual: Doxygen's HTML from include/pincel.h and docs/, with examples from the gallery where that
# can be made. `cmake --build <folder> --target manual` writes <folder>/manual/index.html.
find_program(PINCEL_DOXYGEN doxygen)
find_package(Python3 COMPONENTS Interpreter QUIET)
mark_as_advanced(PINCEL_DOXYGEN)
if(NOT PINCEL_DOXYGEN OR NOT Python3_Interpreter_FOUND OR CMAKE_CROSSCOMPILING)
  return()
endif()

set(PINCEL_MANUAL_INPUT ${PROJECT_BINARY_DIR}/manual-input)
set(PINCEL_MANUAL_PICTURES "")
set(gallery_commands "")
set(gallery_argument "")
if(TARGET gallery)
  set(folder ${PROJECT_BINARY_DIR}/gallery)
  set(PINCEL_MANUAL_PICTURES ${folder}/operations)
  set(gallery_commands
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}/scene
    COMMAND scene ${PROJECT_SOURCE_DIR}/examples ${folder}/scene
    COMMAND gallery_digest ${PROJECT_SOURCE_DIR}/examples ${folder}/scene/digest.txt
    COMMAND gallery ${PROJECT_SOURCE_DIR}/examples ${folder} ${folder}/scene)
  set(gallery_argument --gallery ${folder})
endif()
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
add_custom_target(manual
  ${gallery_commands}
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/scripts/manual-pages ${gallery_argument}
    ${PINCEL_MANUAL_INPUT}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/manual
  COMMAND ${PINCEL_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
  COMMENT "Writing the manual, ${PROJECT_BINARY_DIR}/manual/index.html" VERBATIM)
if(TARGET gallery)
  add_dependencies(manual scene gallery_digest gallery)
endif()
