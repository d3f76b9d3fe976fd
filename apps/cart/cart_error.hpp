#pragma once

#include <stdexcept>
#include <string>

namespace corvane::cart {

/// Why a checkout was refused; `what()` is a sentence for people.
class CartError final : public std::runtime_error {
 public:
  /// The kinds of refusal.
  enum class Kind { emptyCart, unknownProduct, invalidQuantity };

  /// "The cart is empty".
  static CartError emptyCart();
  /// "Unknown product '<id>'".
  static CartError unknownProduct(const std::string& productId);
  /// "Quantity of '<id>' must be at least 1, not <n>".
  static CartError invalidQuantity(const std::string& productId, long long quantity);

  /// The kind of refusal.
  Kind kind() const noexcept { return kind_; }
  /// The product concerned; empty for an empty cart.
  const std::string& productId() const noexcept { return productId_; }

 private:
  CartError(Kind kind, std::string productId, const std::string& message);

  Kind kind_;
  std::string productId_;
};

}  // namespace corvane::cart
