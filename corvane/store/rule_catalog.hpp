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

/// Every rule, in the order findings are reported: for each field the store requires a
/// "<field>.required" rule and for each field with a limit a "<field>.length" rule (both
/// follow the store's data files), then the rules on particular fields, the content rules
/// and the locale rule.
std::vector<RuleInfo> ruleCatalog(const StoreFacts& facts);

/// The rule called `id` in `catalog`, or null.
const RuleInfo* findRule(const std::vector<RuleInfo>& catalog, std::string_view id);

}  // namespace corvane::store
