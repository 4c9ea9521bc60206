#include "ui/wizard/worker_call.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>
#include <QWindow>
#include <atomic>
#include <chrono>
#include <exception>
#include <thread>

#include "ui/dialogs/frm_wait.h"

namespace dorvane {
namespace {

// Window managers that give a new window no keys must not hold up the wizard for long.
constexpr std::chrono::milliseconds kKeysTimeout(200);

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
    if (was_active_) AwaitKeys();
    window_.hide();
    // Not every window manager gives the keys back by itself.
    if (was_active_) behind_.activateWindow();
  }

 private:
  // A window that goes before the window manager has given it the keys leaves them nowhere.
  void AwaitKeys() {
    const auto has_keys = [this] {
      return QGuiApplication::focusWindow() == window_.windowHandle();
    };
    if (has_keys()) return;
    QEventLoop loop;
    QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &loop, [&] {
      if (has_keys()) loop.quit();
    });
    QTimer::singleShot(kKeysTimeout, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
  }

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
