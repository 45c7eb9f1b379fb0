# Installs the package, moves the installed tree, and builds and runs a program against it: once by find_package, once
# by pkg-config. Then looks at what the program loads.
#
#   cmake -D BUILD=… -D SOURCE=… -D GENERATOR=… -D COMPILER=… -D CONFIG=… -P PackageTest.cmake

include("${CMAKE_CURRENT_LIST_DIR}/Run.cmake")

function(expect_exchange program)
  run("${program}" "${SCRATCH}/relay.sock")
  string(STRIP "${output}" output)
  if(NOT output STREQUAL [[{"ok":true,"type":"confirm"}]])
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()

function(expect_no_toolkit program)
  run(ldd "${program}")
  if(NOT output MATCHES "libicuuc" OR NOT output MATCHES "libc\\.so")
    message(FATAL_ERROR "not the list that was expected: ${output}")
  endif()
  if(output MATCHES "lib(gtk|gdk|adwaita|webkit|javascriptcore|soup|glib|gobject|gio|gmodule)[^\n]*")
    message(FATAL_ERROR "${program} loads ${CMAKE_MATCH_0}")
  endif()
  run(readelf -d "${program}")
  if(output MATCHES "(RPATH|RUNPATH)[^\n]*")
    message(FATAL_ERROR "${program} looks for libraries in a place of its own: ${CMAKE_MATCH_0}")
  endif()
endfunction()

# Short, because a socket's path is.
execute_process(COMMAND mktemp -d /tmp/keyloft-XXXXXX OUTPUT_VARIABLE SCRATCH OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${SCRATCH}/first" --component KeyloftCoreRelay)
file(RENAME "${SCRATCH}/first" "${SCRATCH}/prefix")

run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${SCRATCH}/build" -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${SCRATCH}/prefix"
  "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_BUILD_TYPE=${CONFIG}")
run("${CMAKE_COMMAND}" --build "${SCRATCH}/build")
expect_exchange("${SCRATCH}/build/consumer")
expect_no_toolkit("${SCRATCH}/build/consumer")

file(GLOB_RECURSE description "${SCRATCH}/prefix/*/keyloftcore-relay.pc")
get_filename_component(descriptions "${description}" DIRECTORY)
set(ENV{PKG_CONFIG_PATH} "${descriptions}")
run(pkg-config --cflags --libs keyloftcore-relay)
separate_arguments(flags UNIX_COMMAND "${output}")
run("${COMPILER}" -std=c++23 -Wall -Wextra -Werror "${SOURCE}/consumer.cpp" -o "${SCRATCH}/by-pkg-config" ${flags})
expect_exchange("${SCRATCH}/by-pkg-config")
expect_no_toolkit("${SCRATCH}/by-pkg-config")

expect_headers_alone("${SCRATCH}/prefix/include/keyloft" "${COMPILER}")
file(REMOVE_RECURSE "${SCRATCH}")
