#pragma once

#include <optional>
#include <string_view>

namespace corvane::store {

/// The store a metadata folder is written for; it decides the folder's layout, its fields
/// and the rules that judge them.
enum class StoreId { appStore, googlePlay };

/// The store's key as people choose it on the command line: "appstore" or "play".
std::string_view storeKey(StoreId store) noexcept;

/// The store's name for people: "App Store" or "Google Play".
std::string_view storeName(StoreId store) noexcept;

/// The store whose key is `key`; nothing for any other text.
std::optional<StoreId> storeFromKey(std::string_view key) noexcept;

}  // namespace corvane::store
