# Finds what the library links. scripts/dependencies builds the pinned versions into
# build/deps/<platform>; a system package or a vcpkg tree serves as well if its version is the same.

if(WIN32)
  set(PINCEL_DEPS_DEFAULT ${PROJECT_SOURCE_DIR}/build/deps/windows)
else()
  set(PINCEL_DEPS_DEFAULT ${PROJECT_SOURCE_DIR}/build/deps/native)
endif()
set(PINCEL_DEPS ${PINCEL_DEPS_DEFAULT} CACHE PATH "Prefix of the libraries that Pincel links")

set(PINCEL_HIGHWAY_VERSION 1.2.0)
find_package(hwy ${PINCEL_HIGHWAY_VERSION} EXACT CONFIG QUIET
  HINTS ${PINCEL_DEPS} NO_CMAKE_FIND_ROOT_PATH)
if(NOT hwy_FOUND)
  message(FATAL_ERROR "Highway ${PINCEL_HIGHWAY_VERSION} is missing. "
    "Run scripts/dependencies (with the argument windows for the Windows build) first.")
endif()

set(PINCEL_LIBJPEG_TURBO_VERSION 2.1.5)
find_package(libjpeg-turbo ${PINCEL_LIBJPEG_TURBO_VERSION} EXACT CONFIG QUIET
  HINTS ${PINCEL_DEPS} NO_CMAKE_FIND_ROOT_PATH)
if(NOT TARGET libjpeg-turbo::jpeg-static)
  message(FATAL_ERROR "The static library of libjpeg-turbo ${PINCEL_LIBJPEG_TURBO_VERSION} is "
    "missing. Run scripts/dependencies (with the argument windows for the Windows build) first.")
endif()

# The static library carries both inside (see library.cmake), so the archives themselves are needed.
get_target_property(hwy_type hwy::hwy TYPE)
if(NOT hwy_type STREQUAL "STATIC_LIBRARY")
  message(FATAL_ERROR "Pincel needs Highway as a static library")
endif()
