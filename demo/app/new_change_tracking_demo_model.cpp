#include "demo/app/new_change_tracking_demo_model.hpp"

#include "corvane/cache/validation_cache.hpp"
#include "corvane/support/main_executor.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/tracking/change_tracking_error.hpp"
#include "ui/qt/observation_bridge.hpp"

#include <fmt/format.h>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane::demo {
namespace {

constexpr const char* validSymbol = "checkmark.circle.fill";

QString toQString(const std::string& text) {
  return QString::fromStdString(text);
}

boost::asio::awaitable<void> submitEverything(std::shared_ptr<UnifiedChangeTracker> tracker) {
  try {
    co_await tracker->submitAll();
    printLine("🎉 All entities submitted successfully!");
  } catch (const ChangeTrackingError& error) {
    printLine("❌ Submission failed: " + describe(error));
  } catch (const std::exception& error) {
    printLine(std::string("❌ Submission failed: ") + error.what());
  }
}

}  // namespace

NewChangeTrackingDemoModel::NewChangeTrackingDemoModel(QObject* parent)
    : QObject(parent),
      tracker_(std::make_shared<UnifiedChangeTracker>(
          UnifiedChangeTracker::Configuration{.maxEntities = 10000, .enableLogging = false})),
      appEntity_(std::make_shared<ShowcaseAppEntity>()),
      userEntity_(std::make_shared<ShowcaseUserEntity>()),
      bridge_(new ui::ObservationBridge([this] { readAll(); }, this)) {
  connect(bridge_, &ui::ObservationBridge::changed, this, &NewChangeTrackingDemoModel::changed);
}

NewChangeTrackingDemoModel::~NewChangeTrackingDemoModel() = default;

QString NewChangeTrackingDemoModel::appName() const {
  return toQString(appEntity_->appName());
}
void NewChangeTrackingDemoModel::setAppName(const QString& value) {
  appEntity_->setAppName(value.toStdString());
}
QString NewChangeTrackingDemoModel::subtitle() const {
  return toQString(appEntity_->subtitle());
}
void NewChangeTrackingDemoModel::setSubtitle(const QString& value) {
  appEntity_->setSubtitle(value.toStdString());
}
QString NewChangeTrackingDemoModel::version() const {
  return toQString(appEntity_->version());
}
void NewChangeTrackingDemoModel::setVersion(const QString& value) {
  appEntity_->setVersion(value.toStdString());
}
QString NewChangeTrackingDemoModel::appDescription() const {
  return toQString(appEntity_->appDescription());
}
void NewChangeTrackingDemoModel::setAppDescription(const QString& value) {
  appEntity_->setAppDescription(value.toStdString());
}

QString NewChangeTrackingDemoModel::appNameSymbol() const {
  return appEntity_->appNameProperty().validationResult().isValid ? validSymbol : "exclamationmark.circle.fill";
}

QString NewChangeTrackingDemoModel::subtitleSymbol() const {
  return appEntity_->subtitleProperty().validationResult().isValid ? validSymbol : "exclamationmark.triangle.fill";
}

QString NewChangeTrackingDemoModel::versionSymbol() const {
  return appEntity_->versionProperty().validationResult().isValid ? validSymbol : "exclamationmark.circle.fill";
}

QStringList NewChangeTrackingDemoModel::keywords() const {
  QStringList result;
  for (const std::string& keyword : appEntity_->keywords()) result.append(toQString(keyword));
  return result;
}

QString NewChangeTrackingDemoModel::keywordCountText() const {
  return QStringLiteral("%1/100").arg(appEntity_->keywords().size());
}

QString NewChangeTrackingDemoModel::keywordInput() const {
  return keywordInput_;
}

void NewChangeTrackingDemoModel::setKeywordInput(const QString& value) {
  if (value == keywordInput_) return;
  keywordInput_ = value;
  Q_EMIT keywordInputChanged();
}

QString NewChangeTrackingDemoModel::changesText() const {
  if (tracker_->entitiesWithChanges().empty()) return QStringLiteral("No changes");
  return toQString(tracker_->changeDescription());
}

