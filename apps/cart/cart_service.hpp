#pragma once

#include "cart_error.hpp"
#include "product.hpp"
#include "product_service.hpp"

#include <boost/asio/awaitable.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace corvane::cart {

/// One line of a cart: a product and how many of it.
struct CartLine {
  std::string productId;
  std::int64_t quantity;
};

/// One line of a receipt: the product as looked up, the quantity and the line's total.
struct ReceiptLine {
  Product product;
  std::int64_t quantity;
  std::int64_t totalCents;

  friend bool operator==(const ReceiptLine&, const ReceiptLine&) = default;
};

/// The result of a checkout: every line in cart order and the sum of their totals.
struct Receipt {
  std::vector<ReceiptLine> lines;
  std::int64_t totalCents;

  friend bool operator==(const Receipt&, const Receipt&) = default;
};

/// Checks out carts by looking every product up through a `ProductService`.
class CartService {
 public:
  /// A service that looks products up in `products`, which must not be null.
  explicit CartService(std::shared_ptr<ProductService> products);

  /// Looks up each line's product in cart order and prices the cart. Throws `CartError`:
  /// `emptyCart` for no lines, `invalidQuantity` for a quantity below 1 (checked before any
  /// lookup), `unknownProduct` for the first product the service does not know. Totals
  /// that overflow 64 bits are a fatal precondition failure.
  boost::asio::awaitable<Receipt> checkout(std::vector<CartLine> lines);

 private:
  std::shared_ptr<ProductService> products_;
};

}  // namespace corvane::cart
