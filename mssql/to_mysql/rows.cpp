#include "mssql/to_mysql/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/literals.h"
#include "platform/text/code_page.h"

namespace dorvane {

namespace {

constexpr std::size_t kChunkBytes = 1000;

// Duplicate entry, duplicate key, duplicate entry with the key's name.
constexpr std::array kDuplicateErrors{1062, 1022, 1586};

bool IsDuplicate(const ado::Error& error) {
  return error.number == ado::hresult::kErrorsInCommand &&
         std::ranges::find(kDuplicateErrors, error.native_error) != kDuplicateErrors.end();
}

}  // namespace

RowsToMySql::RowsToMySql(ado::Connection& destination, Target target,
                         const std::vector<ado::FieldInfo>& fields,
                         const std::vector<ColumnFacts>& facts)
    : destination_(destination),
      target_(std::move(target)),
      fields_(fields),
      facts_(facts),
      table_(OnDestination(destination, [&] {
        return destination.OpenTable(MySqlName(target_.table), target_.columns);
      })) {}

bool RowsToMySql::TakesBlocks() {
  try {
    ado::Recordset facts = destination_.Execute(fmt::format(
        "select coalesce(e.transactions = 'YES', 0), (select count(*) from "
        "information_schema.triggers where event_object_schema = database() and "
        "event_object_table = '{0}') from information_schema.tables t left join "
        "information_schema.engines e on e.engine = t.engine where t.table_schema = database() "
        "and t.table_name = '{0}'",
        Quote(target_.table)));
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
    table_.InsertRows(converted, first, count);
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
  try {
    Assign(converted.Row(row));
    Update();
    return {};
  } catch (const DestinationFailure& failure) {
    return Resolve(failure, false);
  }
}

void RowsToMySql::Assign(std::span<const ado::Value> row) {
  table_.AddNew();
  has_chunks_ = false;
  last_text_.reset();
  for (std::size_t i = 0; i < row.size(); ++i) {
    ado::Field& field = table_.Field(i);
    if (IsChunkCopied(fields_[i].type)) {
      has_chunks_ = true;
      if (const auto* binary = std::get_if<ado::Binary>(&row[i]))
        AppendChunks(field, binary->bytes);
    } else if (const auto* text = std::get_if<std::string_view>(&row[i])) {
      field.SetText(*text);
      last_text_ = LastText{i, std::string(*text)};
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
  OnDestination(destination_, [this] { table_.Update(); });
}

RowOutcome RowsToMySql::Resolve(const DestinationFailure& failure, bool is_rebuilt) {
  const ado::Error* entry = failure.Primary();
  if (entry == nullptr) throw failure;

  const bool is_bad_value = entry->number == ado::hresult::kErrorsOccurred;
  const bool is_duplicate = IsDuplicate(*entry);
  if ((is_bad_value && has_chunks_) || (is_duplicate && target_.leaves_duplicates_out)) {
    table_.CancelUpdate();
    return {is_duplicate ? RowResult::Duplicate : RowResult::Refused,
            {entry->native_error, entry->description}};
  }
  if (!is_bad_value || is_rebuilt) throw failure;
  RebuildLastText();
  try {
    Update();
    return {RowResult::Changed};
  } catch (const DestinationFailure& second) {
    return Resolve(second, true);
  }
}

void RowsToMySql::RebuildLastText() {
  if (!last_text_) return;
  const std::string rebuilt = text::FromAnsi(text::ToAnsi(last_text_->text));
  if (rebuilt.find('?') != std::string::npos) table_.Field(last_text_->field).SetText(rebuilt);
}

std::unique_ptr<IRowDestination> MsSqlToMySql::OpenRows(const TableDefinition& table, bool is_new,
                                                        const std::vector<ado::FieldInfo>& fields,
                                                        const std::vector<ColumnFacts>& facts) {
  RowsToMySql::Target target{table.dest_name, {}, !is_new};
  for (const ado::FieldInfo& field : fields) target.columns.push_back(DestName(field.name));
  return std::make_unique<RowsToMySql>(Destination(), std::move(target), fields, facts);
}

void MsSqlToMySql::ReportCopyProblem(const TableDefinition& table, std::string_view problem) {
  RaiseError(fmt::format("Unexpected error while transfering data of table {} - {}",
                         table.dest_name, problem),
             "Insertion Error");
}

}  // namespace dorvane
