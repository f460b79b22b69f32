# SPDX-License-Identifier: Apache-2.0
# tarn_sources(VARIABLE [NOT REGEX...]): all .cpp files of the current folder and of the rooms below it, without those
# whose path within the folder matches.
function(tarn_sources variable)
  cmake_parse_arguments(but "" "" "NOT" ${ARGN})
  file(GLOB_RECURSE sources RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(pattern IN LISTS but_NOT)
    list(FILTER sources EXCLUDE REGEX ${pattern})
  endforeach()
  list(TRANSFORM sources PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# tarn_layer(NAME [NOT REGEX...]): an object library of them.
function(tarn_layer name)
  tarn_sources(sources ${ARGN})
  add_library(tarn_${name} OBJECT ${sources})
  target_link_libraries(tarn_${name} PUBLIC tarn_options)
endfunction()
