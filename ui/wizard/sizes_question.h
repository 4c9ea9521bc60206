#pragma once

#include <QObject>
#include <memory>
#include <thread>
#include <vector>

#include "job/endpoints.h"

namespace dorvane {

/// Asks a source for the sizes of its tables while the window goes on, over a connection of its
/// own. Who destroys it waits for the answer.
class SizesQuestion : public QObject {
  Q_OBJECT

 public:
  explicit SizesQuestion(HostedEndpointFactory make_endpoint);

  /// Asks the server and database of `source`. Only the last question is answered.
  void Ask(const IDatabase& source);
  bool IsBusy() const { return busy_; }

 signals:
  void Answered(const std::vector<dorvane::TableSize>& sizes);
  /// Nothing is being asked any more.
  void Idle();

 private:
  /// Nobody waits for the answer, so nobody is told why there is none.
  class SilentHost : public IRunHost {
    void ConnectionFailed(const ConnectionFailure&) override {}
    void ShowMessage(std::string_view, std::int32_t, std::string_view) override {}
    void Inform(std::string_view) override {}
    void UnclassifiedFailure(std::string_view, std::int32_t, std::string_view) override {}
    void Yield() override {}
  };

  void Start(std::unique_ptr<IDatabase> endpoint);
  void Finish();

  HostedEndpointFactory make_endpoint_;
  SilentHost host_;
  std::unique_ptr<IDatabase> next_;
  std::vector<TableSize> sizes_;  // the thread's while it is busy
  bool busy_ = false;
  std::jthread thread_;
};

}  // namespace dorvane
