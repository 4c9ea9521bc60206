// What a rehearsal does beside the conversion that it rehearses.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

#include "endpoint/conversion.h"
#include "endpoint/names.h"
#include "endpoint/rehearsed_rows.h"
#include "endpoint/row_identity.h"
#include "platform/ado/errors.h"
#include "platform/ado/items.h"
#include "platform/text/ascii.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

constexpr std::ptrdiff_t kLongestName = 64;  // characters that MySQL takes
constexpr std::int32_t kNameTooLong = 1059;

bool BeginsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

bool IsMoment(ado::DataType type) {
  constexpr std::array kMoments{ado::DataType::Date, ado::DataType::DBDate, ado::DataType::DBTime,
                                ado::DataType::DBTimeStamp};
  return std::ranges::find(kMoments, type) != kMoments.end();
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
  if (name) {
    throw Refusal(ServerKind::MySql, kNameTooLong,
                  fmt::format("Identifier name '{}' is too long", *name));
  }
  if (const auto definition = ReadDefinition(sql)) {
    const auto& denial = DenialOf(definition->right, definition->table);
    if (denial) throw ado::ProviderError(*denial);
    if (references_) references_->Try(sql, *definition);
    if (trial_) trial_->Try(sql, *definition);
    if (definition->right == TableRight::Alter && definition->table == new_key_.table) TryNewKey();
  }
  rehearsal_(sql);
}

void Conversion::TryNewKey() {
  if (!server_) return;
  const auto shared = server_->SharedKey(new_key_.table, new_key_.name, new_key_.columns);
  if (!shared) return;
  new_key_ = {};
  throw ado::ProviderError(*shared);
}

const std::optional<ado::ProviderError>& Conversion::DenialOf(TableRight right,
                                                              const ado::TableName& table) {
  const auto [denial, is_new] = denials_.try_emplace({right, table});
  if (!is_new || !trial_) return denial->second;
  try {
    denial->second = server_->Denial(right, table);
  } catch (const RunTimeError&) {
    // The rights are not known, and the run will tell.
  }
  return denial->second;
}

void Conversion::NeedRight(TableRight right, const ado::TableName& table) {
  const auto& denial = DenialOf(right, table);
  if (denial) throw DestinationFailure(*denial, denial->Entries());
}

void Conversion::Remark(std::string_view text) {
  rehearsal_(fmt::format("-- {}", text::Visible(text)));
}

void Conversion::RemarkUnforeseen(std::string_view what, std::string_view why) {
  Remark(fmt::format("Not foretold: {} ({})", what, why));
}

bool Conversion::TellWhatIsThere(const TableDefinition& table) {
  const std::string name = table.dest_name.Text();
  const bool is_there =
      OnDestination(*destination_, [&] { return !destination_->Columns(table.dest_name).empty(); });
  if (!is_there) {
    Remark(fmt::format("{} is made", name));
    return false;
  }
  const std::int64_t rows = CountRows(*destination_, "count(*)", DestQuoted(table.dest_name));
  Remark(fmt::format("{} is there with {} row{}", name, rows, rows == 1 ? "" : "s"));
  if (IsMerging()) {
    Remark("it stays as it is, rows are added to it");
  } else if (rows > 0) {
    host_.Inform(fmt::format("Table {}: the {} row{} of {} on the destination are dropped",
                             table.name.Text(), rows, rows == 1 ? "" : "s", name));
  }
  return true;
}

void Conversion::OpenTrial() {
  try {
    auto connection = destination_->OpenAnother();
    connection->Rehearse(nullptr);
    server_ = ServerOver(*connection);
    trial_ = std::make_unique<TrialTable>(std::move(connection), DestinationKind());
  } catch (const RunTimeError&) {
    // What follows from names and lengths is found all the same.
  }
}

void Conversion::BeginTrial(const TableDefinition& table, bool is_kept) {
  if (!trial_) return;
  trial_->StandFor(table.dest_name);
  if (!is_kept) return;
  // A run sends the statement that makes the table all the same.
  NeedRight(TableRight::Create, table.dest_name);
  try {
    MakeCopy(table);
  } catch (const RunTimeError&) {
    trial_->GiveUp();
  }
}

void Conversion::MakeCopy(const TableDefinition& table) {
  if (server_->HasTriggers(table.dest_name)) {
    RemarkUnforeseen("what its triggers do", table.dest_name.Text());
  }
  for (const std::string& statement :
       server_->CopyOf(table.dest_name, trial_->QuotedName(), table.Identity() != nullptr)) {
    const std::string refusal = trial_->Add(statement);
    if (!trial_->IsThere()) {
      return RemarkUnforeseen("which rows " + table.dest_name.Text() + " refuses", refusal);
    }
    if (!refusal.empty()) RemarkUnforeseen("rows that this refuses: " + statement, refusal);
  }
  trial_->CallChecks(server_->RenamedChecks(table.dest_name, trial_->QuotedName()));
}

