#include "mysql/to_mssql/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/literals.h"
#include "mysql/to_mssql/row_faults.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

// The server's limit for a VALUES list.
constexpr std::size_t kMostRowsPerInsert = 1000;
// A batch is sent when it is that long; one row may be longer.
constexpr std::size_t kBatchBytes = 512 * 1024;

// Behind the count, by the bits of TimeChange.
constexpr std::string_view kChangeTexts[kTimeChanges] = {
    "dates that do not exist became 1753-01-01",
    "dates before 1753-01-01 were raised to it",
    "times were put on 1899-12-30",
    "times below zero or beyond a day were added to 1899-12-30",
    "fractions of a second were cut",
};

// A converted value is its literal behind one character that holds its TimeChange bits.
constexpr unsigned kNoChange = '@';

std::string_view TextOf(const ado::Value& literal) {
  return std::get<std::string_view>(literal).substr(1);
}

unsigned ChangesIn(const ado::Value& literal) {
  return static_cast<unsigned char>(std::get<std::string_view>(literal).front()) - kNoChange;
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
    head_ += (i == 0 ? "" : ", ") + MsSqlName(target_.columns[i]);
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
        if (text::EqualsIgnoringCase(target_.columns[i], column.name)) types_[i] = column.type;
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
  const auto* moment = std::get_if<ado::DateTime>(&value);
  const unsigned changes = moment != nullptr ? ChangesOf(*moment, fields_[column].type) : 0;
  literal_.assign(1, static_cast<char>(kNoChange + changes));
  AppendDataValue(literal_, value, facts_[column]);
  return storage.Store(literal_);
}

BlockResult RowsToMsSql::StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                    std::size_t count) {
  batch_ = "begin transaction;" + identity_on_;
  insert_rows_ = 0;
  ChangeCounts changes = changes_;
  try {
    for (std::size_t row = first; row < first + count; ++row) {
      AppendRow(converted.Row(row));
      CountChanges(converted.Row(row), changes);
      if (batch_.size() >= kBatchBytes) SendBatch();
    }
    batch_ += insert_rows_ > 0 ? ";" + identity_off_ : identity_off_;
    SendBatch();
    destination_.Execute("commit transaction");
    changes_ = changes;
    handled_ += static_cast<std::int64_t>(count);
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
  ++handled_;
  const RowOutcome outcome = ExecuteRow(statement);
  if (!identity_off_.empty()) ExecuteOn(destination_, identity_off_);
  const bool is_stored =
      outcome.result == RowResult::Stored || outcome.result == RowResult::Postponed;
  if (is_stored) CountChanges(converted.Row(row), changes_);
  return outcome;
}

RowOutcome RowsToMsSql::ExecuteRow(const std::string& statement) {
  try {
    ExecuteOn(destination_, statement);
    return {};
  } catch (const DestinationFailure& failure) {
    const ado::Error* entry = failure.Primary();
    const RowFault fault = entry != nullptr ? FaultOf(entry->native_error) : RowFault::None;
    if (fault == RowFault::None) {
      // The next table's rows need the switch, which a session has for one table only.
      if (!identity_off_.empty()) TryExecute(destination_, identity_off_);
      throw;
    }
    if (fault == RowFault::Duplicate && !target_.is_new) return {RowResult::Duplicate};
    return RefusalOf(*entry, statement);
  }
}

RowOutcome RowsToMsSql::RefusalOf(const ado::Error& error, const std::string& statement) {
  ErrorSummary reason{error.native_error, error.description};
  if (target_.waiting != nullptr && MayComeRight(error) &&
      target_.waiting->Add({.table = target_.table,
                            .position = handled_,
                            .statement = statement,
                            .after = identity_off_,
                            .reason = reason})) {
    return {RowResult::Postponed};
  }
  return {RowResult::Refused, std::move(reason)};
}

void RowsToMsSql::CountChanges(std::span<const ado::Value> literals, ChangeCounts& counts) {
  for (const ado::Value& literal : literals) {
    const unsigned changes = ChangesIn(literal);
    for (unsigned bit = 0; changes >> bit != 0; ++bit) counts[bit] += changes >> bit & 1;
  }
}

std::vector<ValueChanges> RowsToMsSql::Changes() const {
  std::vector<ValueChanges> changes;
  for (unsigned bit = 0; bit < kTimeChanges; ++bit) {
    changes.push_back({changes_[bit], std::string(kChangeTexts[bit])});
  }
  return changes;
}

std::unique_ptr<IRowDestination> MySqlToMsSql::OpenRows(const TableDefinition& table, bool is_new,
                                                        const std::vector<ado::FieldInfo>& fields,
                                                        const std::vector<ColumnFacts>& facts) {
  RowsToMsSql::Target target{.table = table.dest_name,
                             .columns = {},
                             .has_identity_column = table.Identity() != nullptr &&
                                                    (is_new || HasIdentity(table.dest_name)),
                             .is_new = is_new,
                             .waiting = is_new ? nullptr : &waiting_};
  for (const ado::FieldInfo& field : fields) target.columns.push_back(DestName(field.name));
  return std::make_unique<RowsToMsSql>(Destination(), std::move(target), fields, facts);
}

bool MySqlToMsSql::HasIdentity(const std::string& dest_table) {
  ado::Recordset count = OnDestination(Destination(), [&] {
    return Destination().Execute(
        "select count(*) from sys.columns where is_identity = 1 and object_id = object_id('" +
        SqlText(MsSqlName(dest_table)) + "')");
  });
  return count.AtEnd() || count.Field(0).Text() != "0";
}

void MySqlToMsSql::StorePostponedRows() {
  if (waiting_.IsEmpty()) return;
  try {
    KeepConnected();
  } catch (const RunTimeError&) {
    // Then every row is refused, and reported.
  }
  for (const WaitingRows::Refusal& refusal : waiting_.Store(Destination())) {
    ReportRowProblem(refusal.table,
                     fmt::format("{} rows were not copied; the first: {} - {} (row {})",
                                 refusal.rows, refusal.first_reason.number,
                                 refusal.first_reason.description, refusal.first_position));
  }
}

void MySqlToMsSql::ReportCopyProblem(const TableDefinition& table, std::string_view problem) {
  ReportRowProblem(table.dest_name, problem);
}

void MySqlToMsSql::ReportRowProblem(const std::string& dest_table, std::string_view problem) {
  RaiseError(fmt::format("Unexpected error while transfering data of table {} - {}",
                         MsSqlName(dest_table), problem),
             "MS SQL Server");
}

}  // namespace dorvane::to_mssql
