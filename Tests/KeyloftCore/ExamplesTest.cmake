# Runs both examples as a person would, in a home directory of their own.
#
#   cmake -D HOST=… -D PEER=… -P ExamplesTest.cmake

function(expect_usage program)
  execute_process(COMMAND "${program}" ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 2 OR NOT errors MATCHES "^usage: relay-[a-z]+ [^\n]+\n$" OR NOT output STREQUAL "")
    message(FATAL_ERROR "${program} ${ARGN}: ${result}\n${output}${errors}")
  endif()
endfunction()

function(expect_failure program pattern)
  execute_process(COMMAND "${program}" ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 1 OR NOT errors MATCHES "${pattern}")
    message(FATAL_ERROR "${program} ${ARGN}: ${result}\n${output}${errors}")
  endif()
endfunction()

# Short, because a socket's path is.
execute_process(COMMAND mktemp -d /tmp/keyloft-XXXXXX OUTPUT_VARIABLE SCRATCH OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
set(ENV{HOME} "${SCRATCH}")
# macOS asks the user database rather than HOME, and this before it.
set(ENV{CFFIXED_USER_HOME} "${SCRATCH}")

expect_usage("${HOST}" one two)
expect_usage("${PEER}")
expect_usage("${PEER}" https://client.example not-a-pair)
expect_failure("${HOST}" "bad_request: not an appleid.apple.com/auth/authorize URL" https://client.example)
expect_failure("${HOST}" "not a URL" "http://[")
expect_failure("${PEER}" "no relay target" "https://client.example/#keyloft=x")

# The host goes to the background; its URL is awaited, the peer run with it, and its end awaited.
execute_process(COMMAND sh -c [[
  "$1" > "$3/host.txt" 2>&1 & host=$!
  turns=0
  until url=$(sed -n 's/^relay URL: //p' "$3/host.txt") && [ -n "$url" ]; do
    turns=$((turns + 1))
    [ $turns -lt 600 ] || { kill $host; exit 90; }
    sleep 0.05
  done
  "$2" "$url" code=a-secret-of-some-length || { kill $host; exit 91; }
  wait $host
]] sh "${HOST}" "${PEER}" "${SCRATCH}" RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
file(READ "${SCRATCH}/host.txt" host)
set(all "${output}${errors}\n${host}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${result}\n${all}")
endif()
foreach(line
    "target https://client.example/callback\n"
    "the host answered {\"ok\":true,\"type\":\"confirm\"}\n"
    "the host answered {\"relayed\":true,\"type\":\"ack\"}\n"
    "relayed\n"
    "listening on ${SCRATCH}/Library/Group Containers/group.velde.orvane.keyloft/relay.sock\n"
    "  code = a-secret…(23)\n"
    "  state = example\n")
  string(FIND "${all}" "${line}" place)
  if(place LESS 0)
    message(FATAL_ERROR "missing: ${line}\n${all}")
  endif()
endforeach()
file(GLOB_RECURSE left "${SCRATCH}/*.sock")
if(left)
  message(FATAL_ERROR "left behind: ${left}")
endif()
file(REMOVE_RECURSE "${SCRATCH}")
