#include "ui/wizard/worker_call.h"

#include <QEventLoop>
#include <atomic>
#include <exception>
#include <thread>

#include "ui/dialogs/frm_wait.h"

namespace dorvane {
namespace {

/// A window shown before another one, which has the keys again afterwards if it had them before.
class Shown {
 public:
  Shown(QWidget& window, QWidget& behind)
      : window_(window), behind_(behind), was_active_(behind.isActiveWindow()) {
    window_.show();
  }
  Shown(const Shown&) = delete;
  Shown& operator=(const Shown&) = delete;
  ~Shown() {
    window_.hide();
    // Not every window manager gives the keys back by itself.
    if (was_active_) behind_.activateWindow();
  }

 private:
  QWidget& window_;
  QWidget& behind_;
  bool was_active_;
};

}  // namespace

void RunInWorker(const std::function<void()>& work) {
  QEventLoop loop;
  std::atomic<bool> done = false;
  std::exception_ptr failure;
  std::jthread worker([&] {
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    done = true;
    QMetaObject::invokeMethod(
        &loop, [] {}, Qt::QueuedConnection);  // wakes the loop below
  });
  // Goes on after a request to quit as well: the worker may still need this thread.
  while (!done) loop.processEvents(QEventLoop::WaitForMoreEvents);
  worker.join();
  if (failure) std::rethrow_exception(failure);
}

ServerCaller::ServerCaller(QWidget& parent) : parent_(parent) {}
ServerCaller::~ServerCaller() = default;

void ServerCaller::Run(const std::function<void()>& work) {
  if (!wait_) wait_ = std::make_unique<frmWait>(&parent_);
  const Shown shown(*wait_, parent_);
  RunInWorker(work);
}

}  // namespace dorvane
