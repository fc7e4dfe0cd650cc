# Warnings, sanitizers and the rule "one folder, one library" in one place.

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

add_library(tambra_options INTERFACE)
target_compile_options(tambra_options INTERFACE -Wall -Wextra -Wconversion -Wshadow
  $<$<BOOL:${TAMBRA_WERROR}>:-Werror>)
# GCC 12 warns of copies that overlap where std::string's operators are inlined; they do not.
target_compile_options(tambra_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(tambra_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(tambra_options INTERFACE TAMBRA_VERSION="${PROJECT_VERSION}"
  $<$<BOOL:${WIN32}>:NOMINMAX>)

if(TAMBRA_SANITIZE)
  add_compile_options(-fsanitize=${TAMBRA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TAMBRA_SANITIZE})
endif()
if(TAMBRA_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# Files named *_avx2.cpp are built where the processor may have AVX2, with its instructions; callers
# ask the processor first. Such a file defines nothing but its kernels, so that no inline function
# of it is taken for that of a file which runs everywhere.
string(TOLOWER "${CMAKE_SYSTEM_PROCESSOR}" tambra_processor)
if(tambra_processor MATCHES "^(x86_64|amd64)$")
  set(TAMBRA_AVX2 ON)
  set(tambra_kernel_options -mavx2 -mbmi -mbmi2 -mlzcnt)
  # On Windows the stack is aligned to 16 bytes, which g++ forgets when it keeps a value of 32 bytes
  # there: it moves it by instructions that fail half of the time. The assembler makes them those that
  # take any address and are no slower.
  if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND tambra_kernel_options -Wa,-muse-unaligned-vector-move)
  endif()
endif()

# tambra_own_platform(VARIABLE): of the platform files in a list of sources only this system's.
macro(tambra_own_platform variable)
  if(WIN32)
    list(FILTER ${variable} EXCLUDE REGEX "_posix\\.cpp$")
  else()
    list(FILTER ${variable} EXCLUDE REGEX "_win\\.cpp$")
  endif()
endmacro()

# tambra_library(NAME FOLDER [OWN_HEADERS]): every .cpp below FOLDER, of platform files only this
# system's. With OWN_HEADERS it precompiles headers of its own.
function(tambra_library name folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
  tambra_own_platform(sources)
  if(TAMBRA_AVX2)
    set(kernels ${sources})
    list(FILTER kernels INCLUDE REGEX "_avx2\\.cpp$")
    set_source_files_properties(${kernels} PROPERTIES COMPILE_OPTIONS "${tambra_kernel_options}")
  else()
    list(FILTER sources EXCLUDE REGEX "_avx2\\.cpp$")
  endif()
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC tambra_options)
  target_compile_definitions(${name} PRIVATE $<$<BOOL:${TAMBRA_AVX2}>:TAMBRA_AVX2>)
  # What the fuzz targets find their way by.
  if(TAMBRA_FUZZ AND NOT name MATCHES "^(cli|gui)$")
    target_compile_options(${name} PRIVATE
      -fsanitize-coverage=inline-8bit-counters,pc-table,indirect-calls,trace-cmp)
  endif()
  # The standard library's headers are most of what a small file compiles: read once for all.
  if(TARGET tambra_headers AND NOT "OWN_HEADERS" IN_LIST ARGN)
    target_precompile_headers(${name} REUSE_FROM tambra_headers)
    set_source_files_properties(${kernels} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()
