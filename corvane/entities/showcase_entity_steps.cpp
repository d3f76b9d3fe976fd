#include "corvane/entities/showcase_entity_steps.hpp"

#include "corvane/cache/validation_cache.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/support/sleep.hpp"

#include <vector>

namespace corvane::detail {

std::string describeChangedFields(std::initializer_list<NamedField> fields) {
  std::string names;
  for (const auto& [name, field] : fields) {
    if (!field->hasChanged()) continue;
    if (!names.empty()) names += ", ";
    names += name;
  }
  return names.empty() ? "No changes" : "Changed: " + names;
}

boost::asio::awaitable<void> saveShowcaseFields(std::string entityId, std::string entityName,
                                                std::chrono::nanoseconds delay, std::vector<ChangeDetectable*> fields) {
  printLine("💾 Saving " + entityName + "...");
  co_await sleepFor(delay);
  for (auto* field : fields) field->markSaved();
  ValidationCache::shared().invalidate(entityId + ":validation");
  printLine("✅ " + entityName + " saved successfully!");
}

void discardShowcaseFields(const std::string& entityId, const std::string& entityName,
                           std::initializer_list<ChangeDetectable*> fields) {
  printLine("🔄 Discarding changes for " + entityName + "...");
  for (auto* field : fields) field->discardChanges();
  ValidationCache::shared().invalidate(entityId + ":validation");
  printLine("✅ " + entityName + " changes discarded!");
}

}  // namespace corvane::detail
