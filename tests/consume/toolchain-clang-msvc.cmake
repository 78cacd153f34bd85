# Clang for MSVC hosts, without Microsoft's headers and libraries and what would need them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET i686-pc-windows-msvc)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_MSVC_RUNTIME_LIBRARY "")
set(CMAKE_CXX_FLAGS_INIT "-ffreestanding -fno-exceptions -fno-rtti")
set(CMAKE_CXX_STANDARD_LIBRARIES "" CACHE STRING "")
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "-Wl,/entry:Start,/subsystem:console,/nodefaultlib,/safeseh:no")
