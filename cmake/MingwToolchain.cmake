# Windows x64 from Debian: the compiler of g++-mingw-w64-x86-64-posix, and the libraries that
# scripts/windows-libraries makes. Programs run under Wine.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(tambra_triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${tambra_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${tambra_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${tambra_triple}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

get_filename_component(tambra_libraries ${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries ABSOLUTE)
# Behind what the command line names, a Qt for instance.
list(APPEND CMAKE_FIND_ROOT_PATH ${tambra_libraries} /usr/${tambra_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${tambra_libraries}/lib/pkgconfig)
# The archive beside it would be found second, behind the import library of a DLL.
set(ZLIB_LIBRARY /usr/${tambra_triple}/lib/libz.a CACHE FILEPATH "")

# The program stands alone: the C++ library and the threads are part of it.
foreach(kind EXE MODULE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT -static)
endforeach()
