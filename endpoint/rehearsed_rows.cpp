#include "endpoint/rehearsed_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <span>
#include <utility>

#include "endpoint/generated_columns.h"
#include "endpoint/literal_text.h"
#include "endpoint/shown_value.h"
#include "platform/ado/value_text.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

using Unit = ColumnRoom::Unit;

struct RoomOfType {
  std::string_view type;
  Unit unit;
  std::int64_t most;  // 0: the number behind the type
};

constexpr RoomOfType kMySqlRoom[] = {
    {"tinytext", Unit::Bytes, 255},
    {"tinyblob", Unit::Bytes, 255},
    {"text", Unit::Bytes, 65'535},
    {"blob", Unit::Bytes, 65'535},
    {"mediumtext", Unit::Bytes, 0xFFFFFF},
    {"mediumblob", Unit::Bytes, 0xFFFFFF},
    {"char", Unit::Characters, 0},
    {"varchar", Unit::Characters, 0},
    {"binary", Unit::Bytes, 0},
    {"varbinary", Unit::Bytes, 0},
};
constexpr RoomOfType kMsSqlRoom[] = {
    {"char", Unit::Characters, 0}, {"varchar", Unit::Characters, 0}, {"nchar", Unit::Utf16, 0},
    {"nvarchar", Unit::Utf16, 0},  {"binary", Unit::Bytes, 0},       {"varbinary", Unit::Bytes, 0},
};

std::int64_t NumberBehind(std::string_view type) {
  const std::size_t open = type.find('(');
  std::int64_t number = 0;
  if (open != std::string_view::npos) {
    std::from_chars(type.data() + open + 1, type.data() + type.size(), number);
  }
  return number;  // "(max)" has none
}

std::int64_t LengthOf(std::string_view text, Unit unit) {
  if (unit == Unit::Bytes) return static_cast<std::int64_t>(text.size());
  std::int64_t length = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool begins = (byte & 0xC0) != 0x80;
    const bool has_surrogates = unit == Unit::Utf16 && byte >= 0xF0;
    length += (begins ? 1 : 0) + (has_surrogates ? 1 : 0);
  }
  return length;
}

bool Fits(const ado::Value& value, const ColumnRoom& room) {
  const std::string_view bytes = ado::BytesOf(value);
  // No unit has more of them than there are bytes.
  if (!room.most || static_cast<std::int64_t>(bytes.size()) <= *room.most) return true;
  const bool is_text = std::holds_alternative<std::string_view>(value);
  if (!is_text) return false;
  // Blanks at the end are cut without a word.
  const std::size_t end = bytes.find_last_not_of(' ') + 1;
  return LengthOf(bytes.substr(0, end), room.unit) <= *room.most;
}

std::string Shown(const ado::Value& value, ado::DataType type) {
  constexpr std::size_t kMostBytes = 30;
  if (ado::IsNull(value)) return "NULL";
  const auto* binary = std::get_if<ado::Binary>(&value);
  return binary != nullptr ? HexCode(binary->bytes.substr(0, kMostBytes)) : ToText(value, type);
}

ErrorSummary TooLong(const ColumnRoom& room, ServerKind server) {
  if (server == ServerKind::MySql) {
    return {1406, fmt::format("Data too long for column '{}' at row 1", room.column)};
  }
  return {8152, "String or binary data would be truncated."};
}

/// Refused rows of one kind.
struct Loss {
  std::int64_t count = 0;
  std::int64_t row = 0;  // the first, among the rows of the table, from 1
  std::string value;     // of its, as a person reads it; empty where the server names no column
  std::string words;     // the server's
};

class RehearsedRows final : public IRowDestination {
 public:
  RehearsedRows(std::unique_ptr<IRowDestination> rows, RowRehearsal rehearsal)
      : rows_(std::move(rows)), rehearsal_(std::move(rehearsal)) {}

  bool TakesBlocks() override { return true; }
  ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                          ado::Arena& storage) override {
    return rows_->ConvertValue(value, column, storage);
  }
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                         std::size_t count) override;
  std::size_t LeftOut() const override {
    return rehearsal_.trial ? rehearsal_.trial->LeftOut() : 0;
  }
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) override;
  void RowStored(std::span<const ado::Value> source_row) override { rows_->RowStored(source_row); }
  std::vector<ValueChanges> Changes() const override;
  std::vector<std::string> Examples() const override;

 private:
  RowOutcome Try(const ado::RowBlock& converted, std::size_t row);
  /// Counts a refused row with those of its kind.
  void NoteLoss(const ErrorSummary& reason, std::span<const ado::Value> row);
  /// Null when there is room for every value.
  const ColumnRoom* TooSmall(std::span<const ado::Value> row) const;
  /// Fills `doubtful_` with the rows whose values may not have room.
  void FindDoubtful(const ado::RowBlock& converted, std::size_t first, std::size_t count);
  /// The changes so far stay counted.
  void EndTrial();

  const std::unique_ptr<IRowDestination> rows_;
  RowRehearsal rehearsal_;
  ado::RowBlock doubtful_;
  std::int64_t handled_ = 0;  // rows
  std::map<std::pair<std::int32_t, std::string>, Loss>
      losses_;                               // by the server's number and column
  std::vector<ValueChanges> tried_changes_;  // of a trial that has ended
};

const ColumnRoom* RehearsedRows::TooSmall(std::span<const ado::Value> row) const {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!Fits(row[i], rehearsal_.room[i])) return &rehearsal_.room[i];
  }
  return nullptr;
}

