#pragma once

#include <QWidget>
#include <functional>
#include <memory>

namespace dorvane {

class frmWait;

/// Runs `work` in a thread of its own and returns when it has ended; window events go on being
/// processed meanwhile. What `work` throws is thrown here.
void RunInWorker(const std::function<void()>& work);

/// Asks a server something while the wait window stands before `parent` and takes all clicks.
class ServerCaller {
 public:
  explicit ServerCaller(QWidget& parent);
  ~ServerCaller();

  /// As RunInWorker.
  void Run(const std::function<void()>& work);

 private:
  QWidget& parent_;
  std::unique_ptr<frmWait> wait_;  // made on first use
};

}  // namespace dorvane
