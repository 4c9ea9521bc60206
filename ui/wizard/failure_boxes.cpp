#include "ui/wizard/failure_boxes.h"

#include "platform/text/number_text.h"

namespace dorvane {

namespace {

// What two failures of one kind have in common.
std::string Kind(std::string_view message, std::string_view table) {
  std::string kind(message);
  if (!table.empty()) {
    for (auto at = kind.find(table); at != std::string::npos; at = kind.find(table, at)) {
      kind.erase(at, table.size());
    }
  }
  std::erase_if(kind, text::IsDigit);
  return kind;
}

}  // namespace

void FailureBoxes::Clear() {
  shown_.clear();
  list_only_ = false;
}

bool FailureBoxes::Wants(std::string_view message, std::string_view table) {
  return !list_only_ && shown_.insert(Kind(message, table)).second;
}

}  // namespace dorvane
