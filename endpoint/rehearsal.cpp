// What a rehearsal does beside the conversion that it rehearses.

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "endpoint/conversion.h"
#include "endpoint/names.h"
#include "endpoint/rehearsed_rows.h"
#include "platform/ado/errors.h"
#include "platform/ado/items.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

constexpr std::ptrdiff_t kLongestName = 64;  // characters that MySQL takes
constexpr std::int32_t kNameTooLong = 1059;

bool BeginsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

/// The first name in a statement for MySQL that is too long there. SQL Server takes every name that
/// MySQL has.
std::optional<std::string> LongName(std::string_view sql) {
  for (std::string_view rest = sql; !rest.empty();) {
    if (rest.front() == '\'') {
      TakeQuoted(rest, '\'');
    } else if (rest.front() == '`') {
      std::string name = TakeQuoted(rest, '`');
      if (std::ranges::count_if(name, BeginsCharacter) > kLongestName) return name;
    } else {
      rest.remove_prefix(1);
    }
  }
  return std::nullopt;
}

}  // namespace

void Conversion::RehearseStatement(std::string_view sql) {
  const auto name = DestinationKind() == ServerKind::MySql ? LongName(sql) : std::nullopt;
  if (!name) return rehearsal_(sql);
  const std::string words = fmt::format("Identifier name '{}' is too long", *name);
  throw ado::ProviderError(ado::hresult::kErrorsInCommand, "MySQL", words,
                           {{ado::hresult::kErrorsInCommand, kNameTooLong, words, "42000"}});
}

bool Conversion::TellWhatIsThere(const TableDefinition& table) {
  const auto remark = [this](std::string_view text) {
    rehearsal_(fmt::format("-- {}", text::Visible(text)));
  };
  const std::string name = table.dest_name.Text();
  const bool is_there =
      OnDestination(*destination_, [&] { return !destination_->Columns(table.dest_name).empty(); });
  if (!is_there) {
    remark(fmt::format("{} is made", name));
    return false;
  }
  const std::int64_t rows = CountRows(*destination_, "count(*)", DestQuoted(table.dest_name));
  remark(fmt::format("{} is there with {} row{}", name, rows, rows == 1 ? "" : "s"));
  if (IsMerging()) {
    remark("it stays as it is, rows are added to it");
  } else if (rows > 0) {
    host_.Inform(fmt::format("Table {}: the {} row{} of {} on the destination are dropped",
                             table.name.Text(), rows, rows == 1 ? "" : "s", name));
  }
  return true;
}

std::unique_ptr<IRowDestination> Conversion::Rehearse(std::unique_ptr<IRowDestination> rows,
                                                      const TableDefinition& table, bool is_new,
                                                      const std::vector<ado::FieldInfo>& fields) {
  std::vector<ado::Column> there;
  if (!is_new) there = destination_->Columns(table.dest_name);
  std::vector<ColumnRoom> room;
  for (const ado::FieldInfo& field : fields) {
    const std::string name = DestName(field.name);
    if (is_new) {
      const ColumnDefinition* column = table.Find(field.name);
      room.push_back(RoomOf(name, column != nullptr ? column->type : "", DestinationKind()));
    } else {
      const ado::Column* column = ado::FindItemOrNull(there, name);
      room.push_back(column != nullptr ? RoomOf(name, column->server_type, DestinationKind(),
                                                column->defined_size)
                                       : ColumnRoom{name});
    }
  }
  return Rehearsed(std::move(rows), std::move(room), DestinationKind());
}

}  // namespace dorvane