std::unique_ptr<TrialRows> Conversion::OpenTrialRows(const TableDefinition& table, bool is_new,
                                                     const std::vector<ado::FieldInfo>& fields,
                                                     const std::vector<ColumnFacts>& facts) {
  if (!trial_ || !trial_->IsThere()) return nullptr;
  TableDefinition trial = table;
  trial.dest_name = trial_->Name();
  std::unique_ptr<IRowDestination> rows;
  TrialRows::Meeting meeting;
  if (!is_new) meeting = MeetingWith(table, fields);
  trial_->SwapConnection(destination_);
  try {
    rows = OpenRows(trial, is_new ? TableUse::New : TableUse::Existing, fields, facts);
  } catch (const RunTimeError&) {
    // Rows that do not go into the table at all have been reported for the table itself.
  }
  trial_->SwapConnection(destination_);
  if (!rows) return nullptr;
  return std::make_unique<TrialRows>(*trial_, std::move(rows), std::move(meeting),
                                     is_new ? nullptr : parents_.get());
}

TrialRows::Meeting Conversion::MeetingWith(const TableDefinition& table,
                                           const std::vector<ado::FieldInfo>& fields) {
  const bool is_my_sql = DestinationKind() == ServerKind::MySql;
  const auto equal = [&](const std::string& column, std::string_view form) {
    const std::string name = is_my_sql ? MySqlName(column) : MsSqlName(column);
    const auto side = [&](char of) { return fmt::format(fmt::runtime(form), of, name); };
    return side('o') + " = " + side('t');
  };
  const auto condition = [&](const std::vector<std::string>& columns, std::string_view form) {
    std::string all;
    for (const std::string& column : columns) {
      all += (all.empty() ? "" : " and ") + equal(column, form);
    }
    return fmt::format("exists (select 1 from {} o where {})", DestQuoted(table.dest_name), all);
  };
  const std::string question =
      fmt::format("select count(*) from {} t where ", trial_->QuotedName());
  constexpr std::string_view kPlain = "{}.{}";

  const std::vector<std::string> given = server_->GivenColumns(table.dest_name);
  const auto is_unknown = [&](const std::string& column) {
    const auto is_field = [&](const ado::FieldInfo& field) {
      return text::EqualsIgnoringCase(DestName(field.name), column);
    };
    return column.empty() || (std::ranges::find(given, column) != given.end() &&
                              std::ranges::none_of(fields, is_field));
  };
  std::string conflicts;
  std::vector<ado::Index> indexes = destination_->Indexes(table.dest_name);
  if (new_key_.table == table.dest_name) {
    indexes.push_back({.name = new_key_.name, .primary_key = true, .columns = new_key_.columns});
  }
  for (const ado::Index& index : indexes) {
    const bool tells_rows_apart = (index.unique && index.filter.empty()) || index.primary_key;
    if (!tells_rows_apart || std::ranges::any_of(index.columns, is_unknown)) continue;
    conflicts += (conflicts.empty() ? "" : " or ") + condition(index.columns, kPlain);
  }
  if (conflicts.empty()) return {};
  std::vector<std::string> own;
  for (const std::size_t i :
       IdentifyingFields(catalog_.TableByName(table.name.Text()).Indexes(), fields)) {
    own.push_back(DestName(fields[i].name));
  }
  const std::string_view bytes =
      is_my_sql ? "cast({}.{} as binary)" : "cast({}.{} as varbinary(8000))";
  const std::string same =
      own.empty() ? conflicts : condition(own, kPlain) + " and " + condition(own, bytes);
  const bool may_mix = std::ranges::none_of(fields, [](const ado::FieldInfo& field) {
    return IsMoment(field.type);  // of which some change, and are counted
  });
  return {.conflicts = question + conflicts, .repetitions = question + same, .may_mix = may_mix};
}

std::unique_ptr<IRowDestination> Conversion::Rehearse(std::unique_ptr<IRowDestination> rows,
                                                      const TableDefinition& table, bool is_new,
                                                      const std::vector<ado::FieldInfo>& fields,
                                                      const std::vector<ColumnFacts>& facts) {
  std::vector<ado::Column> there;
  if (!is_new) there = destination_->Columns(table.dest_name);
  std::vector<ColumnRoom> room;
  std::vector<ado::DataType> types;
  for (const ado::FieldInfo& field : fields) {
    const std::string name = DestName(field.name);
    types.push_back(field.type);
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
  return Rehearsed(std::move(rows), {.room = std::move(room),
                                     .types = std::move(types),
                                     .server = DestinationKind(),
                                     .denial = DenialOf(TableRight::Insert, table.dest_name),
                                     .trial = OpenTrialRows(table, is_new, fields, facts),
                                     .is_all_tried = !is_new || MayRefuseRows(table, fields)});
}

void Conversion::ShowExamples(const IRowDestination& rows) {
  for (const std::string& example : rows.Examples()) Remark(example);
  const std::string trouble = parents_ ? parents_->TakeTrouble() : "";
  if (!trouble.empty()) RemarkUnforeseen("rows whose parents are missing", trouble);
}

}  // namespace dorvane
