# Calls keyloft_least_system with a fake otool that prints the listings of this test.
#
#   cmake -D SOURCE=… -P LeastSystemTest.cmake

cmake_minimum_required(VERSION 3.25)
list(APPEND CMAKE_MODULE_PATH "${SOURCE}/cmake")
include(KeyloftLeastSystem)

execute_process(COMMAND mktemp -d OUTPUT_VARIABLE scratch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE "${scratch}/otool" [=[#!/bin/sh
[ "$1" = -l ] && shift && cat "$@"
]=])
file(CHMOD "${scratch}/otool" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
set(KEYLOFT_OTOOL "${scratch}/otool")
set(failures)

# expect(LEAST FLOOR LISTING…) expects that keyloft_least_system returns LEAST for FLOOR and libraries with these
# listings.
function(expect expected floor)
  set(libraries)
  foreach(listing IN LISTS ARGN)
    list(LENGTH libraries index)
    file(WRITE "${scratch}/${index}.a" "${listing}")
    list(APPEND libraries "${scratch}/${index}.a")
  endforeach()
  keyloft_least_system(least "${floor}" ${libraries})
  if(NOT least STREQUAL expected)
    list(APPEND failures "${least} instead of ${expected} for a floor of ${floor} and ${ARGN}")
    set(failures "${failures}" PARENT_SCOPE)
  endif()
endfunction()

# object(OUTPUT COMMAND VERSION-LINES) sets OUTPUT to the listing of an object file that has the load command COMMAND
# with the lines VERSION-LINES, and other load commands.
function(object output command versions)
  set(${output} "library.a(object.o):
Load command 0
      cmd LC_SEGMENT_64
  cmdsize 312
Load command 1
      cmd ${command}
${versions}
Load command 2
      cmd LC_SOURCE_VERSION
  cmdsize 16
  version 99.1
Load command 3
          cmd LC_LOAD_DYLIB
      current version 1600.0.0
compatibility version 98.0.0
" PARENT_SCOPE)
endfunction()

object(for14 LC_BUILD_VERSION "  cmdsize 32
 platform 1
    minos 14.0
      sdk 26.2
   ntools 1
     tool 3
  version 1053.12")
object(for15 LC_BUILD_VERSION "  cmdsize 32
 platform macos
      sdk 26.2
    minos 15.0
   ntools 1
     tool ld
  version 1053.12")
object(for13 LC_BUILD_VERSION "  cmdsize 24\n platform 1\n    minos 13.0\n      sdk 14.2\n   ntools 0")
object(for13_4 LC_BUILD_VERSION "  cmdsize 24\n platform 1\n    minos 13.4\n      sdk n/a\n   ntools 0")
object(for10_15 LC_VERSION_MIN_MACOSX "  cmdsize 16\n  version 10.15\n      sdk 12.3")
object(for14_2 LC_VERSION_MIN_MACOSX "  cmdsize 16\n  version 14.2\n      sdk n/a")
set(data "library.a(data.o):\nLoad command 0\n      cmd LC_SEGMENT_64\n  cmdsize 232\n")

expect(13.0 13.0 "${for13}")
expect(14.0 13.0 "${for14}")
expect(15.0 13.0 "${for15}")
expect(13.4 13.0 "${for13_4}")
expect(14.2 13.0 "${for14_2}")
# Versions are compared as numbers, not as strings.
expect(13.0 13.0 "${for10_15}")
expect(13.0 9.0 "${for13}")
# The result is the greatest version, regardless of its position.
expect(15.0 13.0 "${for14}${for15}${for13}")
expect(15.0 13.0 "${for13}${data}" "${for15}${data}" "${for14}")
expect(14.0 13.0 "${for14}" "${data}")
# The result is never less than the floor.
expect(16.0 16.0 "${for14}")

# It is an error if no object in the libraries has a version.
foreach(listing "${data}" "")
  file(WRITE "${scratch}/data.a" "${listing}")
  execute_process(COMMAND "${CMAKE_COMMAND}" -D "KEYLOFT_OTOOL=${scratch}/otool" -D "CMAKE_MODULE_PATH=${SOURCE}/cmake"
    -D "LIBRARY=${scratch}/data.a" -P "${CMAKE_CURRENT_LIST_DIR}/LeastSystemOf.cmake"
    RESULT_VARIABLE result ERROR_VARIABLE errors)
  if(result EQUAL 0 OR NOT errors MATCHES "No object in [^\n]*data.a names the\n? *macOS")
    list(APPEND failures "without a version: ${result} ${errors}")
  endif()
endforeach()
execute_process(COMMAND "${CMAKE_COMMAND}" -D "KEYLOFT_OTOOL=${scratch}/otool" -D "CMAKE_MODULE_PATH=${SOURCE}/cmake"
  -D "LIBRARY=${scratch}/absent.a" -P "${CMAKE_CURRENT_LIST_DIR}/LeastSystemOf.cmake"
  RESULT_VARIABLE result ERROR_VARIABLE errors)
if(result EQUAL 0 OR NOT errors MATCHES "otool cannot read")
  list(APPEND failures "of a library that is not there: ${result} ${errors}")
endif()

file(REMOVE_RECURSE "${scratch}")
if(failures)
  list(JOIN failures "\n" failures)
  message(FATAL_ERROR "${failures}")
endif()
