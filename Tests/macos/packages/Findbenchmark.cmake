# The toolchain file provides the headers. The link does not need the library.
add_library(benchmark::benchmark INTERFACE IMPORTED)
add_library(benchmark::benchmark_main INTERFACE IMPORTED)
