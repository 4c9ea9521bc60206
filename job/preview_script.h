#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "endpoint/database.h"

namespace dorvane {

/// What a conversion would do, line by line: a script of the destination's statements, everything
/// else in it as comments. It listens to the rehearsal; what the rehearsal tells its host goes
/// through the functions below.
class PreviewScript : public IConversionListener {
 public:
  using Writer = std::function<void(std::string_view lines)>;  // without a line end
  explicit PreviewScript(Writer write) : write_(std::move(write)) {}

  /// Rehearses a transfer whose listener this is meanwhile; leaves none. Throws what it throws.
  void Rehearse(IDatabase& src, IDatabase& dest, const NameList& tables);
  /// What would be lost or changed, or kept the rehearsal from its end.
  std::int64_t Remarks() const { return remarks_; }
  /// True when it has looked at every table.
  bool HasEnded() const { return has_ended_; }

  void Fail(std::string_view message, std::string_view source);
  void Note(std::string_view message);

  void ErrorOccured(std::string_view message, std::int32_t style, std::string_view source) override;
  void ConversionStarted(std::int16_t, bool) override {}
  void ConversionEnded() override { has_ended_ = true; }
  void TableConversionSuccessed(std::string_view) override {}
  void TableConversionFailed(std::string_view) override {}
  void TableContentTransferStarted(std::string_view table_name, std::int32_t rows) override;
  void TableRecordConverted() override {}
  void TableConversionStarted(std::string_view table_name) override;
  void TableRelationsConversionStarted(std::string_view table_name) override;

 private:
  void Comment(std::string_view text);
  void Remark(std::string_view text);

  const Writer write_;
  std::int64_t remarks_ = 0;
  bool has_ended_ = false;
};

}  // namespace dorvane
