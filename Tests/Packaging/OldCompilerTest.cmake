# Configures with a C++ library without std::expected and expects exactly one error, which names the required compilers.
#
#   cmake -D SOURCE=… -D COMPILER=… -P OldCompilerTest.cmake

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND mktemp -d OUTPUT_VARIABLE scratch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE "${scratch}/old/expected" "#include <version>\n")

execute_process(COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${scratch}/build" -D "CMAKE_CXX_COMPILER=${COMPILER}"
    -D "CMAKE_CXX_FLAGS=-isystem ${scratch}/old" -D CMAKE_CXX_COMPILER_LAUNCHER=
  RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
file(REMOVE_RECURSE "${scratch}")
if(result EQUAL 0 OR NOT errors MATCHES "needs GCC 12, Clang 19 or Xcode 15, or later:")
  message(FATAL_ERROR "${result}\n${errors}")
endif()
string(REGEX MATCHALL "CMake Error" complaints "${errors}")
list(LENGTH complaints count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "${count} complaints:\n${errors}")
endif()
