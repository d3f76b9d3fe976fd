#include "cart_service.hpp"

#include "corvane/support/precondition.hpp"

namespace corvane::cart {

CartService::CartService(std::shared_ptr<ProductService> products) : products_(std::move(products)) {
  CORVANE_PRECONDITION(products_ != nullptr, "CartService needs a product service");
}

boost::asio::awaitable<Receipt> CartService::checkout(std::vector<CartLine> lines) {
  if (lines.empty()) throw CartError::emptyCart();
  for (const auto& line : lines) {
    if (line.quantity < 1) throw CartError::invalidQuantity(line.productId, line.quantity);
  }
  Receipt receipt{.lines = {}, .totalCents = 0};
  for (const auto& line : lines) {
    auto product = co_await products_->product(line.productId);
    if (!product) throw CartError::unknownProduct(line.productId);
    const auto total = checkedMultiply(product->priceCents, line.quantity);
    receipt.totalCents = checkedAdd(receipt.totalCents, total);
    receipt.lines.push_back(
        ReceiptLine{.product = *std::move(product), .quantity = line.quantity, .totalCents = total});
  }
  co_return receipt;
}

}  // namespace corvane::cart
