# The toolchain file provides the headers. The library consists only of headers.
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
