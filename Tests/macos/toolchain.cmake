# Compiles for macOS where there is none: Clang's Apple target, the C++ library's headers of LLVM 16 and, of the system,
# the declarations in SDK/. What comes out is linked as far as our own symbols go, to see that none is missing.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0)
set(CMAKE_OSX_SYSROOT "")
set(CMAKE_CXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_OBJCXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_CXX_COMPILER_TARGET arm64-apple-macos13.0)
set(CMAKE_OBJCXX_COMPILER_TARGET arm64-apple-macos13.0)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST) # no test can be asked what it holds
set(CMAKE_INSTALL_NAME_TOOL ":")

# Headers of libraries that are the same on every system; a folder of their own keeps the C library's away.
set(libraries "${CMAKE_BINARY_DIR}/libraries")
file(MAKE_DIRECTORY "${libraries}")
foreach(library unicode nlohmann benchmark gtest gmock)
  file(CREATE_LINK "/usr/include/${library}" "${libraries}/${library}" SYMBOLIC)
endforeach()

set(flags "-nostdinc++ -nostdlibinc -isystem ${CMAKE_CURRENT_LIST_DIR}/libcxx -isystem /usr/lib/llvm-16/include/c++/v1 -isystem ${CMAKE_CURRENT_LIST_DIR}/SDK")
string(APPEND flags " -isystem ${libraries}")
set(CMAKE_CXX_FLAGS_INIT "${flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${flags}")

list(PREPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}/packages")

list(PREPEND CMAKE_PROGRAM_PATH "${CMAKE_CURRENT_LIST_DIR}/tools")

# No archiver here knows Apple's objects: an archive is the list of its objects, which the link takes whole.
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_ARCHIVE_CREATE "echo <OBJECTS> > <TARGET>")
  set(CMAKE_${language}_ARCHIVE_FINISH "")
  set(CMAKE_${language}_LINK_EXECUTABLE "${CMAKE_CURRENT_LIST_DIR}/link <TARGET> <OBJECTS> <LINK_LIBRARIES>")
endforeach()