QString NewChangeTrackingDemoModel::validationText() const {
  return QStringLiteral("%1 error(s)").arg(tracker_->validationErrors().size());
}

bool NewChangeTrackingDemoModel::canSubmit() const {
  return tracker_->canSubmit();
}

QString NewChangeTrackingDemoModel::canSubmitSymbol() const {
  return canSubmit() ? validSymbol : "clock";
}

QString NewChangeTrackingDemoModel::entitiesText() const {
  return QStringLiteral("%1 registered, %2 with changes")
      .arg(tracker_->registeredEntities().size())
      .arg(tracker_->entitiesWithChanges().size());
}

QString NewChangeTrackingDemoModel::validationsText() const {
  return QString::number(ValidationCache::shared().totalRequests());
}

QString NewChangeTrackingDemoModel::cacheHitsText() const {
  return QString::number(ValidationCache::shared().cacheHits());
}

QString NewChangeTrackingDemoModel::hitRateText() const {
  return toQString(fmt::format("{:.1f}%", ValidationCache::shared().hitRate() * 100));
}

QString NewChangeTrackingDemoModel::cacheSizeText() const {
  return QString::number(ValidationCache::shared().cacheSize());
}

void NewChangeTrackingDemoModel::appear() {
  appEntity_->setChangeTracker(tracker_);
  userEntity_->setChangeTracker(tracker_);
  tracker_->register_(appEntity_);
  printLine("🎯 Simple demo initialized!");
  printLine("✨ First principles: Just what we need, nothing more");
}

void NewChangeTrackingDemoModel::addKeyword() {
  const std::string keyword = keywordInput_.trimmed().toStdString();
  setKeywordInput({});
  if (keyword.empty()) return;
  std::vector<std::string> keywords = appEntity_->keywords();
  if (std::find(keywords.begin(), keywords.end(), keyword) != keywords.end()) return;
  keywords.push_back(keyword);
  appEntity_->setKeywords(std::move(keywords));
}

void NewChangeTrackingDemoModel::removeKeyword(int index) {
  std::vector<std::string> keywords = appEntity_->keywords();
  if (index < 0 || static_cast<std::size_t>(index) >= keywords.size()) return;
  keywords.erase(keywords.begin() + index);
  appEntity_->setKeywords(std::move(keywords));
}

void NewChangeTrackingDemoModel::testCache() {
  printLine("🎯 Testing simple cache...");
  ValidationCache& cache = ValidationCache::shared();
  cache.clear();
  (void)appEntity_->appNameProperty().validateCached();
  for (int i = 0; i < 10; ++i) (void)appEntity_->appNameProperty().validateCached();
  // The clear resets the counters later on the main executor, so these still count on top.
  const double percent = cache.hitRate() * 100;
  CORVANE_PRECONDITION(
      std::isfinite(percent) && percent >= 0 && percent < static_cast<double>(std::numeric_limits<std::int64_t>::max()),
      "hit rate out of the integer range");
  printLine(fmt::format("✨ Cache stats: {}/{} hits ({}%)", cache.cacheHits(), cache.totalRequests(),
                        static_cast<std::int64_t>(percent)));
  printLine("🎯 UI updates automatically - first principles!");
}

void NewChangeTrackingDemoModel::submitAll() {
  boost::asio::co_spawn(mainExecutor(), submitEverything(tracker_), boost::asio::detached);
}

void NewChangeTrackingDemoModel::discardAll() {
  tracker_->discardAll();
}

void NewChangeTrackingDemoModel::readAll() const {
  // Everything the screen shows, so that observation sees each of its reads.
  (void)appName();
  (void)subtitle();
  (void)version();
  (void)appDescription();
  (void)appNameSymbol();
  (void)subtitleSymbol();
  (void)versionSymbol();
  (void)keywordCountText();
  (void)changesText();
  (void)validationText();
  (void)canSubmit();
  (void)entitiesText();
  (void)validationsText();
  (void)cacheHitsText();
  (void)hitRateText();
  (void)cacheSizeText();
}

}  // namespace corvane::demo
