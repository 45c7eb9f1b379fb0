# Its headers are found with the others; a link does not ask for it.
add_library(ICU::uc INTERFACE IMPORTED)
