# keyloft_least_system(OUTPUT FLOOR LIBRARY…)
#
# Sets OUTPUT to the oldest macOS that a program runs on if it is built for FLOOR and links the static LIBRARY…: the
# greatest version among FLOOR and those that the libraries' objects were built for.
function(keyloft_least_system output floor)
  find_program(KEYLOFT_OTOOL otool REQUIRED)
  mark_as_advanced(KEYLOFT_OTOOL)
  execute_process(COMMAND "${KEYLOFT_OTOOL}" -l ${ARGN}
    OUTPUT_VARIABLE listing RESULT_VARIABLE result ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "otool cannot read ${ARGN}: ${errors}")
  endif()

  # LC_BUILD_VERSION has the version as "minos", and a "version" for each tool; its predecessor LC_VERSION_MIN_MACOSX
  # has it as "version". Other load commands have unrelated versions. Objects of plain data may have neither command.
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
