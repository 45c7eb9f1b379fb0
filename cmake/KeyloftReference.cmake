# keyloft_reference(HEADER…)
#
# Adds the target "reference": the Doxygen pages of the installed headers and the documents, in reference/html of the
# build folder.
function(keyloft_reference)
  list(JOIN ARGN "\" \"${PROJECT_SOURCE_DIR}/" headers)
  set(headers "\"${PROJECT_SOURCE_DIR}/${headers}\"")
  configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
  add_custom_target(reference COMMAND doxygen "${PROJECT_BINARY_DIR}/Doxyfile" VERBATIM)
endfunction()
