# Installs the session's package and what it stands on, moves the installed tree, and builds and runs a program against
# it: once by find_package, once by pkg-config.
#
#   cmake -D BUILD=… -D SOURCE=… -D GENERATOR=… -D COMPILER=… -D CONFIG=… -P AuthSessionPackageTest.cmake

include("${CMAKE_CURRENT_LIST_DIR}/Run.cmake")

function(expect_ready program)
  run("${program}")
  string(STRIP "${output}" output)
  if(NOT output STREQUAL "ready")
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()

execute_process(COMMAND mktemp -d /tmp/keyloft-XXXXXX OUTPUT_VARIABLE SCRATCH OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
foreach(component KeyloftCoreRelay KeyloftCoreAuthSession)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${SCRATCH}/first" --component ${component})
endforeach()
file(RENAME "${SCRATCH}/first" "${SCRATCH}/prefix")

run("${CMAKE_COMMAND}" -S "${SOURCE}/AuthSession" -B "${SCRATCH}/build" -G "${GENERATOR}"
  "-DCMAKE_PREFIX_PATH=${SCRATCH}/prefix" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_BUILD_TYPE=${CONFIG}")
run("${CMAKE_COMMAND}" --build "${SCRATCH}/build")
expect_ready("${SCRATCH}/build/consumer")

file(GLOB_RECURSE description "${SCRATCH}/prefix/*/keyloftcore-authsession.pc")
get_filename_component(descriptions "${description}" DIRECTORY)
set(ENV{PKG_CONFIG_PATH} "${descriptions}")
run(pkg-config --cflags --libs keyloftcore-authsession)
separate_arguments(flags UNIX_COMMAND "${output}")
run("${COMPILER}" -std=c++23 -Wall -Wextra -Werror "${SOURCE}/AuthSession/consumer.cpp" -o "${SCRATCH}/by-pkg-config"
  ${flags})
expect_ready("${SCRATCH}/by-pkg-config")

expect_headers_alone("${SCRATCH}/prefix/include/keyloft" "${COMPILER}")
file(REMOVE_RECURSE "${SCRATCH}")
