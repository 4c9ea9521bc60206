#include "mysql/to_mssql/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/literals.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

// The server's limit for a VALUES list.
constexpr std::size_t kMostRowsPerInsert = 1000;
// A batch is sent when it is that long; one row may be longer.
constexpr std::size_t kBatchBytes = 512 * 1024;

std::string_view TextOf(const ado::Value& literal) {
  return std::get<std::string_view>(literal);
}

void AppendTuple(std::string& out, std::span<const ado::Value> literals) {
  const char* separator = "(";
  for (const ado::Value& literal : literals) {
    out += separator;
    out += TextOf(literal);
    separator = ", ";
  }
  out += ')';
}

}  // namespace

RowsToMsSql::RowsToMsSql(ado::Connection& destination, Target target,
                         const std::vector<ado::FieldInfo>& fields,
                         const std::vector<ColumnFacts>& facts)
    : destination_(destination), target_(std::move(target)), fields_(fields), facts_(facts) {
  const std::string table = MsSqlName(target_.table);
  head_ = "INSERT INTO " + table + " (";
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    head_ += (i == 0 ? "" : ", ") + MsSqlName(fields_[i].name);
  }
  head_ += ") ";
  if (!target_.has_identity_column) return;
  identity_on_ = "set identity_insert " + table + " On;";
  identity_off_ = "set identity_insert " + table + " Off;";
}

bool RowsToMsSql::TakesBlocks() {
  LearnTypes();
  return target_.is_new || !(HasTriggers() || RefersToItself());
}

void RowsToMsSql::LearnTypes() {
  types_.assign(fields_.size(), ado::DataType::Empty);
  if (target_.is_new) {
    // Its columns were made for the source's.
    std::ranges::transform(fields_, types_.begin(), &ado::FieldInfo::type);
    return;
  }
  try {
    for (const ado::Column& column : destination_.Columns(target_.table)) {
      for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (text::EqualsIgnoringCase(fields_[i].name, column.name)) types_[i] = column.type;
      }
    }
  } catch (const RunTimeError&) {
    // Without a type numbers are not joined.
  }
}

bool RowsToMsSql::HasTriggers() {
  try {
    ado::Recordset count =
        destination_.Execute("select count(*) from sys.triggers where parent_id = object_id('" +
                             SqlText(MsSqlName(target_.table)) + "')");
    return !count.AtEnd() && count.Field(0).Text() != "0";
  } catch (const RunTimeError&) {
    // A server that does not tell is taken for one that would see the difference.
    return true;
  }
}

bool RowsToMsSql::RefersToItself() {
  const std::string& name = target_.table;
  try {
    return std::ranges::any_of(destination_.Keys(name), [&name](const ado::Key& key) {
      return key.type == ado::KeyType::Foreign && text::EqualsIgnoringCase(key.related_table, name);
    });
  } catch (const RunTimeError&) {
    return true;
  }
}

ado::Value RowsToMsSql::ConvertValue(const ado::Value& value, std::size_t column,
                                     ado::Arena& storage) {
  literal_.clear();
  AppendDataValue(literal_, value, facts_[column]);
  return storage.Store(literal_);
}

BlockResult RowsToMsSql::StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                    std::size_t count) {
  batch_ = "begin transaction;" + identity_on_;
  insert_rows_ = 0;
  try {
    for (std::size_t row = first; row < first + count; ++row) {
      AppendRow(converted.Row(row));
      if (batch_.size() >= kBatchBytes) SendBatch();
    }
    batch_ += insert_rows_ > 0 ? ";" + identity_off_ : identity_off_;
    SendBatch();
    destination_.Execute("commit transaction");
    return BlockResult::Stored;
  } catch (const RunTimeError& error) {
    TryExecute(destination_, "if @@trancount > 0 rollback transaction");
    // The switch is no part of the transaction, and a session has it for one table only.
    if (!identity_off_.empty()) TryExecute(destination_, identity_off_);
    return IsRowRefusal(error.Number()) ? BlockResult::Refused : BlockResult::Failed;
  }
}

void RowsToMsSql::AppendRow(std::span<const ado::Value> literals) {
  row_shapes_.clear();
  for (const ado::Value& literal : literals) row_shapes_.push_back(ShapeOf(TextOf(literal)));
  if (JoinsLastInsert()) {
    batch_ += ',';
  } else {
    if (insert_rows_ > 0) batch_ += ';';
    batch_ += head_;
    batch_ += " VALUES";
    insert_shapes_ = row_shapes_;
    insert_rows_ = 0;
  }
  AppendTuple(batch_, literals);
  ++insert_rows_;
}

bool RowsToMsSql::JoinsLastInsert() {
  if (insert_rows_ == 0 || insert_rows_ == kMostRowsPerInsert) return false;
  for (std::size_t i = 0; i < row_shapes_.size(); ++i) {
    if (!Join(insert_shapes_[i], row_shapes_[i], types_[i])) return false;
  }
  return true;
}

void RowsToMsSql::SendBatch() {
  if (batch_.empty()) return;
  destination_.Execute(batch_);
  batch_.clear();
  insert_rows_ = 0;
}

RowOutcome RowsToMsSql::StoreRow(const ado::RowBlock& converted, std::size_t row) {
  std::string statement = identity_on_ + head_ + " VALUES";
  AppendTuple(statement, converted.Row(row));
  bool is_stored = ExecuteUnlessViolated(statement);
  if (!identity_off_.empty()) is_stored &= ExecuteUnlessViolated(identity_off_);
  return {is_stored ? RowResult::Stored : RowResult::Duplicate};
}

bool RowsToMsSql::ExecuteUnlessViolated(const std::string& statement) {
  try {
    ExecuteOn(destination_, statement);
    return true;
  } catch (const DestinationFailure& failure) {
    const ado::Error* entry = failure.Primary();
    if (target_.leaves_violations_out && entry != nullptr &&
        entry->number == ado::hresult::kIntegrityViolation) {
      return false;
    }
    // The next table's rows need the switch, which a session has for one table only.
    if (!identity_off_.empty()) TryExecute(destination_, identity_off_);
    throw;
  }
}

std::unique_ptr<IRowDestination> MySqlToMsSql::OpenRows(const TableDefinition& table, bool is_new,
                                                        const std::vector<ado::FieldInfo>& fields,
                                                        const std::vector<ColumnFacts>& facts) {
  return std::make_unique<RowsToMsSql>(
      Destination(),
      RowsToMsSql::Target{table.dest_name, table.Identity() != nullptr, is_new, !is_new}, fields,
      facts);
}

void MySqlToMsSql::ReportCopyProblem(const TableDefinition& table, std::string_view problem) {
  RaiseError(fmt::format("Unexpected error while transfering data of table {} - {}",
                         MsSqlName(table.dest_name), problem),
             "MS SQL Server");
}

}  // namespace dorvane
