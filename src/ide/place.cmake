# SPDX-License-Identifier: GPL-3.0-or-later
# Lays what the environment reads at run time beside the executable of a build tree.
foreach(file IN ITEMS mainicon.ico mainicon.svg logo.bmp logo.svg open2.bmp open3.bmp)
  file(COPY_FILE ${SOURCE_DIR}/src/ide/pictures/${file} ${BIN_DIR}/${file} ONLY_IF_DIFFERENT)
endforeach()
file(COPY ${SOURCE_DIR}/src/toolchain/proof/tarnwick-proof DESTINATION ${BIN_DIR})
if(NOT EXISTS ${BIN_DIR}/ide.ini)
  file(COPY_FILE ${SOURCE_DIR}/src/ide/ide.ini ${BIN_DIR}/ide.ini)
endif()
file(COPY_FILE ${SOURCE_DIR}/src/ide/ide.ini ${BIN_DIR}/ide.bak ONLY_IF_DIFFERENT)
if(NOT EXISTS ${BIN_DIR}/examples)
  file(CREATE_LINK ${SOURCE_DIR}/examples ${BIN_DIR}/examples SYMBOLIC)
endif()
