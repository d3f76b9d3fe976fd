#pragma once

#include <cstdio>
#include <cstdlib>

/// Aborts with the failed condition, so that libFuzzer records the input as a crash. Unlike
/// assert it stays on in every build type.
#define FUZZ_CHECK(condition)                                                                  \
  do {                                                                                         \
    if (!(condition)) {                                                                        \
      std::fprintf(stderr, "fuzz check failed: %s (%s:%d)\n", #condition, __FILE__, __LINE__); \
      std::abort();                                                                            \
    }                                                                                          \
  } while (false)
