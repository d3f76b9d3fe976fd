#pragma once

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/support/print_line.hpp"

#include <concepts>
#include <string>
#include <string_view>
#include <utility>

namespace corvane {

/// One editable value of a submission entity beside its last saved value.
/// `hasUnsavedChanges()` always equals `value() != savedValue()`, also inside observer
/// callbacks: each operation writes the value and the flag together and announces both.
///
/// Observed keys: "value", "savedValue", "hasUnsavedChanges". Every assignment is
/// announced and prints "🔄 ChangeTrackingField changed: <value> (hasUnsavedChanges: <flag>)",
/// also when the new value equals the old one.
///
/// Not synchronised: use a field from one thread at a time.
template <class T>
  requires std::equality_comparable<T> && std::copyable<T> && Describable<T>
class ChangeTrackingField final : public Observable {
 public:
  /// A field whose current and saved values are `initialValue`. Prints nothing.
  explicit ChangeTrackingField(T initialValue) : value_(initialValue), savedValue_(std::move(initialValue)) {}

  /// The current value.
  const T& value() const {
    observationRegistrar().access(kValue);
    return value_;
  }

  /// Stores `newValue`, recomputes the flag against the saved value and prints the change
  /// line.
  void setValue(T newValue) {
    assign(kValue, [&] { value_ = std::move(newValue); });
    printLine("🔄 ChangeTrackingField changed: " + describe(value_) +
              " (hasUnsavedChanges: " + describe(hasUnsavedChanges_) + ")");
  }

  /// The value as last saved (or as constructed).
  const T& savedValue() const {
    observationRegistrar().access(kSavedValue);
    return savedValue_;
  }

  /// Whether the current value differs from the saved value.
  bool hasUnsavedChanges() const {
    observationRegistrar().access(kHasUnsavedChanges);
    return hasUnsavedChanges_;
  }

  /// Makes the current value the saved value. Prints nothing.
  void markAsSaved() {
    assign(kSavedValue, [&] { savedValue_ = value_; });
  }

  /// Restores the saved value as an ordinary assignment (so the change line is printed,
  /// with the flag false), then announces the cleared flag once more.
  void discardChanges() {
    setValue(savedValue_);
    observationRegistrar().withMutation(kHasUnsavedChanges, [&] { hasUnsavedChanges_ = false; });
  }

 private:
  static constexpr std::string_view kValue = "value";
  static constexpr std::string_view kSavedValue = "savedValue";
  static constexpr std::string_view kHasUnsavedChanges = "hasUnsavedChanges";

  // Writes one of the two values and the flag as one step, announcing both, so that no
  // observer ever sees the flag disagree with the values.
  template <class Write>
  void assign(std::string_view key, Write&& write) {
    auto& registrar = observationRegistrar();
    registrar.willSet(key);
    registrar.willSet(kHasUnsavedChanges);
    // Announced outside any destructor, so that an observer may throw (see withMutation).
    const auto didSet = [&] {
      registrar.didSet(key);
      registrar.didSet(kHasUnsavedChanges);
    };
    try {
      write();
      hasUnsavedChanges_ = !(value_ == savedValue_);
    } catch (...) {
      didSet();
      throw;
    }
    didSet();
  }

  T value_;
  T savedValue_;
  bool hasUnsavedChanges_ = false;
};

}  // namespace corvane
