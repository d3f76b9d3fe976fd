#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace corvane {

class ObservationRegistrar;

namespace detail {

/// Collects the observed reads made on this thread while it is the innermost recorder.
/// Nested recorders hand their reads on to the enclosing one when they finish.
class AccessRecorder {
 public:
  AccessRecorder();
  ~AccessRecorder();
  AccessRecorder(const AccessRecorder&) = delete;
  AccessRecorder& operator=(const AccessRecorder&) = delete;

  /// Stops recording and arranges for `onChange` to run once, before the first later
  /// announced write to any key read so far.
  void finish(std::function<void()> onChange);

  /// Called by registrars: records a read on the innermost recorder of this thread, if any,
  /// and says whether there was one.
  static bool recordAccess(const ObservationRegistrar& registrar, std::string_view key);
  /// Called by a registrar that is going away: forgets every read recorded for it.
  static void forgetRegistrar(const ObservationRegistrar& registrar) noexcept;

 private:
  void stop() noexcept;

  std::vector<std::pair<ObservationRegistrar*, std::string>> accesses_;
  AccessRecorder* enclosing_;
  bool recording_ = true;
};

}  // namespace detail

/// Runs `apply` and returns its result, recording every observed property it reads on this
/// thread. Afterwards `onChange` is called exactly once, synchronously on the writing
/// thread, before the first announced write to any of those properties (also when the
/// written value equals the old one). Reads made after `apply` returns are not tracked; to
/// keep observing, call `withObservationTracking` again from `onChange`'s follow-up work.
/// An object read by `apply` must not be destroyed on another thread before `apply` returns.
template <class Apply>
std::invoke_result_t<Apply&> withObservationTracking(Apply&& apply, std::function<void()> onChange) {
  detail::AccessRecorder recorder;
  if constexpr (std::is_void_v<std::invoke_result_t<Apply&>>) {
    apply();
    recorder.finish(std::move(onChange));
  } else {
    decltype(auto) result = apply();
    recorder.finish(std::move(onChange));
    return result;
  }
}

}  // namespace corvane
