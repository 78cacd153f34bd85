# The gallery and the manual, which shows some of its pictures:
#   cmake --build <folder> --target gallery_page   writes <folder>/gallery/index.html
#   cmake --build <folder> --target manual         writes <folder>/manual/index.html
set(gallery_folder ${PROJECT_BINARY_DIR}/gallery)
if(TARGET gallery AND NOT CMAKE_CROSSCOMPILING)
  set(examples ${PROJECT_SOURCE_DIR}/examples)
  add_custom_target(gallery_page
    COMMAND ${CMAKE_COMMAND} -E make_directory ${gallery_folder}/scene
    COMMAND scene ${examples} ${gallery_folder}/scene
    COMMAND gallery_digest ${examples} ${gallery_folder}/scene/digest.txt
    COMMAND gallery ${examples} ${gallery_folder} ${gallery_folder}/scene
    COMMENT "Writing the gallery, ${gallery_folder}/index.html" VERBATIM)
endif()

find_program(PINCEL_DOXYGEN doxygen)
mark_as_advanced(PINCEL_DOXYGEN)
find_package(Python3 COMPONENTS Interpreter QUIET)
if(NOT PINCEL_DOXYGEN OR NOT Python3_Interpreter_FOUND OR CMAKE_CROSSCOMPILING)
  return()
endif()

set(PINCEL_MANUAL_INPUT ${PROJECT_BINARY_DIR}/manual-input)
set(PINCEL_MANUAL_PICTURES "")
set(gallery_argument "")
if(TARGET gallery_page)
  set(PINCEL_MANUAL_PICTURES ${gallery_folder}/operations)
  set(gallery_argument --gallery ${gallery_folder})
endif()
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
add_custom_target(manual
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/scripts/manual-pages ${gallery_argument}
    ${PINCEL_MANUAL_INPUT}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/manual
  COMMAND ${PINCEL_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
  COMMENT "Writing the manual, ${PROJECT_BINARY_DIR}/manual/index.html" VERBATIM)
if(TARGET gallery_page)
  add_dependencies(manual gallery_page)
endif()
