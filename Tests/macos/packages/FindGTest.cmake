# The toolchain file provides the headers. Tests/macos/link leaves the symbols of the library undefined.
add_library(GTest::gtest INTERFACE IMPORTED)
add_library(GTest::gtest_main INTERFACE IMPORTED)
add_library(GTest::gmock INTERFACE IMPORTED)
