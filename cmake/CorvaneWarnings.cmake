# corvane_set_warnings(target): the warning set every first-party target builds with.
function(corvane_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Wold-style-cast -Wcast-align -Woverloaded-virtual -Wimplicit-fallthrough)
  # GCC 12 at -O3 reports overlapping copies inside std::string's operator+ and replace()
  # that cannot happen (GCC bug 105329); the warning is kept for every other compiler.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(CORVANE_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
