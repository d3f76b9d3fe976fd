#include "corvane/support/adaptive_mutex.hpp"

#include <system_error>

namespace corvane::detail {

AdaptiveMutex::AdaptiveMutex() {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
#ifdef PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP
  // glibc's spinning kind; elsewhere the default kind, which only sleeps sooner.
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ADAPTIVE_NP);
#endif
  const int error = pthread_mutex_init(&mutex_, &attributes);
  pthread_mutexattr_destroy(&attributes);
  if (error != 0) throwLockError(error);
}

AdaptiveMutex::~AdaptiveMutex() { pthread_mutex_destroy(&mutex_); }

void AdaptiveMutex::throwLockError(int error) {
  throw std::system_error(error, std::system_category(), "AdaptiveMutex");
}

}  // namespace corvane::detail
