#include "ui/wizard/worker_call.h"

#include <atomic>
#include <exception>
#include <thread>

#include "ui/controls/user_input.h"
#include "ui/dialogs/frm_wait.h"

namespace dorvane {

void RunInWorker(const std::function<void()>& work, const EventsMeanwhile& events) {
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
  while (!done) loop.processEvents(events() | QEventLoop::WaitForMoreEvents);
  worker.join();
  ResumeUserInput();
  if (failure) std::rethrow_exception(failure);
}

void ServerCaller::Run(const std::function<void()>& work) {
  if (!wait_) wait_ = std::make_unique<frmWait>(window_).release();
  waiting_ = true;
  wait_->Begin();
  std::exception_ptr failure;
  try {
    RunInWorker(work, [this] {
      return wait_->isHidden() ? QEventLoop::ExcludeUserInputEvents : QEventLoop::AllEvents;
    });
  } catch (...) {
    failure = std::current_exception();
  }
  wait_->End();
  waiting_ = false;
  if (leaving_) QMetaObject::invokeMethod(&window_, &QWidget::close, Qt::QueuedConnection);
  if (failure) std::rethrow_exception(failure);
}

void ServerCaller::Leave() {
  if (!waiting_) return;
  leaving_ = true;
  wait_->SetText("Stopping.......");
}

}  // namespace dorvane
