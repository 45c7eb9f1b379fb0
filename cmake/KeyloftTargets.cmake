# Defines the options that are common to all targets, the functions that add targets, and KEYLOFT_SYSTEM, the
# implementation of Platform that is built.

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  set(KEYLOFT_SYSTEM linux)
elseif(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
  set(KEYLOFT_SYSTEM macos)
  enable_language(OBJCXX)
  set(CMAKE_OBJCXX_STANDARD 23)
  set(CMAKE_OBJCXX_EXTENSIONS OFF)
else()
  message(FATAL_ERROR "Keyloft has no Platform for ${CMAKE_SYSTEM_NAME}: Linux and macOS only.")
endif()

# Older compilers lack std::expected. Report that here, before they fail in the middle of the build.
include(CheckCXXSourceCompiles)
set(CMAKE_CXX_STANDARD 23)
check_cxx_source_compiles("#include <expected>
  int main() { return std::expected<int, int>(0).value(); }" KEYLOFT_HAS_EXPECTED)
unset(CMAKE_CXX_STANDARD)
if(NOT KEYLOFT_HAS_EXPECTED)
  message(FATAL_ERROR "Keyloft needs GCC 12, Clang 19 or Xcode 15, or later: "
    "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} ${CMAKE_OSX_SYSROOT} has no std::expected.")
endif()

add_library(KeyloftOptions INTERFACE)
target_compile_features(KeyloftOptions INTERFACE cxx_std_23)
target_compile_options(KeyloftOptions INTERFACE -Wall -Wextra)
# GCC 12 warns of overlapping copies in std::string concatenation: https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105651
target_compile_options(KeyloftOptions INTERFACE
  "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>")
if(KEYLOFT_SYSTEM STREQUAL "macos")
  # Warn about undeclared selectors, partly implemented protocols, and unchecked use of API newer than the oldest macOS.
  set(objective_c -fobjc-arc -Wundeclared-selector -Wprotocol -Wincomplete-implementation -Wstrict-selector-match
                  -Wsuper-class-method-mismatch -Wnullable-to-nonnull-conversion -Wimplicit-retain-self
                  -Warc-repeated-use-of-weak -Wunguarded-availability)
  target_compile_options(KeyloftOptions INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:${objective_c}>" -Wunguarded-availability)
endif()
target_include_directories(KeyloftOptions INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
if(KEYLOFT_SANITIZE)
  target_compile_options(KeyloftOptions INTERFACE "-fsanitize=${KEYLOFT_SANITIZE}" -fno-omit-frame-pointer
                                                  -fno-sanitize-recover=all)
  # Clang 19's vptr check probes memory through a pipe. If no file descriptor is available, as in some tests, it
  # reports that valid objects have the wrong type (not reported).
  target_compile_options(KeyloftOptions INTERFACE -fno-sanitize=vptr)
  target_link_options(KeyloftOptions INTERFACE "-fsanitize=${KEYLOFT_SANITIZE}")
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# keyloft_library(NAME ALIAS SOURCES … [PUBLIC deps…] [PRIVATE deps…])
#
# Adds a static library that other targets link as ALIAS, for example Platform::Foundation.
function(keyloft_library name alias)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "SOURCES;PUBLIC;PRIVATE")
  add_library(${name} STATIC ${arg_SOURCES})
  add_library(${alias} ALIAS ${name})
  # Do not export KeyloftOptions: programs that link an installed library choose their own warnings.
  target_link_libraries(${name} PUBLIC "$<BUILD_INTERFACE:KeyloftOptions>" ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  target_compile_features(${name} PUBLIC cxx_std_23)
endfunction()

# keyloft_frameworks(NAME FRAMEWORK…)
#
# Links a library and its dependents to frameworks of macOS.
function(keyloft_frameworks name)
  foreach(framework IN LISTS ARGN)
    target_link_libraries(${name} PUBLIC "-framework ${framework}")
  endforeach()
endfunction()

# keyloft_test(NAME [DISPLAY | PROVIDER_NETWORK] [TIMEOUT seconds] SOURCES … LINK …)
#
# Adds a GoogleTest program. Each of its tests is a CTest test that runs in its own process. DISPLAY gives it a display
# session. PROVIDER_NETWORK also gives it a network with the identity provider's hosts.
function(keyloft_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "DISPLAY;PROVIDER_NETWORK" "TIMEOUT" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  if(arg_DISPLAY)
    target_link_libraries(${name} PRIVATE KeyloftOptions ${arg_LINK} KeyloftDisplayTestMain GTest::gtest)
    set(kind display)
  elseif(arg_PROVIDER_NETWORK)
    target_link_libraries(${name} PRIVATE KeyloftOptions ${arg_LINK} KeyloftProviderNetworkTestMain GTest::gtest)
    set(kind display)
  else()
    target_link_libraries(${name} PRIVATE KeyloftOptions ${arg_LINK} GTest::gtest GTest::gtest_main)
    set(kind plain)
  endif()
  # Half of the code is tests, and optimizing a test takes longer than it saves.
  target_compile_options(${name} PRIVATE -O0)
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  include(GoogleTest)
  # A critical message of GLib, GTK or WebKitGTK aborts the test.
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${kind} TIMEOUT ${arg_TIMEOUT} ENVIRONMENT G_DEBUG=fatal-criticals)
  # Also run all tests of the program in one process: no test may depend on the side effects of another test.
  if(NOT KEYLOFT_SANITIZE)
    add_test(NAME ${name}.inOneGo COMMAND ${name})
    set_tests_properties(${name}.inOneGo PROPERTIES LABELS one-go TIMEOUT 1200)
  endif()
endfunction()

# keyloft_benchmark(NAME SOURCES … LINK …): adds a Google Benchmark program.
function(keyloft_benchmark name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE KeyloftOptions ${arg_LINK} benchmark::benchmark benchmark::benchmark_main)
endfunction()

# keyloft_fuzzer(NAME SOURCES … LINK …): adds a libFuzzer target.
function(keyloft_fuzzer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE KeyloftOptions ${arg_LINK})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
