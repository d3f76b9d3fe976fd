// A host program without an event loop of its own: it edits an app listing and a user
// profile through a UnifiedChangeTracker, prints their verdicts and submits both, running
// the library's coroutines on an io_context until they are done.

#include <corvane/corvane.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <exception>
#include <memory>
#include <string>

namespace {

using corvane::printLine;

void printVerdicts(const corvane::UnifiedChangeTracker& tracker) {
  for (const auto& entity : tracker.registeredEntities()) {
    const auto verdict = entity->validationResult();
    printLine(entity->entityName() + ": " + (verdict.isValid ? "passes" : "fails") +
              (verdict.message.empty() ? "" : " - " + verdict.message));
  }
  printLine("Status: " + tracker.statusText());
}

// Starts submitAll() on `loop`, runs the loop until the submission has ended and reports
// how it ended. The completion handler gets the coroutine's exception, if any.
bool submitAndWait(boost::asio::io_context& loop, corvane::UnifiedChangeTracker& tracker) {
  bool submitted = false;
  boost::asio::co_spawn(loop, tracker.submitAll(), [&](std::exception_ptr error) {
    try {
      if (error) std::rethrow_exception(error);
      submitted = true;
      printLine("Submitted. Status: " + tracker.statusText());
    } catch (const corvane::ChangeTrackingError& refusal) {  // blocked, or nothing to submit
      printLine(std::string("Not submitted: ") + refusal.what());
    } catch (const std::exception& failure) {  // an entity's save failed
      printLine(std::string("Save failed: ") + failure.what());
    }
  });
  loop.restart();  // run() returned before, when it ran out of work
  loop.run();
  return submitted;
}

}  // namespace

int main() {
  // The library posts its announcements to the main executor. Making it this loop's keeps
  // every callback on this thread, inside run().
  boost::asio::io_context loop;
  corvane::setMainExecutor(loop.get_executor());

  auto tracker = std::make_shared<corvane::UnifiedChangeTracker>();
  auto app = std::make_shared<corvane::ShowcaseAppEntity>();
  auto user = std::make_shared<corvane::ShowcaseUserEntity>();
  app->setChangeTracker(tracker);
  user->setChangeTracker(tracker);
  tracker->register_(app);
  tracker->register_(user);

  app->setAppName("Tide Tables");
  app->setVersion("2.1");
  app->setKeywords({"tides", "sailing", "harbour"});
  user->setName("Ada Lovelace");
  user->setEmail("ada.example.com");
  printVerdicts(*tracker);
  submitAndWait(loop, *tracker);  // refused: both entities have errors

  app->setVersion("2.1.0");
  user->setEmail("ada@example.com");
  printVerdicts(*tracker);
  const bool submitted = submitAndWait(loop, *tracker);

  // Nothing may be posted to the loop once it is gone.
  corvane::setMainExecutor({});
  return submitted ? 0 : 1;
}
