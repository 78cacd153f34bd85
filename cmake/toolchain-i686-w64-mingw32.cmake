# Cross-builds the 32-bit Windows DLL with MinGW-w64.
#
# The win32 thread model is asked for first: its runtime needs nothing but system DLLs and libgcc.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(triple i686-w64-mingw32)
find_program(PINCEL_MINGW_CC NAMES ${triple}-gcc-win32 ${triple}-gcc REQUIRED)
find_program(PINCEL_MINGW_CXX NAMES ${triple}-g++-win32 ${triple}-g++ REQUIRED)
set(CMAKE_C_COMPILER ${PINCEL_MINGW_CC})
set(CMAKE_CXX_COMPILER ${PINCEL_MINGW_CXX})
set(CMAKE_RC_COMPILER ${triple}-windres)

# Exact arithmetic needs SSE (x87 keeps excess precision). Callers align the stack to four bytes
# only, so every function must realign it before it spills a vector.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mincoming-stack-boundary=2")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mincoming-stack-boundary=2")

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-under-wine)
