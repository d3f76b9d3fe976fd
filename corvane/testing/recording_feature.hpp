#pragma once

// A scriptable feature for the submission and coordination tests: it reports what it is told to, counts
// the calls it receives and writes its saves and discards to a shared journal.

#include "corvane/submission/submission_feature.hpp"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace corvane::testing {

using Journal = std::vector<std::string>;

class RecordingFeature : public SubmissionFeature {
 public:
  RecordingFeature(std::string id, std::shared_ptr<Journal> journal, bool changed = false, std::string description = {})
      : id_(std::move(id)), journal_(std::move(journal)), changed_(changed), description_(std::move(description)) {}

  std::string entityId() const override { return id_; }
  bool hasUnsavedChanges() const override {
    ++unsavedChangeReads;
    return changed_;
  }
  std::string changeDescription() const override { return description_; }

  // Suspends once before and once after deciding, so that overlapping saves would show
  // up interleaved in the journal.
  boost::asio::awaitable<void> saveChanges() override {
    journal_->push_back("save " + id_);
    co_await boost::asio::post(co_await boost::asio::this_coro::executor, boost::asio::use_awaitable);
    if (saveFailure) std::rethrow_exception(saveFailure);
    changed_ = false;
    ++saves;
    co_await boost::asio::post(co_await boost::asio::this_coro::executor, boost::asio::use_awaitable);
    journal_->push_back("saved " + id_);
  }

  void discardChanges() override {
    journal_->push_back("discard " + id_);
    changed_ = false;
  }

  std::string featureId() const override { return "recording"; }
  bool hasUpdates() const override { return changed_; }
  std::vector<CompletionItem> createCompletionItems() const override { return completionItems; }

  void setEntityId(std::string id) { id_ = std::move(id); }
  void setChanged(bool changed) { changed_ = changed; }
  void setDescription(std::string description) { description_ = std::move(description); }

  /// The checklist handed out on every request; none unless a test sets one.
  std::vector<CompletionItem> completionItems;
  /// Thrown by the next saves instead of saving.
  std::exception_ptr saveFailure;
  /// Completed saves.
  int saves = 0;
  /// Reads of `hasUnsavedChanges()`.
  mutable int unsavedChangeReads = 0;

 private:
  std::string id_;
  std::shared_ptr<Journal> journal_;
  bool changed_;
  std::string description_;
};

}  // namespace corvane::testing
