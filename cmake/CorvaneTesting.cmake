find_package(GTest REQUIRED CONFIG)
include(GoogleTest)

# corvane_add_tests(NAME [CONCURRENCY] SOURCES... [LIBRARIES...] [DEFINITIONS...]): one test program per
# subsystem, linked against the library and the shared test helpers. Programs marked
# CONCURRENCY hold the multi-threaded tests; the ThreadSanitizer build
# (CORVANE_ONLY_CONCURRENCY_TESTS) builds and runs only those. Tests are discovered when
# ctest runs, so a sanitizer build executes nothing at build time.
function(corvane_add_tests name)
  cmake_parse_arguments(ARG "CONCURRENCY" "" "SOURCES;LIBRARIES;DEFINITIONS" ${ARGN})
  if(CORVANE_ONLY_CONCURRENCY_TESTS AND NOT ARG_CONCURRENCY)
    return()
  endif()
  set(target corvane_${name}_tests)
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE corvane::corvane corvane_testing GTest::gmock_main ${ARG_LIBRARIES})
  target_compile_definitions(${target} PRIVATE ${ARG_DEFINITIONS})
  corvane_set_warnings(${target})
  set(labels ${name})
  if(ARG_CONCURRENCY)
    list(APPEND labels concurrency)
  endif()
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    TEST_PREFIX "${name}."
    PROPERTIES LABELS "${labels}")
endfunction()
