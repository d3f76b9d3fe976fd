#include "corvane/store/store_id.hpp"

namespace corvane::store {

std::string_view storeKey(StoreId store) noexcept {
  return store == StoreId::googlePlay ? "play" : "appstore";
}

std::string_view storeName(StoreId store) noexcept {
  return store == StoreId::googlePlay ? "Google Play" : "App Store";
}

std::optional<StoreId> storeFromKey(std::string_view key) noexcept {
  for (const auto store : {StoreId::appStore, StoreId::googlePlay}) {
    if (storeKey(store) == key) return store;
  }
  return std::nullopt;
}

}  // namespace corvane::store
