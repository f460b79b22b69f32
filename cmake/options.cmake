# SPDX-License-Identifier: Apache-2.0
# Compiler and linker options that every target shares.
add_library(tarn_options INTERFACE)
target_compile_options(tarn_options INTERFACE
  -Wall -Wextra $<$<COMPILE_LANGUAGE:CXX>:-Wconversion>
  # g++ 12 warns falsely of overlapping copies in every "literal" + std::string once it optimises.
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict> -Werror -ffunction-sections
  # Descriptors are seen as kernel types and as those of the C interface.
  -fno-strict-aliasing)
target_include_directories(tarn_options INTERFACE ${CMAKE_SOURCE_DIR}/src)

find_program(MOLD mold)
if(MOLD)
  target_link_options(tarn_options INTERFACE -fuse-ld=mold)
endif()
if(TARNWICK_TINY)
  target_compile_definitions(tarn_options INTERFACE TARNWICK_TINY=1)
endif()
if(TARNWICK_SANITIZE)
  target_compile_options(tarn_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tarn_options INTERFACE -fsanitize=address,undefined)
  # With these sanitizers g++ 12 takes the states of the standard library's expressions for uninitialized.
  target_compile_options(tarn_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
if(TARNWICK_FUZZ)
  target_compile_options(tarn_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tarn_options INTERFACE -fsanitize=address,undefined)
endif()
