# Cross-compiling for 64-bit Windows with Debian's mingw-w64. Always the -posix compilers: std::thread and
# std::mutex are missing from the others.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(korvane_triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${korvane_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${korvane_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${korvane_triplet}-windres)
set(CMAKE_AR ${korvane_triplet}-gcc-ar-posix)
set(CMAKE_RANLIB ${korvane_triplet}-gcc-ranlib-posix)

if(NOT DEPS_PREFIX)
  set(DEPS_PREFIX "$ENV{DEPS_PREFIX}")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DEPS_PREFIX)
set(CMAKE_FIND_ROOT_PATH /usr/${korvane_triplet} ${DEPS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../tools/wine_exe")
set(ZLIB_USE_STATIC_LIBS ON) # else FindZLIB takes the import library of a DLL
