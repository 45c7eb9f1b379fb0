# Its headers are found with the others; a link does not ask for it.
add_library(benchmark::benchmark INTERFACE IMPORTED)
add_library(benchmark::benchmark_main INTERFACE IMPORTED)
