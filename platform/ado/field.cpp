#include "platform/ado/recordset.h"
#include "platform/ado/value_text.h"

namespace dorvane::ado {

const ado::Value& Field::Value() const {
  if (value_ == nullptr) {
    throw RunTimeError(kNoCurrentRecord, "ADODB.Field",
                       "Either BOF or EOF is True, or the current record has been deleted. "
                       "Requested operation requires a current record.");
  }
  return *value_;
}

std::string Field::Text() const {
  return ToText(Value(), info_->type);
}

void Field::SetNull() {
  pending_ = Pending::None;
  pending_value_.clear();
}

void Field::SetText(std::string_view text) {
  pending_ = Pending::Text;
  pending_value_ = text;
}

void Field::AppendChunk(std::string_view bytes) {
  if (pending_ != Pending::Bytes) pending_value_.clear();
  pending_ = Pending::Bytes;
  pending_value_ += bytes;
}

ado::Value Field::PendingValue() const {
  switch (pending_) {
    case Pending::Text:
      return std::string_view(pending_value_);
    case Pending::Bytes:
      return Binary{pending_value_};
    case Pending::None:
      break;
  }
  return Null{};
}

}  // namespace dorvane::ado
