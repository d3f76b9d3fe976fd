#include "cart_error.hpp"

namespace corvane::cart {

CartError::CartError(Kind kind, std::string productId, const std::string& message)
    : std::runtime_error(message), kind_(kind), productId_(std::move(productId)) {}

CartError CartError::emptyCart() {
  return CartError(Kind::emptyCart, "", "The cart is empty");
}

CartError CartError::unknownProduct(const std::string& productId) {
  return CartError(Kind::unknownProduct, productId, "Unknown product '" + productId + "'");
}

CartError CartError::invalidQuantity(const std::string& productId, long long quantity) {
  return CartError(Kind::invalidQuantity, productId,
                   "Quantity of '" + productId + "' must be at least 1, not " + std::to_string(quantity));
}

}  // namespace corvane::cart
