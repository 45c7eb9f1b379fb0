# Installs the package, moves the installed tree, and builds and runs a program against it, once with find_package and
# once with pkg-config. Then checks which libraries the program loads.
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

install_elsewhere(KeyloftCoreRelay)

build_by_find_package("${SOURCE}")
expect_exchange("${SCRATCH}/build/consumer")
expect_no_toolkit("${SCRATCH}/build/consumer")

build_by_pkg_config(keyloftcore-relay "${SOURCE}")
expect_exchange("${SCRATCH}/by-pkg-config")
expect_no_toolkit("${SCRATCH}/by-pkg-config")

expect_headers_alone("${SCRATCH}/prefix/include/keyloft" "${COMPILER}")
file(REMOVE_RECURSE "${SCRATCH}")
