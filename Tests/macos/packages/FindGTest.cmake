# Its headers are found with the others; a link does not ask for it.
add_library(GTest::gtest INTERFACE IMPORTED)
add_library(GTest::gtest_main INTERFACE IMPORTED)
add_library(GTest::gmock INTERFACE IMPORTED)
