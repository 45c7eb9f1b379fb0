# keyloft_least_system(OUTPUT FLOOR LIBRARY…)
#
# Sets OUTPUT to the oldest version of macOS that supports a program that is built for FLOOR and links the static
# LIBRARY…: the greatest of FLOOR and the versions for which the objects in the libraries were built.
function(keyloft_least_system output floor)
  find_program(KEYLOFT_OTOOL otool REQUIRED)
  mark_as_advanced(KEYLOFT_OTOOL)
  execute_process(COMMAND "${KEYLOFT_OTOOL}" -l ${ARGN}
    OUTPUT_VARIABLE listing RESULT_VARIABLE result ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "otool cannot read ${ARGN}: ${errors}")
  endif()

  # LC_BUILD_VERSION contains the version of macOS as "minos", and a "version" for each tool. Its predecessor
  # LC_VERSION_MIN_MACOSX contains the version of macOS as "version". Other load commands contain unrelated versions.
  # Objects that contain only data may have neither of these two commands.
  string(REGEX MATCHALL "cmd LC_[A-Z0-9_]+|minos [0-9.]+|version [0-9.]+" words "${listing}")
  set(command)
  set(versions)
  foreach(word IN LISTS words)
    string(REGEX MATCH "^[a-z]+ (.*)" matched "${word}")
    set(value "${CMAKE_MATCH_1}")
    if(word MATCHES "^cmd ")
      set(command "${value}")
    elseif("${command} ${word}" MATCHES "^(LC_BUILD_VERSION minos|LC_VERSION_MIN_MACOSX version) ")
      list(APPEND versions "${value}")
    endif()
  endforeach()
  if(NOT versions)
    message(FATAL_ERROR "No object in ${ARGN} names the macOS that it was built for.")
  endif()

  set(least "${floor}")
  foreach(version IN LISTS versions)
    if(version VERSION_GREATER least)
      set(least "${version}")
    endif()
  endforeach()
  set(${output} "${least}" PARENT_SCOPE)
endfunction()
