#include "mssql/to_mysql/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "endpoint/row_identity.h"
#include "endpoint/shown_value.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/literals.h"
#include "mssql/to_mysql/row_faults.h"
#include "mssql/to_mysql/row_question.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::size_t kChunkBytes = 1000;

bool HasTime(const ado::FieldInfo& field) {
  return field.type == ado::DataType::DBTimeStamp || field.type == ado::DataType::DBTime;
}

}  // namespace

ForeignKeyChecksOff::ForeignKeyChecksOff(ado::Connection& destination) : destination_(destination) {
  ExecuteOn(destination_, "set foreign_key_checks = 0");
}

ForeignKeyChecksOff::~ForeignKeyChecksOff() {
  TryExecute(destination_, "set foreign_key_checks = 1");
}

RowsToMySql::RowsToMySql(ado::Connection& destination, Target target,
                         const std::vector<ado::FieldInfo>& fields, std::vector<ColumnFacts> facts)
    : destination_(destination),
      target_(std::move(target)),
      fields_(fields),
      facts_(std::move(facts)),
      checks_off_(target_.is_ahead_of_parents ? std::make_unique<ForeignKeyChecksOff>(destination)
                                              : nullptr) {
  if (!target_.is_compared) {
    table_ = OnDestination(destination, [&] {
      return destination.OpenTable(MySqlTable(target_.table), target_.columns);
    });
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (HasTime(fields_[i])) time_columns_.push_back(i);
  }
  if (!target_.is_new && !time_columns_.empty()) LearnFractions();
}

void RowsToMySql::LearnFractions() {
  const std::vector<ado::Column> columns =
      OnDestination(destination_, [this] { return destination_.Columns(target_.table); });
  for (const std::size_t i : time_columns_) {
    for (const ado::Column& column : columns) {
      if (!HasTime(column)) continue;
      if (!text::EqualsIgnoringCase(column.name, target_.columns[i])) continue;
      facts_[i].fraction_digits = column.numeric_scale;
    }
  }
}

bool RowsToMySql::TakesBlocks() {
  if (!target_.is_new || target_.new_takes_blocks == nullptr) {
    return IsTransactionalWithoutTriggers();
  }
  std::optional<bool>& known = *target_.new_takes_blocks;
  if (!known) known = IsTransactionalWithoutTriggers();
  return *known;
}

bool RowsToMySql::IsTransactionalWithoutTriggers() {
  try {
    ado::Recordset facts = destination_.Execute(fmt::format(
        "select coalesce(e.transactions = 'YES', 0), (select count(*) from "
        "information_schema.triggers where event_object_schema = {1} and "
        "event_object_table = '{0}') from information_schema.tables t left join "
        "information_schema.engines e on e.engine = t.engine where t.table_schema = {1} "
        "and t.table_name = '{0}'",
        Quote(target_.table.name), SchemaText(target_.table)));
    return !facts.AtEnd() && facts.Field(0).Text() == "1" && facts.Field(1).Text() == "0";
  } catch (const RunTimeError&) {
    // A server that does not tell is taken for one that would see the difference.
    return false;
  }
}

ado::Value RowsToMySql::ConvertValue(const ado::Value& value, std::size_t column,
                                     ado::Arena& storage) {
  if (IsChunkCopied(fields_[column].type)) return value;
  return DataValue(value, fields_[column], facts_[column], storage);
}

BlockResult RowsToMySql::StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                    std::size_t count) {
  bool in_transaction = false;
  try {
    destination_.BeginTrans();
    in_transaction = true;
    table_->InsertRows(converted, first, count);
    destination_.CommitTrans();
    return BlockResult::Stored;
  } catch (const RunTimeError& error) {
    if (in_transaction) {
      try {
        destination_.RollbackTrans();
      } catch (const RunTimeError&) {
        return BlockResult::Failed;
      }
    }
    return IsRowRefusal(error.Number()) ? BlockResult::Refused : BlockResult::Failed;
  }
}

RowOutcome RowsToMySql::StoreRow(const ado::RowBlock& converted, std::size_t row) {
  Assign(converted.Row(row));
  std::int64_t replaced = 0;
  for (;;) {
    try {
      Update();
      replaced_texts_.count += replaced;
      return {replaced > 0 ? RowResult::Changed : RowResult::Stored};
    } catch (const DestinationFailure& failure) {
      const ado::Error* entry = failure.Primary();
      const RowFault fault = entry != nullptr ? FaultOf(*entry) : RowFault::None;
      if (fault == RowFault::None) throw;
      if (fault == RowFault::Characters && replaced == 0) {
        replaced = ReplaceCharacters(converted.Row(row));
        if (replaced > 0) continue;
      }
      const ErrorSummary reason{entry->native_error, entry->description};
      table_->CancelUpdate();
      if (fault == RowFault::Duplicate && IsThere(converted.Row(row))) {
        return {RowResult::Duplicate};
      }
      return {RowResult::Refused, reason};
    }
  }
}

