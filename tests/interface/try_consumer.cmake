# Installs BUILD_DIR to a prefix of its own, moves the prefix, then builds and runs the consumer in SOURCE_DIR
# against it, once through the CMake package and once through pkg-config.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK_DIR} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/first)
file(RENAME ${WORK_DIR}/first ${WORK_DIR}/prefix)

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/by_cmake -G Ninja
  -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/by_cmake)
run(${CMAKE_COMMAND} -E env KXI_KADCDB_DIR=${WORK_DIR} ${WORK_DIR}/by_cmake/consumer by_cmake.fmd)

find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${WORK_DIR}/prefix/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --modversion fmdtoolkit
  OUTPUT_VARIABLE found_version OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT found_version STREQUAL VERSION)
  message(FATAL_ERROR "pkg-config tells version ${found_version}, built is ${VERSION}")
endif()
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs fmdtoolkit
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${C_COMPILER} -std=c11 -Wall -Wextra -Wpedantic -Werror ${SOURCE_DIR}/consumer.c -o by_pkg_config ${flags})
run(${CMAKE_COMMAND} -E env KXI_KADCDB_DIR=${WORK_DIR} LD_LIBRARY_PATH=${WORK_DIR}/prefix/${LIBDIR}
  ./by_pkg_config by_pkg_config.fmd)

# The installed command line finds the library beside it.
if(EXISTS ${BUILD_DIR}/bin/fmdtool)
  run(${WORK_DIR}/prefix/bin/fmdtool --help)
endif()
