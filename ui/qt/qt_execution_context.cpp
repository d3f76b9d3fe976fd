#include "ui/qt/qt_execution_context.hpp"

#include <QtCore/QMetaObject>

namespace corvane::ui {

static_assert(boost::asio::execution::is_executor_v<QtExecutionContext::executor_type>);

QtExecutionContext::QtExecutionContext() : receiver_(std::make_unique<QObject>()) {}

QtExecutionContext::~QtExecutionContext() {
  // The timer thread may still post: stop it before the receiver goes.
  shutdown();
  receiver_.reset();
  destroy();
}

void QtExecutionContext::post(std::function<void()> work) {
  // Thread-safe: a queued invocation is an event posted to the receiver's thread.
  QMetaObject::invokeMethod(receiver_.get(), std::move(work), Qt::QueuedConnection);
}

}  // namespace corvane::ui
