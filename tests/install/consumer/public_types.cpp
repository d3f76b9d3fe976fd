// Names every public type of the installed library through the umbrella header alone, and
// one function of each header that declares no type: a header left out of corvane.hpp
// fails this build. Compiled only, never run.
#include <corvane/corvane.hpp>

#include <string>
#include <tuple>

namespace {

// sizeof needs the full definition: a forward declaration that some other header makes
// (the entities declare `class UnifiedChangeTracker;`) does not pass for the real header.
template <class... Types>
constexpr bool kDefined = ((sizeof(Types) > 0) && ...);

namespace c = corvane;
namespace s = corvane::store;

static_assert(kDefined<
              // support/
              c::Url, c::LineOutput,
              // observation/
              c::ObservationConnection, c::ObservationRegistrar, c::Observable, c::ObservationSignal,
              // results/
              c::ActionGuidance, c::BusinessImpact, c::BusinessValidationResult, c::DisplayBehavior,
              c::DisplayTiming, c::BasicDisplayTiming<struct AnyTag>, c::ValidationColorScheme,
              c::StoredVerdict, c::ValidationResult, c::ValidationSeverity,
              // cache/
              c::ValidationCache, c::ValidationCacheMonitor,
              // tracking/
              c::ChangeDetectable, c::ChangeTrackingError, c::PropertyDiscovery, c::TrackableEntity,
              c::Tracked<std::string>, c::TrackedValidatable, c::UnifiedChangeTracker, c::Validate<std::string>,
              c::ValidationCheck, c::ValidationGuidance, c::ValidationRequirement,
              // completion/
              c::AggregateCompletionGuide, c::CompletionError, c::CompletionGuidable, c::CompletionItem,
              c::CompletionProgress, c::CompletionStatus, c::PureSwiftUICompletionGuide,
              // submission/
              c::AggregateValidator, c::AnySubmissionValidationRule, c::ChangeTrackable,
              c::ChangeTrackingField<std::string>, c::DefaultChangeTracker, c::DefaultSubmissionCoordinator,
              c::SubmissionChangeTracker<c::ExampleAppInfoEntity>, c::SubmissionConfiguration,
              c::SubmissionCoordinating, c::SubmissionEntity, c::SubmissionFeature, c::SubmissionValidationIssue,
              c::SubmissionValidationResult, c::SubmissionValidationRule<c::ExampleAppInfoEntity>,
              c::SubmissionValidationState, c::SubmissionValidationSummary, c::Validatable, c::ValidationService,
              // entities/
              c::AppEssentialsWithDSL, c::ExampleAppInfoEntity, c::ShowcaseAppEntity, c::ShowcaseUserEntity,
              // resources/
              c::CorvaneResources,
              // store/
              s::ConflictError, s::InputError, s::KeywordSpan, s::WordSettings, s::RuleSettings,
              s::ListingConfiguration, s::ConfigurationError, s::ListingConflict, s::ListingEntity, s::ListingField,
              s::FieldKind, s::ListingFinding, s::TextSource, s::ListingText, s::LocaleFolder, s::UnknownLocaleFolder,
              s::ListingFolder, s::RuleCache, s::RuleContext, s::ListingRules, s::ListingSubmission, s::TextPosition,
              s::PhraseMatch, s::LinkSpan, s::TokenizedText, s::PhraseMatcher, s::RuleInfo, s::RuleLevel,
              s::RenameFunction, s::StagedFile, s::FieldFacts, s::StoreFacts, s::StoreId, s::ListingEdit,
              s::StoreListing, s::TextFrame>);

static_assert(c::SubmissionFeatureType<c::ExampleAppInfoEntity>);
static_assert(c::Describable<int>);

// Headers without a type of their own.
[[maybe_unused]] const auto kFunctions = std::tuple{
    c::CorvaneVersionString,        &c::mainExecutor,     &c::postToMain,          &c::nextObjectIdentity,
    &c::checkedAdd<int>,            &c::printLine,        &c::setLogSinks,         &c::sleepFor,
    &c::newUuidString,              &c::characterCount,   &c::supportURLCheck,     &c::makeValidationRule,
    &c::emptyValueRule<std::string>, &c::withObservationTracking<void (*)()>, &s::closestMatch};

}  // namespace