void RowsToMySql::Assign(std::span<const ado::Value> row) {
  table_->AddNew();
  for (std::size_t i = 0; i < row.size(); ++i) {
    ado::Field& field = table_->Field(i);
    if (IsChunkCopied(fields_[i].type)) {
      const auto* binary = std::get_if<ado::Binary>(&row[i]);
      if (binary != nullptr) AppendChunks(field, binary->bytes);
    } else if (const auto* text = std::get_if<std::string_view>(&row[i])) {
      field.SetText(*text);
    } else if (const auto* binary = std::get_if<ado::Binary>(&row[i])) {
      field.AppendChunk(binary->bytes);
    } else {
      field.SetNull();
    }
  }
}

void RowsToMySql::AppendChunks(ado::Field& field, std::string_view bytes) {
  // An empty value is appended too, which tells it from NULL.
  do {
    field.AppendChunk(bytes.substr(0, kChunkBytes));
    bytes.remove_prefix(std::min(kChunkBytes, bytes.size()));
  } while (!bytes.empty());
}

void RowsToMySql::Update() {
  OnDestination(destination_, [this] { table_->Update(); });
}

bool RowsToMySql::IsThere(std::span<const ado::Value> row) {
  if (target_.is_new) return false;
  if (target_.identity.empty()) return true;
  try {
    return !destination_
                .Execute(
                    RowQuestion(target_.table, target_.columns, fields_, target_.identity, row))
                .AtEnd();
  } catch (const RunTimeError&) {
    // The server's word for it must do.
    return true;
  }
}

std::int64_t RowsToMySql::ReplaceCharacters(std::span<const ado::Value> row) {
  std::int64_t replaced = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const auto* text = std::get_if<std::string_view>(&row[i]);
    if (text == nullptr || text::IsAscii(*text)) continue;
    const std::string& character_set = CharacterSetOf(target_.columns[i]);
    if (character_set.empty()) continue;
    const std::string stored = AsStored(*text, character_set);
    if (stored == *text) continue;
    table_->Field(i).SetText(stored);
    std::string& first = replaced_texts_.first;
    if (first.empty()) first = ShownValue(target_.columns[i], *text);
    ++replaced;
  }
  return replaced;
}

const std::string& RowsToMySql::CharacterSetOf(const std::string& column) {
  if (character_sets_.empty()) {
    ado::Recordset sets = OnDestination(destination_, [this] {
      return destination_.Execute("show full columns from " + MySqlTable(target_.table));
    });
    for (; !sets.AtEnd(); sets.MoveNext()) {
      const std::string collation = sets.Field("Collation").Text();
      character_sets_[text::ToLower(sets.Field("Field").Text())] =
          collation.substr(0, collation.find('_'));
    }
  }
  return character_sets_[text::ToLower(column)];
}

std::string RowsToMySql::AsStored(std::string_view text, const std::string& character_set) {
  try {
    // The server's own conversion puts "?" for a character that the set lacks.
    ado::Recordset converted = destination_.Execute(
        fmt::format("select convert(convert(_utf8mb4 {} using {}) using utf8mb4)", HexCode(text),
                    character_set));
    if (!converted.AtEnd()) return converted.Field(0).Text();
  } catch (const RunTimeError&) {
    // Too long for a question: the row is refused as it was.
  }
  return std::string(text);
}

void RowsToMySql::RowStored(std::span<const ado::Value> source_row) {
  for (const std::size_t i : time_columns_) {
    const auto* moment = std::get_if<ado::DateTime>(&source_row[i]);
    if (moment != nullptr && LosesFraction(*moment, facts_[i])) {
      Count(cut_fractions_, fields_[i], *moment);
    }
  }
}

std::unique_ptr<IRowDestination> MsSqlToMySql::OpenRows(const TableDefinition& table, TableUse use,
                                                        const std::vector<ado::FieldInfo>& fields,
                                                        const std::vector<ColumnFacts>& facts) {
  const bool is_new = use == TableUse::New;
  RowsToMySql::Target target{.table = table.dest_name,
                             .columns = {},
                             .is_new = is_new,
                             .is_compared = use == TableUse::Compared,
                             .is_ahead_of_parents = use == TableUse::Existing && IsMerging() &&
                                                    Options().convert_relationships,
                             .new_takes_blocks = &new_takes_blocks_};
  if (target.is_ahead_of_parents) unchecked_tables_.insert(table.dest_name);
  for (const ado::FieldInfo& field : fields) target.columns.push_back(DestName(field.name));
  if (!is_new) {
    target.identity =
        IdentifyingFields(SourceCatalog().TableByName(table.name.Text()).Indexes(), fields);
  }
  return std::make_unique<RowsToMySql>(Destination(), std::move(target), fields, facts);
}

void MsSqlToMySql::ReportCopyProblem(const TableDefinition& table, std::string_view problem) {
  RaiseError(fmt::format("Unexpected error while transfering data of table {} - {}",
                         table.dest_name.Text(), problem),
             "Insertion Error");
}

}  // namespace dorvane::to_mysql
