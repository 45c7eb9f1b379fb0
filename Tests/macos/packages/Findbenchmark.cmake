# The toolchain file provides the headers. Tests/macos/link leaves the symbols of the library undefined.
add_library(benchmark::benchmark INTERFACE IMPORTED)
add_library(benchmark::benchmark_main INTERFACE IMPORTED)
