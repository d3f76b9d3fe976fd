// Builds the verdicts a metadata editor typically produces, shows how a screen would
// present each one, and combines them into the single verdict for the whole form.

#include "corvane/results/validation_result.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/text/characters.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using corvane::printLine;
using corvane::ValidationResult;
using ActionType = corvane::ActionGuidance::Action::ActionType;

void show(const ValidationResult& verdict) {
  const auto look = verdict.uiPresentation();
  printLine(
      fmt::format("  colour {}, icon {}, animation {}", look.colorName, look.iconName, describe(look.animationType)));
  printLine("  shows: " + look.displayMessage);
  printLine("  full message: " + verdict.fullMessage());
  if (verdict.actionGuidance) {
    const auto& action = verdict.actionGuidance->primaryAction;
    printLine(fmt::format("  primary action: {} ({}) via {}", action.title, action.description, describe(action.type)));
  }
  printLine(fmt::format("  blocks submission: {}, display priority {}", corvane::describe(verdict.blocksSubmission()),
                        verdict.displayPriority()));
}

}  // namespace

int main() {
  std::string appName = "Corvane Weather: Forecasts, Radar and Severe Storm Alerts";
  constexpr std::int64_t kAppNameLimit = 30;

  const auto missingSupportURL = ValidationResult::required("Support URL");
  // The auto-fix is what the primary action runs when the user accepts it.
  const auto longAppName = ValidationResult::tooLong(
      "App Name", kAppNameLimit, static_cast<std::int64_t>(corvane::characterCount(appName)),
      [&appName] { appName = std::string(corvane::prefixCharacters(appName, kAppNameLimit)); });
  const auto badEmail = ValidationResult::invalidFormat("Contact Email", "name@example.com");
  const auto noSubtitle =
      ValidationResult::missingOptional("Subtitle", "A subtitle tells people what your app does at a glance",
                                        {"Open the subtitle field", "Describe your app in a few words"});
  const auto promotionalText =
      ValidationResult::opportunity("Add a promotional text", "Promote seasonal features without a new release",
                                    {.title = "Write promotional text",
                                     .description = "Highlight what is new this month",
                                     .type = ActionType::manual({"Keep it under 170 characters"})});

  const std::vector<ValidationResult> verdicts{missingSupportURL, longAppName, badEmail, noSubtitle, promotionalText};
  for (const auto& verdict : verdicts) {
    printLine(verdict.message + " [" + corvane::describe(verdict.severity) + "]");
    show(verdict);
  }

  // Accepting the app name's auto-fix trims the value in place.
  longAppName.actionGuidance->primaryAction.type.runAutoFix();
  printLine("App name after auto-trim: " + appName);

  // One verdict for the whole form: the most urgent invalid one wins.
  const auto combined = ValidationResult::combine(verdicts);
  printLine("Combined: " + combined.message);
  show(combined);

  // Among valid verdicts an opportunity outranks a warning.
  printLine("Combined valid ones: " + ValidationResult::combine({noSubtitle, promotionalText}).message);
}
