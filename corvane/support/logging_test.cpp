#include "corvane/support/logging.hpp"

#include "corvane/testing/captured_log.hpp"

#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <gtest/gtest.h>

#include <sstream>

namespace corvane {
namespace {

using testing::CapturedLog;
using testing::LogEntry;

TEST(Logging, LoggersAreNamedBySubsystemAndCategoryAndShared) {
  auto first = logger("SimpleCoordination");
  EXPECT_EQ(first->name(), "Corvane.SimpleCoordination");
  EXPECT_EQ(first, logger("SimpleCoordination"));
  EXPECT_NE(first, logger("CompletionGuide"));
}

TEST(Logging, EntriesKeepLevelAndTextAndUserTextIsNeverAFormat) {
  CapturedLog log;
  auto entries = logger("Test");
  entries->debug("🔧 initialized");
  entries->info("📝 Registering entity: {}", "id-with-{}-braces");
  entries->error("{}", "⚠️ Entity {0} already registered");
  EXPECT_EQ(log.entries(), (std::vector<LogEntry>{
                               {"Corvane.Test", spdlog::level::debug, "🔧 initialized"},
                               {"Corvane.Test", spdlog::level::info, "📝 Registering entity: id-with-{}-braces"},
                               {"Corvane.Test", spdlog::level::err, "⚠️ Entity {0} already registered"},
                           }));
}

TEST(Logging, HostSinksReachLoggersCreatedEarlierAndTheLevelFilters) {
  auto early = logger("Early");
  auto previous = logSinks();
  std::ostringstream text;
  auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(text);
  sink->set_pattern("%n|%l|%v");
  setLogSinks({sink});
  early->debug("dropped at the default level");
  early->info("kept");
  setLogLevel(spdlog::level::debug);
  early->debug("now kept");
  setLogLevel(spdlog::level::info);
  setLogSinks(previous);
  early->info("not in the host sink any more");
  EXPECT_EQ(text.str(), "Corvane.Early|info|kept\nCorvane.Early|debug|now kept\n");
}

}  // namespace
}  // namespace corvane
