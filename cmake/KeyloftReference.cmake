# keyloft_reference(LIBRARY…)
#
# Adds the target "reference": the Doxygen pages of the libraries' installed headers and of the documents, in
# reference/html of the build folder.
function(keyloft_reference)
  foreach(library IN LISTS ARGN)
    get_target_property(installed ${library} HEADER_SET)
    list(APPEND headers ${installed})
  endforeach()
  list(JOIN headers "\" \"" headers)
  configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
  add_custom_target(reference COMMAND doxygen "${PROJECT_BINARY_DIR}/Doxyfile" VERBATIM)
endfunction()
