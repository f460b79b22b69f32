# SPDX-License-Identifier: Apache-2.0
# Reads the include lines of all sources and fails on one that does not point downward: from a layer to one above it,
# from a room of the kernel to one above it, into a private header (*_internal.h) of another room, or to Qt outside the
# view. Run as: cmake -DSOURCE_DIR=... -P layering_test.cmake
cmake_policy(SET CMP0057 NEW)  # IN_LIST
set(allowed_os os)
set(allowed_platform platform os)
set(allowed_kernel kernel platform os)
set(allowed_library library kernel platform os)
set(allowed_ide ide library kernel platform os)
set(allowed_toolchain toolchain library kernel platform os)
set(allowed_tarn_data tarn_data library kernel platform os)

# The rooms of the kernel, bottom first.
set(kernel_rooms run windows text values lists index tables data debug start api)
# Includes that point up all the same, each as "file|header", with its reason.
set(upward
  # The rows of a list may be those of an Xbase file: rowfile_xbase is the one way there, and a row file asks it.
  "src/kernel/lists/rowfile_handle.cpp|kernel/data/xbase/xbase.h"
  "src/kernel/lists/rowfile_xbase.cpp|kernel/data/xbase/xbase.h"
  # A table tells of itself, and is compared with, type information text, which describes the kinds of all rooms.
  "src/kernel/tables/tables_file_check.cpp|kernel/data/typeinfo/typeinfo.h"
  "src/kernel/tables/tables_file_index.cpp|kernel/data/typeinfo/typeinfo.h"
  # Which file a table stands in is known by the formats' one table of extensions.
  "src/kernel/tables/tables_file_check.cpp|kernel/data/format.h"
)

set(faults "")
set(count 0)
set(used "")

# The room of a file or header that is given from src/ on: its folder.
function(room_of path result)
  get_filename_component(folder ${path} DIRECTORY)
  set(${result} ${folder} PARENT_SCOPE)
endfunction()

function(check_kernel_rooms shown header)
  if(NOT shown MATCHES "^src/kernel/([a-z]+)/")
    return()
  endif()
  list(FIND kernel_rooms ${CMAKE_MATCH_1} from)
  if(from LESS 0)
    set(faults ${faults} "${shown}: ${CMAKE_MATCH_1} is no room of the kernel that this test knows" PARENT_SCOPE)
    return()
  endif()
  if(NOT header MATCHES "^kernel/([a-z]+)/")
    return()
  endif()
  list(FIND kernel_rooms ${CMAKE_MATCH_1} to)
  if(to GREATER from)
    if("${shown}|${header}" IN_LIST upward)
      set(used ${used} "${shown}|${header}" PARENT_SCOPE)
    else()
      set(faults ${faults} "${shown}: ${header} stands in a room above" PARENT_SCOPE)
    endif()
  endif()
endfunction()

foreach(layer IN ITEMS os platform kernel library ide toolchain tarn_data)
  file(GLOB_RECURSE sources ${SOURCE_DIR}/src/${layer}/*.cpp ${SOURCE_DIR}/src/${layer}/*.h ${SOURCE_DIR}/src/${layer}/*.c)
  foreach(source IN LISTS sources)
    math(EXPR count "${count} + 1")
    file(RELATIVE_PATH shown ${SOURCE_DIR} ${source})
    room_of(${shown} room)
    file(STRINGS ${source} lines REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS lines)
      if(line MATCHES "<(Q[A-Z]|Qsci|Qt)" AND NOT shown MATCHES "^src/(platform/qt|ide/help/window)/")
        list(APPEND faults "${shown}: ${line}: only src/platform/qt and src/ide/help/window may use Qt")
      endif()
      if(NOT line MATCHES "\"(([a-z_]+)/[^\"]+)\"")
        continue()
      endif()
      set(header ${CMAKE_MATCH_1})
      set(other ${CMAKE_MATCH_2})
      if(NOT other IN_LIST allowed_${layer})
        list(APPEND faults "${shown}: ${line}: ${layer} must not use ${other}")
      endif()
      check_kernel_rooms(${shown} ${header})
      room_of(src/${header} its_room)
      if(header MATCHES "_internal[.]h$" AND NOT its_room STREQUAL room)
        list(APPEND faults "${shown}: ${line}: this header is private to its room")
      endif()
      if(other STREQUAL platform AND layer MATCHES "^(library|ide)$"
         AND NOT header MATCHES "^platform/(object|registry|resources/resource)[.]h$")
        list(APPEND faults "${shown}: ${line}: use kernel/windows/windowing.h, which sets the error cell")
      endif()
    endforeach()
  endforeach()
endforeach()
# Tests reach into a room, too, and keep to its door.
file(GLOB_RECURSE tests ${SOURCE_DIR}/tests/*.cpp ${SOURCE_DIR}/tests/*.h ${SOURCE_DIR}/bench/*.cpp)
foreach(source IN LISTS tests)
  file(STRINGS ${source} lines REGEX "^#include \".*_internal[.]h\"")
  foreach(line IN LISTS lines)
    file(RELATIVE_PATH shown ${SOURCE_DIR} ${source})
    list(APPEND faults "${shown}: ${line}: this header is private to its room")
  endforeach()
endforeach()

foreach(exception IN LISTS upward)
  if(NOT exception IN_LIST used)
    list(APPEND faults "${exception}: no such include any more; take it out of this test")
  endif()
endforeach()
if(count LESS 400)
  message(FATAL_ERROR "Only ${count} sources were found below ${SOURCE_DIR}/src")
endif()
if(faults)
  list(JOIN faults "\n" text)
  message(FATAL_ERROR "${text}")
endif()
list(LENGTH upward exceptions)
message(STATUS "${count} sources, every include points downward, but ${exceptions} that are explained")
