#pragma once

#include <concepts>
#include <type_traits>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
template <class Case, class Variant>
struct IsCaseOf : std::false_type {};
template <class Case, class... Alternatives>
struct IsCaseOf<Case, std::variant<Alternatives...>> : std::bool_constant<(std::same_as<Case, Alternatives> || ...)> {};

// Asked of each case: std::variant declares its == even when a case has none.
template <class Variant>
struct CasesAreComparable : std::false_type {};
template <class... Alternatives>
struct CasesAreComparable<std::variant<Alternatives...>>
    : std::bool_constant<(std::equality_comparable<Alternatives> && ...)> {};
}  // namespace detail

/// The shell shared by the library's tagged variants: a value that is exactly one of a
/// few cases, each a small struct. `Cases` is a struct that declares the case structs and
/// `using Value = std::variant<...>` over them in their canonical order; the tagged type
/// derives from `TaggedVariant<Cases>`, so that its cases read as `Type::Case` and its
/// named factories build it through the protected constructors.
///
/// The case structs live in `Cases` rather than in the tagged type itself because a base
/// class cannot name the nested types of the class that derives from it.
template <class Cases>
class TaggedVariant : public Cases {
 public:
  /// The cases, in their canonical order.
  using Value = typename Cases::Value;

  /// The payload of case `Case`, or null when the value is another case.
  template <class Case>
  const Case* getIf() const noexcept {
    return std::get_if<Case>(&value_);
  }

  /// The underlying variant, for exhaustive visiting.
  const Value& value() const noexcept { return value_; }

  /// Same case and equal payload; only for types whose cases can be compared.
  friend bool operator==(const TaggedVariant& left, const TaggedVariant& right)
    requires detail::CasesAreComparable<Value>::value
  {
    return left.value_ == right.value_;
  }

 protected:
  /// Holds `value`, which must be one of the cases. Built in place: moving a whole variant
  /// trips a false maybe-uninitialized warning in GCC 12.
  template <class Case>
    requires detail::IsCaseOf<Case, Value>::value
  explicit TaggedVariant(Case value) : value_(std::in_place_type<Case>, std::move(value)) {}

  /// Holds whichever case `value` holds.
  explicit TaggedVariant(Value value) : value_(std::move(value)) {}

  /// Whether the value is of case `Case`.
  template <class Case>
  bool holds() const noexcept {
    return std::holds_alternative<Case>(value_);
  }

 private:
  Value value_;
};

}  // namespace corvane
