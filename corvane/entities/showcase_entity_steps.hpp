#pragma once

// Steps the two showcase entities share. Internal to the library; not installed.

#include "corvane/tracking/change_detectable.hpp"

#include <boost/asio/awaitable.hpp>

#include <chrono>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane::detail {

using NamedField = std::pair<std::string_view, const ChangeDetectable*>;

/// "No changes", or "Changed: " followed by the names of the changed fields.
std::string describeChangedFields(std::initializer_list<NamedField> fields);

/// Prints the saving line, waits `delay` without blocking, marks the fields saved, drops
/// the entity's cached verdict and prints the success line.
boost::asio::awaitable<void> saveShowcaseFields(std::string entityId, std::string entityName,
                                                std::chrono::nanoseconds delay, std::vector<ChangeDetectable*> fields);

/// Prints the discarding line, restores the fields in order, drops the entity's cached
/// verdict and prints the success line.
void discardShowcaseFields(const std::string& entityId, const std::string& entityName,
                           std::initializer_list<ChangeDetectable*> fields);

}  // namespace corvane::detail
