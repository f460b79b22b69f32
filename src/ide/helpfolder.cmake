# SPDX-License-Identifier: GPL-3.0-or-later
# Makes the help folder of a build tree. A link in its place leads to the sources, where nothing may be written.
# Run as: cmake -P helpfolder.cmake FOLDER
if(IS_SYMLINK ${CMAKE_ARGV3})
  file(REMOVE ${CMAKE_ARGV3})
endif()
file(MAKE_DIRECTORY ${CMAKE_ARGV3})
