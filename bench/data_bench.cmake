# SPDX-License-Identifier: Apache-2.0
# data_bench with its peers; without flex its scanner stands alone.
pkg_check_modules(EXPAT QUIET IMPORTED_TARGET expat)
pkg_check_modules(PUGIXML QUIET IMPORTED_TARGET pugixml)
pkg_check_modules(SHAPELIB QUIET IMPORTED_TARGET shapelib)
find_library(leveldb_library leveldb)
if(NOT EXPAT_FOUND OR NOT PUGIXML_FOUND OR NOT SHAPELIB_FOUND OR NOT leveldb_library)
  return()
endif()
add_executable(data_bench EXCLUDE_FROM_ALL data_bench.cpp data_xml.cpp data_csv.cpp data_scanner.cpp
  data_xbase.cpp data_disk.cpp disk_kernel.cpp disk_peers.cpp disk_rows.cpp)
target_link_libraries(data_bench PRIVATE tarnwick benchmark::benchmark PkgConfig::SQLITE PkgConfig::EXPAT
  PkgConfig::PUGIXML PkgConfig::SHAPELIB ${leveldb_library})

find_package(FLEX QUIET)
if(FLEX_FOUND)
  flex_target(scanner_peer scanner_peer.l ${CMAKE_CURRENT_BINARY_DIR}/scanner_peer.c)
  add_library(scanner_peer OBJECT EXCLUDE_FROM_ALL ${FLEX_scanner_peer_OUTPUTS})
  target_include_directories(scanner_peer PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_compile_options(scanner_peer PRIVATE -w)
  target_link_libraries(data_bench PRIVATE scanner_peer)
  target_compile_definitions(data_bench PRIVATE BENCH_FLEX)
endif()
