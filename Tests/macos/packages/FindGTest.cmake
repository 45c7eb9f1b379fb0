# The toolchain file provides the headers. The link does not need the library.
add_library(GTest::gtest INTERFACE IMPORTED)
add_library(GTest::gtest_main INTERFACE IMPORTED)
add_library(GTest::gmock INTERFACE IMPORTED)
