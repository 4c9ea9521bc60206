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

// Window managers that never give a new window the focus must not hold up the wizard for long.
constexpr std::chrono::milliseconds kFocusTimeout(200);

/// Shows a window before another one, which gets the focus back afterwards if it had it before.
class ShownWindow {
 public:
  ShownWindow(QWidget& window, QWidget& behind)
      : window_(window), behind_(behind), was_active_(behind.isActiveWindow()) {
    window_.show();
  }
  ShownWindow(const ShownWindow&) = delete;
  ShownWindow& operator=(const ShownWindow&) = delete;
  ~ShownWindow() {
    if (was_active_) AwaitFocus();
    window_.hide();
    // Not every window manager gives the focus back by itself.
    if (was_active_) behind_.activateWindow();
  }

 private:
  // When a window is hidden before the window manager has given it the focus, no window has it.
  void AwaitFocus() {
    const auto has_focus = [this] {
      return QGuiApplication::focusWindow() == window_.windowHandle();
    };
    if (has_focus()) return;
    QEventLoop loop;
    QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &loop, [&] {
      if (has_focus()) loop.quit();
    });
    QTimer::singleShot(kFocusTimeout, &loop, &QEventLoop::quit);
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
  const ShownWindow shown(*wait_, parent_);
  RunInWorker(work);
}

}  // namespace dorvane
