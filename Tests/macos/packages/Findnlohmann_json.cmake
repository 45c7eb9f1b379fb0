# Its headers are found with the others; a link does not ask for it.
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
