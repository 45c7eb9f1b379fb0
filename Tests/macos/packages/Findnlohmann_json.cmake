# The toolchain file provides the headers. The link does not need the library.
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
