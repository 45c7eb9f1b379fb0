# keyloft_find_icu(ARGUMENT…)
#
# Finds ICU and its target ICU::uc. Passes ARGUMENT… (REQUIRED, QUIET) to find_package.
#
# On macOS ICU is linked statically, so that programs do not depend on a library in Homebrew's folders. Homebrew's ICU
# is keg-only: no default search path contains it. Set ICU_ROOT to use another ICU.
macro(keyloft_find_icu)
  if(APPLE)
    if(NOT ICU_ROOT AND NOT DEFINED ENV{ICU_ROOT})
      find_program(KEYLOFT_BREW brew)
      mark_as_advanced(KEYLOFT_BREW)
      if(KEYLOFT_BREW)
        execute_process(COMMAND "${KEYLOFT_BREW}" --prefix icu4c
          OUTPUT_VARIABLE ICU_ROOT OUTPUT_STRIP_TRAILING_WHITESPACE)
      endif()
    endif()
    set(_keyloft_suffixes "${CMAKE_FIND_LIBRARY_SUFFIXES}")
    set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
    find_package(ICU ${ARGN} COMPONENTS uc data)
    set(CMAKE_FIND_LIBRARY_SUFFIXES "${_keyloft_suffixes}")
    unset(_keyloft_suffixes)
    if(ICU_FOUND)
      # A static library does not record its dependencies.
      set_property(TARGET ICU::uc APPEND PROPERTY INTERFACE_LINK_LIBRARIES ICU::data)
    endif()
  else()
    find_package(ICU ${ARGN} COMPONENTS uc)
  endif()
endmacro()
