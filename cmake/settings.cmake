# Compiler settings that hold for every target of the tree.

# Programs find the library beside themselves, on Windows too.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(CCACHE ccache)
mark_as_advanced(CCACHE)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER AND NOT DEFINED ENV{CMAKE_CXX_COMPILER_LAUNCHER})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# What the sources need to give the same bytes everywhere. Without -ffp-contract=off, code that is
# compiled for AVX2 would round once where other targets round twice.
add_library(pincel_settings INTERFACE)
target_compile_features(pincel_settings INTERFACE cxx_std_20)
target_compile_options(pincel_settings INTERFACE -ffp-contract=off -fno-math-errno)
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  # The toolchain file says the same; stated again for other ways to reach this compiler.
  target_compile_options(pincel_settings INTERFACE
    -msse2 -mfpmath=sse -mincoming-stack-boundary=2)
endif()
target_include_directories(pincel_settings INTERFACE
  ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)

target_compile_options(pincel_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Wno-psabi $<$<BOOL:${PINCEL_DEVELOPER}>:-Werror>)
# More for the library itself; tests may cast as they like.
set(PINCEL_LIBRARY_WARNINGS -Wshadow -Wconversion -Wold-style-cast -Wcast-qual)

# Sanitizers watch the library. The programs that call it need their runtime, but no checks of their
# own, which would take most of the time of the tests.
set(PINCEL_INSTRUMENTATION)
if(PINCEL_SANITIZE)
  list(APPEND PINCEL_INSTRUMENTATION
    -fsanitize=${PINCEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
endif()
if(PINCEL_FUZZ)
  # The harnesses are guided by the branches that an input takes inside the library.
  list(APPEND PINCEL_INSTRUMENTATION -fsanitize=fuzzer-no-link)
endif()
target_link_options(pincel_settings INTERFACE ${PINCEL_INSTRUMENTATION})
if(PINCEL_SANITIZE MATCHES address)
  target_compile_definitions(pincel_settings INTERFACE PINCEL_ADDRESS_SANITIZER)
endif()
# Instruction sets that kernels are compiled for: SSE2, SSE4, AVX2, and AVX-512 with byte tables, where
# the processor has them. The left-out ones would give next to nothing that these do not.
# HWY_AVX3_DL, which AMD and Intel share, stands for the AVX-512 of either.
set(PINCEL_LEFT_OUT_TARGETS HWY_SSSE3 HWY_AVX3 HWY_AVX3_ZEN4 HWY_AVX3_SPR CACHE STRING
  "Instruction sets that no kernel is compiled for, as Highway calls them")
list(JOIN PINCEL_LEFT_OUT_TARGETS "|" left_out)
# The resource compiler cannot read such a definition.
target_compile_definitions(pincel_settings INTERFACE
  HWY_WANT_AVX3_DL "$<$<COMPILE_LANGUAGE:CXX>:HWY_DISABLED_TARGETS=(${left_out})>")
if(PINCEL_ALL_TARGETS)
  target_compile_definitions(pincel_settings INTERFACE HWY_COMPILE_ALL_ATTAINABLE)
endif()
