#include "cart_service.hpp"

#include "corvane/testing/test_main_loop.hpp"

#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace corvane::cart {
namespace {

using ::testing::ElementsAre;

// A catalogue that answers on a later turn of the loop, as a remote service would, and
// remembers what it was asked.
class CatalogueProductService final : public ProductService {
 public:
  explicit CatalogueProductService(std::map<std::string, Product> products) : products_(std::move(products)) {}

  boost::asio::awaitable<std::optional<Product>> product(std::string id) override {
    lookups.push_back(id);
    co_await boost::asio::post(co_await boost::asio::this_coro::executor, boost::asio::use_awaitable);
    const auto found = products_.find(id);
    if (found == products_.end()) co_return std::nullopt;
    co_return found->second;
  }

  std::vector<std::string> lookups;

 private:
  std::map<std::string, Product> products_;
};

class CartServiceTest : public ::testing::Test {
 protected:
  const Product pen{"pen", "Pen", 150};
  const Product notebook{"notebook", "Notebook", 1299};
  std::shared_ptr<CatalogueProductService> catalogue =
      std::make_shared<CatalogueProductService>(std::map<std::string, Product>{{"pen", pen}, {"notebook", notebook}});
  CartService service{catalogue};
  testing::TestMainLoop loop;

  CartError refusal(std::vector<CartLine> lines) {
    try {
      loop.run(service.checkout(std::move(lines)));
    } catch (const CartError& error) {
      return error;
    }
    ADD_FAILURE() << "checkout did not refuse";
    return CartError::emptyCart();
  }
};

TEST_F(CartServiceTest, PricesEveryLineInCartOrder) {
  const auto receipt = loop.run(service.checkout({{"notebook", 2}, {"pen", 3}}));
  EXPECT_EQ(receipt,
            (Receipt{.lines = {ReceiptLine{notebook, 2, 2598}, ReceiptLine{pen, 3, 450}}, .totalCents = 3048}));
  EXPECT_THAT(catalogue->lookups, ElementsAre("notebook", "pen"));
}

TEST_F(CartServiceTest, RefusesEmptyCartsAndBadQuantitiesBeforeAnyLookup) {
  const auto empty = refusal({});
  EXPECT_EQ(empty.kind(), CartError::Kind::emptyCart);
  EXPECT_STREQ(empty.what(), "The cart is empty");

  const auto zero = refusal({{"pen", 1}, {"notebook", 0}});
  EXPECT_EQ(zero.kind(), CartError::Kind::invalidQuantity);
  EXPECT_EQ(zero.productId(), "notebook");
  EXPECT_STREQ(zero.what(), "Quantity of 'notebook' must be at least 1, not 0");
  EXPECT_TRUE(catalogue->lookups.empty());
}

TEST_F(CartServiceTest, NamesTheFirstUnknownProductAndStopsLookingThere) {
  const auto unknown = refusal({{"pen", 1}, {"stapler", 1}, {"eraser", 1}});
  EXPECT_EQ(unknown.kind(), CartError::Kind::unknownProduct);
  EXPECT_EQ(unknown.productId(), "stapler");
  EXPECT_STREQ(unknown.what(), "Unknown product 'stapler'");
  EXPECT_THAT(catalogue->lookups, ElementsAre("pen", "stapler"));
}

}  // namespace
}  // namespace corvane::cart
