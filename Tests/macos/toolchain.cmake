# Compiles for macOS without a Mac: with Clang's Apple target, the C++ library headers of LLVM 16, and the declarations
# in SDK/ in place of Apple's SDK. The link checks only that no symbol of the project is missing.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0)
set(CMAKE_OSX_SYSROOT "")
set(CMAKE_CXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_OBJCXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_CXX_COMPILER_TARGET arm64-apple-macos13.0)
set(CMAKE_OBJCXX_COMPILER_TARGET arm64-apple-macos13.0)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST) # test programs cannot run here to list their tests
set(CMAKE_INSTALL_NAME_TOOL ":")

# Link the headers of portable libraries into a separate folder, because their usual folder also contains the headers of
# the Linux C library.
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

# The available archivers do not support Apple's object format. Write a list of object files instead of an archive.
# Tests/macos/link includes every object in the list.
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_ARCHIVE_CREATE "echo <OBJECTS> > <TARGET>")
  set(CMAKE_${language}_ARCHIVE_FINISH "")
  set(CMAKE_${language}_LINK_EXECUTABLE "${CMAKE_CURRENT_LIST_DIR}/link <TARGET> <OBJECTS> <LINK_LIBRARIES>")
endforeach()