void RehearsedRows::FindDoubtful(const ado::RowBlock& converted, std::size_t first,
                                 std::size_t count) {
  doubtful_.Clear(converted.Columns());
  for (std::size_t row = first; row < first + count; ++row) {
    if (TooSmall(converted.Row(row)) == nullptr) continue;
    std::ranges::copy(converted.Row(row), doubtful_.AppendRow().begin());
  }
}

BlockResult RehearsedRows::StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                      std::size_t count) {
  if (rehearsal_.denial) return BlockResult::Failed;
  BlockResult result = BlockResult::Failed;
  if (rehearsal_.trial && rehearsal_.is_all_tried) {
    result = rehearsal_.trial->StoreBlock(converted, first, count);
  } else {
    FindDoubtful(converted, first, count);
    if (doubtful_.Rows() == 0) {
      result = BlockResult::Stored;
    } else if (!rehearsal_.trial) {
      result = BlockResult::Refused;
    } else {
      result = rehearsal_.trial->StoreBlock(doubtful_, 0, doubtful_.Rows());
    }
  }
  if (result == BlockResult::Failed) EndTrial();
  if (result == BlockResult::Stored) handled_ += static_cast<std::int64_t>(count);
  return result;
}

RowOutcome RehearsedRows::StoreRow(const ado::RowBlock& converted, std::size_t row) {
  if (rehearsal_.denial) throw DestinationFailure(*rehearsal_.denial, rehearsal_.denial->Entries());
  ++handled_;
  RowOutcome outcome = Try(converted, row);
  if (outcome.result == RowResult::Refused) NoteLoss(outcome.reason, converted.Row(row));
  return outcome;
}

void RehearsedRows::NoteLoss(const ErrorSummary& reason, std::span<const ado::Value> row) {
  constexpr std::size_t kMostKinds = 20;
  const std::vector<ColumnRoom>& room = rehearsal_.room;
  const ColumnRoom* column = TooSmall(row);
  for (std::size_t i = 0; column == nullptr && i < room.size(); ++i) {
    if (IsNamed(reason.description, room[i].column)) column = &room[i];
  }
  const std::string name = column != nullptr ? column->column : "";
  if (losses_.size() == kMostKinds && !losses_.contains({reason.number, name})) return;
  Loss& loss = losses_[{reason.number, name}];
  if (++loss.count > 1) return;
  loss.row = handled_;
  loss.words = reason.description;
  if (column == nullptr) return;
  const auto at = static_cast<std::size_t>(column - room.data());
  loss.value = ShownValue(name, Shown(row[at], rehearsal_.types[at]));
}

std::vector<std::string> RehearsedRows::Examples() const {
  std::vector<std::string> examples;
  for (const ValueChanges& each : Changes()) {
    if (each.first.empty()) continue;
    examples.push_back(fmt::format("For example {}: {}", each.first, each.what));
  }
  for (const auto& [kind, loss] : losses_) {
    examples.push_back(fmt::format("For example {}{}row {} of {} such: {} - {}", loss.value,
                                   loss.value.empty() ? "" : ", ", loss.row, loss.count, kind.first,
                                   loss.words));
  }
  return examples;
}

RowOutcome RehearsedRows::Try(const ado::RowBlock& converted, std::size_t row) {
  const ColumnRoom* too_small = TooSmall(converted.Row(row));
  if (rehearsal_.trial && (rehearsal_.is_all_tried || too_small != nullptr)) {
    try {
      return rehearsal_.trial->StoreRow(converted, row, handled_);
    } catch (const RunTimeError&) {
      EndTrial();
    }
  }
  if (too_small == nullptr) return {};
  return {RowResult::Refused, TooLong(*too_small, rehearsal_.server)};
}

void RehearsedRows::EndTrial() {
  tried_changes_ = rehearsal_.trial->Changes();
  rehearsal_.trial.reset();
}

std::vector<ValueChanges> RehearsedRows::Changes() const {
  std::vector<ValueChanges> changes = rows_->Changes();
  const std::vector<ValueChanges> tried =
      rehearsal_.trial ? rehearsal_.trial->Changes() : tried_changes_;
  for (std::size_t i = 0; i < tried.size(); ++i) {
    changes[i].count += tried[i].count;
    if (changes[i].first.empty()) changes[i].first = tried[i].first;
  }
  return changes;
}

}  // namespace

ColumnRoom RoomOf(std::string column, std::string_view type, ServerKind server, std::int64_t size) {
  ColumnRoom room{.column = std::move(column)};
  const std::string_view word = type.substr(0, type.find_first_of("( "));
  const std::span<const RoomOfType> types =
      server == ServerKind::MySql ? std::span<const RoomOfType>(kMySqlRoom) : kMsSqlRoom;
  const auto known = std::ranges::find_if(
      types, [word](const RoomOfType& each) { return text::EqualsIgnoringCase(each.type, word); });
  if (known == types.end()) return room;
  room.unit = known->unit;
  const std::int64_t declared = size != 0 ? size : NumberBehind(type);
  const std::int64_t most = known->most != 0 ? known->most : declared;
  if (most > 0) room.most = most;
  return room;
}

std::unique_ptr<IRowDestination> Rehearsed(std::unique_ptr<IRowDestination> rows,
                                           RowRehearsal rehearsal) {
  return std::make_unique<RehearsedRows>(std::move(rows), std::move(rehearsal));
}

}  // namespace dorvane
