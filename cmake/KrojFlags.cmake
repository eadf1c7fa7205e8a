# SPDX-License-Identifier: BSD-3-Clause
# Compiler flags shared by the library, tests and tools.

# Results must be bit-exact: never contract a*b+c into a fused multiply-add.
add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-ffp-contract=off>)

set(KROJ_LIB_CXX_FLAGS -Wall -Wextra -Wno-unused-parameter -fno-exceptions -fno-rtti)

if(KROJ_SANITIZE)
  message(STATUS "krojmx: sanitizers ${KROJ_SANITIZE}")
  add_compile_options(-fsanitize=${KROJ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KROJ_SANITIZE})
  # Linking the shared library against the sanitizer runtime needs the runtime at load time.
  set(CMAKE_SHARED_LINKER_FLAGS "${CMAKE_SHARED_LINKER_FLAGS}")
endif()
