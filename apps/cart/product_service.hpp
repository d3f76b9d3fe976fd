#pragma once

#include "product.hpp"

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>

namespace corvane::cart {

/// Where the cart looks products up; a catalogue, a remote service or a test double.
class ProductService {
 public:
  virtual ~ProductService() = default;
  /// The product with `id`, or nothing when there is no such product. May suspend.
  virtual boost::asio::awaitable<std::optional<Product>> product(std::string id) = 0;
};

}  // namespace corvane::cart
