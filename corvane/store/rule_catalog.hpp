#pragma once

#include "corvane/store/rule_level.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace corvane::store {

class StoreFacts;

/// One rule of the catalog: its stable identifier, its level unless configured otherwise,
/// what it checks and why the store cares.
struct RuleInfo {
  std::string id;
  RuleLevel defaultLevel;
  std::string summary;
  std::string reason;
};

/// Every rule of `facts`' store, in the order findings are reported: for each of the store's
/// fields it requires a "<field>.required" rule and for each with a limit a "<field>.length"
/// rule (both follow the store's data files), then the rules on particular fields, the
/// content rules and the locale rule. Rules of the other store are not in it.
std::vector<RuleInfo> ruleCatalog(const StoreFacts& facts);

/// The App Store's catalog followed by the rules only Google Play has, each rule once: what
/// `corvane rules` lists. Loads both stores' facts; throws `std::runtime_error` as they do.
std::vector<RuleInfo> everyStoreRuleCatalog();

/// The rule called `id` in `catalog`, or null.
const RuleInfo* findRule(const std::vector<RuleInfo>& catalog, std::string_view id);

}  // namespace corvane::store
