# Installs the session's package and its dependencies, moves the installed tree, and builds and runs a program against
# it, once with find_package and once with pkg-config.
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

install_elsewhere(KeyloftCoreRelay KeyloftCoreAuthSession)

build_by_find_package("${SOURCE}/AuthSession")
expect_ready("${SCRATCH}/build/consumer")

build_by_pkg_config(keyloftcore-authsession "${SOURCE}/AuthSession")
expect_ready("${SCRATCH}/by-pkg-config")

expect_headers_alone("${SCRATCH}/prefix/include/keyloft" "${COMPILER}")
file(REMOVE_RECURSE "${SCRATCH}")
