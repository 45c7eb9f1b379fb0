# Runs the example as far as is possible without a display and a provider.
#
#   cmake -D PROGRAM=… -P AuthSessionExampleTest.cmake

function(expect_failure status message)
  execute_process(COMMAND "${PROGRAM}" ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL status OR NOT errors STREQUAL "${message}\n" OR NOT output STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} ${ARGN}: ${result}\n${output}${errors}")
  endif()
endfunction()

set(usage "usage: auth-session AUTHORIZE-URL [INITIATOR-ORIGIN]")
expect_failure(2 "${usage}")
expect_failure(2 "${usage}" one two three)
expect_failure(1 "auth-session: bad_request: not a URL" "http://[")
expect_failure(1 "auth-session: bad_request: not an appleid.apple.com/auth/authorize URL" https://client.example)
expect_failure(1 "auth-session: bad_request: redirect_uri missing or not https"
  https://appleid.apple.com/auth/authorize https://client.example)
