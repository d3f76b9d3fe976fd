// measured_run RESULT PROGRAM [ARGUMENT...]: runs PROGRAM and writes "STATUS NANOSECONDS
// PEAK_KILOBYTES" to the file RESULT: its exit status (-1 when a signal ended it), its
// wall-clock time from start to exit, and its peak resident memory.
//
// The peak comes from the kernel's accounting of the child, which starts from the resident
// size of the process that started it: a benchmark with a Qt window of its own would lend
// the program its memory. Started from this small process, the program's figure is its own.
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

extern char** environ;

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: measured_run RESULT PROGRAM [ARGUMENT...]\n");
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  if (::posix_spawn(&child, argv[2], nullptr, nullptr, argv + 2, environ) != 0) {
    std::fprintf(stderr, "measured_run: cannot start %s\n", argv[2]);
    return 1;
  }
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) != child) {
    std::fprintf(stderr, "measured_run: lost %s\n", argv[2]);
    return 1;
  }
  const auto elapsed = std::chrono::steady_clock::now() - start;
  std::FILE* result = std::fopen(argv[1], "w");
  if (result == nullptr) {
    std::fprintf(stderr, "measured_run: cannot write %s\n", argv[1]);
    return 1;
  }
  std::fprintf(result, "%d %lld %ld\n", WIFEXITED(status) ? WEXITSTATUS(status) : -1,
               static_cast<long long>(std::chrono::duration_cast<std::chrono::nanoseconds>(elapsed).count()),
               usage.ru_maxrss);
  return std::fclose(result) == 0 ? 0 : 1;
}
