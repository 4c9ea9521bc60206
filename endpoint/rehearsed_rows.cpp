#include "endpoint/rehearsed_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <span>
#include <utility>

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

ErrorSummary TooLong(const ColumnRoom& room, ServerKind server) {
  if (server == ServerKind::MySql) {
    return {1406, fmt::format("Data too long for column '{}' at row 1", room.column)};
  }
  return {8152, "String or binary data would be truncated."};
}

class RehearsedRows final : public IRowDestination {
 public:
  RehearsedRows(std::unique_ptr<IRowDestination> rows, std::vector<ColumnRoom> room,
                ServerKind server)
      : rows_(std::move(rows)), room_(std::move(room)), server_(server) {}

  bool TakesBlocks() override { return true; }
  ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                          ado::Arena& storage) override {
    return rows_->ConvertValue(value, column, storage);
  }
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                         std::size_t count) override {
    for (std::size_t row = first; row < first + count; ++row) {
      if (TooSmall(converted.Row(row)) != nullptr) return BlockResult::Refused;
    }
    return BlockResult::Stored;
  }
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) override {
    const ColumnRoom* room = TooSmall(converted.Row(row));
    if (room == nullptr) return {};
    return {RowResult::Refused, TooLong(*room, server_)};
  }
  void RowStored(std::span<const ado::Value> source_row) override { rows_->RowStored(source_row); }
  std::vector<ValueChanges> Changes() const override { return rows_->Changes(); }

 private:
  /// Null when there is room for every value.
  const ColumnRoom* TooSmall(std::span<const ado::Value> row) const {
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (!Fits(row[i], room_[i])) return &room_[i];
    }
    return nullptr;
  }

  const std::unique_ptr<IRowDestination> rows_;
  const std::vector<ColumnRoom> room_;
  const ServerKind server_;
};

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
                                           std::vector<ColumnRoom> room, ServerKind server) {
  return std::make_unique<RehearsedRows>(std::move(rows), std::move(room), server);
}

}  // namespace dorvane
