#include "ui/wizard/sizes_question.h"

#include <utility>

namespace dorvane {

SizesQuestion::SizesQuestion(HostedEndpointFactory make_endpoint)
    : make_endpoint_(std::move(make_endpoint)) {}

void SizesQuestion::Ask(const IDatabase& source) {
  std::unique_ptr<IDatabase> endpoint = make_endpoint_(source.Kind(), host_);
  endpoint->SetSettings(source.Settings());
  if (busy_) {
    next_ = std::move(endpoint);
  } else {
    Start(std::move(endpoint));
  }
}

void SizesQuestion::Start(std::unique_ptr<IDatabase> endpoint) {
  busy_ = true;
  thread_ = std::jthread([this, asked = std::move(endpoint)] {
    try {
      sizes_ = asked->GetTableSizes();
    } catch (...) {
      sizes_.clear();
    }
    QMetaObject::invokeMethod(this, &SizesQuestion::Finish, Qt::QueuedConnection);
  });
}

void SizesQuestion::Finish() {
  thread_.join();
  if (next_) return Start(std::move(next_));
  busy_ = false;
  emit Answered(std::exchange(sizes_, {}));
  emit Idle();
}

}  // namespace dorvane
