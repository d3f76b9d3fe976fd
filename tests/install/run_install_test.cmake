cmake_minimum_required(VERSION 3.25)
# Installs the build tree into WORK_DIR/prefix, configures and builds the consumer project
# against it (with the host example of examples/), and runs the consumer and the host.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGV}\n${output}")
  endif()
  set(last_output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${CORVANE_BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_CXX_COMPILER_LAUNCHER=${COMPILER_LAUNCHER}
    -DHOST_EXAMPLE_SOURCE=${HOST_EXAMPLE_SOURCE})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)
if(NOT last_output MATCHES "corvane [0-9]+\\.[0-9]+\\.[0-9]+: App Name is 1 characters too long")
  message(FATAL_ERROR "unexpected consumer output:\n${last_output}")
endif()
if(NOT last_output MATCHES "resources: ${WORK_DIR}/prefix/share/corvane/sample-metadata \\(found\\)")
  message(FATAL_ERROR "resources not found in the prefix:\n${last_output}")
endif()
message(STATUS "consumer output:\n${last_output}")

# The umbrella header reaches every installed header; the consumer's public_types.cpp
# names their types through it.
run(${CXX_COMPILER} -std=c++20 -M -I${WORK_DIR}/prefix/include ${WORK_DIR}/prefix/include/corvane/corvane.hpp)
string(REPLACE "\\\n" " " umbrella_dependencies "${last_output}")  # line continuations
string(REGEX REPLACE "[ \n]+" ";" umbrella_dependencies "${umbrella_dependencies}")
file(GLOB_RECURSE installed_headers RELATIVE ${WORK_DIR}/prefix/include ${WORK_DIR}/prefix/include/corvane/*.hpp)
foreach(header IN LISTS installed_headers)
  if(NOT header STREQUAL "corvane/corvane.hpp" AND NOT "${WORK_DIR}/prefix/include/${header}" IN_LIST umbrella_dependencies)
    list(APPEND left_out ${header})
  endif()
endforeach()
if(left_out)
  message(FATAL_ERROR "corvane/corvane.hpp does not include these installed headers: ${left_out}")
endif()

# The host example, built from the installed package: two verdicts that block the first
# submission, then both entities saved by the second.
run(${WORK_DIR}/build/host)
foreach(expected
    "Showcase App Entity: fails - Version must be in format X.Y.Z"
    "User Profile: fails - Invalid email"
    "Not submitted: Cannot submit"
    "Showcase App Entity: passes"
    "Status: Ready to submit"
    "Showcase App Entity saved successfully"
    "User Profile saved successfully"
    "Submitted. Status: No changes to submit")
  string(FIND "${last_output}" "${expected}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the host example did not print \"${expected}\":\n${last_output}")
  endif()
endforeach()
message(STATUS "host example output:\n${last_output}")

# The installed editor starts with the installed library and opens the installed sample.
if(WITH_STUDIO)
  run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen HOME=${WORK_DIR}
      ${WORK_DIR}/prefix/bin/corvane-studio --screenshot ${WORK_DIR}/studio.png
      ${WORK_DIR}/prefix/share/corvane/sample-metadata)
  if(NOT EXISTS ${WORK_DIR}/studio.png)
    message(FATAL_ERROR "the installed corvane-studio drew nothing")
  endif()
endif()
