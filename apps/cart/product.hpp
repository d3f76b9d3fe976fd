#pragma once

#include <cstdint>
#include <string>

namespace corvane::cart {

/// Something that can be bought, as the product service describes it.
struct Product {
  /// The product's identifier.
  std::string id;
  /// The name shown on the receipt.
  std::string name;
  /// The unit price in cents.
  std::int64_t priceCents;

  friend bool operator==(const Product&, const Product&) = default;
};

}  // namespace corvane::cart
