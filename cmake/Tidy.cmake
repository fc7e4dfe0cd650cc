# Target "tidy": clang-tidy over the product's sources, each again only after it or a header
# changed.

find_program(CLANG_TIDY clang-tidy)
if(CLANG_TIDY)
  file(GLOB_RECURSE tidy_sources CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
    Parts/*.cpp package/*.cpp references/*.cpp codecs/*.cpp filetypes/*.cpp app/*.cpp cli/*.cpp)
  file(GLOB_RECURSE tidy_headers CONFIGURE_DEPENDS
    Parts/*.h package/*.h references/*.h codecs/*.h filetypes/*.h app/*.h cli/*.h)
  list(FILTER tidy_sources EXCLUDE REGEX "_win\\.cpp$")
  set(tidy_stamps)
  foreach(source ${tidy_sources})
    set(stamp ${CMAKE_BINARY_DIR}/tidy/${source}.stamp)
    get_filename_component(folder ${stamp} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(OUTPUT ${stamp}
      COMMAND ${CLANG_TIDY} --quiet -p ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR}/${source}
      COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
      DEPENDS ${CMAKE_SOURCE_DIR}/${source} ${tidy_headers} ${CMAKE_SOURCE_DIR}/.clang-tidy
      COMMENT "Tidy ${source}" VERBATIM)
    list(APPEND tidy_stamps ${stamp})
  endforeach()
  add_custom_target(tidy DEPENDS ${tidy_stamps})
endif()
