# SPDX-License-Identifier: BSD-3-Clause
cmake_minimum_required(VERSION 3.25)
# Installs the build into a temporary prefix, then builds and runs a C consumer twice:
# with the flags from pkg-config and through find_package(krojmx).
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(run_out "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
file(GLOB pcdir ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
file(GLOB libdir ${prefix}/lib* ${prefix}/lib/*-linux-gnu)
foreach(f libkrojmx.so libkrojmx.so.5.1 libkrojmx.so.5.1.1)
  file(GLOB found ${prefix}/lib*/${f} ${prefix}/lib/*/${f})
  if(NOT found)
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

set(san_flags "")
set(run_env "")
if(SANITIZE)
  set(san_flags -fsanitize=${SANITIZE})
  set(run_env ASAN_OPTIONS=verify_asan_link_order=0)
endif()

set(ENV{PKG_CONFIG_PATH} "${pcdir}")
run(pkg-config --cflags --libs krojmx)
string(STRIP "${run_out}" pc_flags)
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
run(${C_COMPILER} -std=c99 -Wall -Werror ${san_flags} ${SOURCE_DIR}/consumer.c ${pc_flags}
    -o ${WORK_DIR}/consumer_pc)
run(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${libdir}" ${run_env} ${WORK_DIR}/consumer_pc)
message(STATUS "pkg-config consumer: ${run_out}")

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/cmake-build -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_C_COMPILER=${C_COMPILER} "-DCMAKE_C_FLAGS=${san_flags}"
    "-DCMAKE_EXE_LINKER_FLAGS=${san_flags}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${CMAKE_COMMAND} -E env ${run_env} ${WORK_DIR}/cmake-build/consumer)
message(STATUS "find_package consumer: ${run_out}")
