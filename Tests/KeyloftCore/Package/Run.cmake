# run(COMMAND…) stores the command's output in `output`. Aborts the script if the command fails.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\n${result}\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# expect_headers_alone(FOLDER COMPILER) compiles each installed header on its own.
function(expect_headers_alone folder compiler)
  file(GLOB_RECURSE headers RELATIVE "${folder}" "${folder}/*.h")
  if(NOT headers)
    message(FATAL_ERROR "no headers were installed")
  endif()
  foreach(header IN LISTS headers)
    run("${compiler}" -std=c++23 -Wall -Wextra -Werror -fsyntax-only -x c++ "-I${folder}" -include "${header}" /dev/null)
  endforeach()
endfunction()

# install_elsewhere(COMPONENT…) installs the components and moves the installed tree, because packages must be
# relocatable. Sets SCRATCH to the folder that contains it. Its path is short, because the length of a socket's path is
# limited.
macro(install_elsewhere)
  execute_process(COMMAND mktemp -d /tmp/keyloft-XXXXXX OUTPUT_VARIABLE SCRATCH OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  foreach(component ${ARGN})
    run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${SCRATCH}/first" --component ${component})
  endforeach()
  file(RENAME "${SCRATCH}/first" "${SCRATCH}/prefix")
endmacro()

# Builds the folder's project as SCRATCH/build/consumer.
function(build_by_find_package folder)
  run("${CMAKE_COMMAND}" -S "${folder}" -B "${SCRATCH}/build" -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${SCRATCH}/prefix"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_BUILD_TYPE=${CONFIG}")
  run("${CMAKE_COMMAND}" --build "${SCRATCH}/build")
endfunction()

# Builds the folder's consumer.cpp as SCRATCH/by-pkg-config. Only the package's flags select the C++ standard.
function(build_by_pkg_config package folder)
  file(GLOB_RECURSE description "${SCRATCH}/prefix/*/${package}.pc")
  get_filename_component(descriptions "${description}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} "${descriptions}")
  run(pkg-config --cflags --libs "${package}")
  separate_arguments(flags UNIX_COMMAND "${output}")
  run("${COMPILER}" -Wall -Wextra -Werror "${folder}/consumer.cpp" -o "${SCRATCH}/by-pkg-config" ${flags})
endfunction()
