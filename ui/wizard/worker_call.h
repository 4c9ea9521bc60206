#pragma once

#include <QEventLoop>
#include <QWidget>
#include <functional>
#include <memory>

namespace dorvane {

class frmWait;

/// Which window events are processed while a worker is at work; asked again and again.
using EventsMeanwhile = std::function<QEventLoop::ProcessEventsFlags()>;
inline QEventLoop::ProcessEventsFlags AllEvents() {
  return QEventLoop::AllEvents;
}

/// Runs `work` in a thread of its own and returns when it has ended; window events go on being
/// processed meanwhile. What `work` throws is thrown here.
void RunInWorker(const std::function<void()>& work, const EventsMeanwhile& events = AllEvents);

/// Asks a server something. Keys and clicks of the first moment are kept until it has answered;
/// then an overlay over the window takes them.
class ServerCaller {
 public:
  /// `window` must outlive this.
  explicit ServerCaller(QWidget& window) : window_(window) {}

  /// As RunInWorker.
  void Run(const std::function<void()>& work);
  bool IsWaiting() const { return waiting_; }
  /// Tells that the program is about to end, and closes the window when the server has answered.
  void Leave();

 private:
  QWidget& window_;
  bool waiting_ = false;
  bool leaving_ = false;
  frmWait* wait_ = nullptr;  // made on first use, owned by the window
};

}  // namespace dorvane
