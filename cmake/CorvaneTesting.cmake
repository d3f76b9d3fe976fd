find_package(GTest REQUIRED CONFIG)
include(GoogleTest)

# corvane_add_tests(NAME SOURCES...): one test program per subsystem, linked against the
# library and the shared test helpers. Tests are discovered when ctest runs, so a
# sanitizer build does not execute anything at build time.
function(corvane_add_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  set(target corvane_${name}_tests)
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE corvane::corvane corvane_testing GTest::gmock_main ${ARG_LIBRARIES})
  corvane_set_warnings(${target})
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    TEST_PREFIX "${name}."
    PROPERTIES LABELS "${name}")
endfunction()
