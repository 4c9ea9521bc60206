#include "mysql/to_mssql/insert_batch.h"

#include <algorithm>

#include "endpoint/names.h"
#include "mysql/to_mssql/literals.h"

namespace dorvane::to_mssql {

namespace {

// The server takes so many rows in one VALUES list, and makes the plan of a list of more values
// than that anew each time, which costs more than the rows.
constexpr std::size_t kMostValuesPerInsert = 1000;
// A batch is sent when it is that long; one row may be longer.
constexpr std::size_t kBatchBytes = 512 * 1024;
// A longer one does not become a literal: with the copies that a driver makes of a statement it
// would be in memory twelve times.
constexpr std::size_t kLongestLiteral = 128 * 1024;

bool IsLong(const ado::Value& value) {
  return ado::BytesOf(value).size() > kLongestLiteral;
}

}  // namespace

InsertBatch::InsertBatch(ado::Connection& destination, const ado::TableName& table,
                         const std::vector<std::string>& columns,
                         const std::vector<ColumnFacts>& facts, Manner manner)
    : destination_(destination),
      facts_(facts),
      sends_pieces_(manner.sends_pieces),
      types_(columns.size(), ado::DataType::Empty) {
  const std::string name = MsSqlTable(table);
  head_ = "INSERT INTO " + name + " (";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    head_ += (i == 0 ? "" : ", ") + MsSqlName(columns[i]);
  }
  head_ += ") ";
  if (!manner.gives_identity) return;
  identity_on_ = "set identity_insert " + name + " On;";
  identity_off_ = "set identity_insert " + name + " Off;";
}

std::string InsertBatch::StatementOf(std::span<const ado::Value> row) const {
  return identity_on_ + InsertOf(row, nullptr);
}

bool InsertBatch::GoesInPieces(std::span<const ado::Value> row) const {
  return sends_pieces_ && std::ranges::any_of(row, IsLong);
}

std::string InsertBatch::InsertOf(std::span<const ado::Value> row,
                                  std::vector<ado::Value>* long_values) const {
  std::string statement = head_ + " VALUES";
  for (std::size_t i = 0; i < row.size(); ++i) {
    statement += i == 0 ? "(" : ", ";
    if (long_values != nullptr && IsLong(row[i])) {
      statement += '?';
      long_values->push_back(row[i]);
    } else {
      AppendDataValue(statement, row[i], facts_[i]);
    }
  }
  return statement + ')';
}

void InsertBatch::ExecuteRow(std::span<const ado::Value> row) {
  if (!GoesInPieces(row)) {
    destination_.Execute(StatementOf(row));
    return;
  }
  // A statement with parameters has its own switches: those of the session go before it.
  if (!identity_on_.empty()) destination_.Execute(identity_on_);
  std::vector<ado::Value> long_values;
  const std::string statement = InsertOf(row, &long_values);
  destination_.ExecuteWith(statement, long_values);
}

void InsertBatch::Begin(std::string_view first) {
  text_ = first;
  text_ += identity_on_;
  insert_rows_ = 0;
}

void InsertBatch::Add(std::span<const ado::Value> row) {
  if (GoesInPieces(row)) {
    Send();
    ExecuteRow(row);
    return;
  }
  tuple_.clear();
  row_shapes_.clear();
  for (std::size_t i = 0; i < row.size(); ++i) {
    tuple_ += i == 0 ? "(" : ", ";
    const std::size_t literal = tuple_.size();
    AppendDataValue(tuple_, row[i], facts_[i]);
    row_shapes_.push_back(ShapeOf(std::string_view(tuple_).substr(literal)));
  }
  if (JoinsLastInsert()) {
    text_ += ',';
  } else {
    if (insert_rows_ > 0) text_ += ';';
    text_ += head_;
    text_ += " VALUES";
    insert_shapes_ = row_shapes_;
    insert_rows_ = 0;
  }
  text_ += tuple_;
  text_ += ')';
  ++insert_rows_;
  if (text_.size() >= kBatchBytes) Send();
}

bool InsertBatch::JoinsLastInsert() {
  if (insert_rows_ == 0 || (insert_rows_ + 1) * row_shapes_.size() > kMostValuesPerInsert) {
    return false;
  }
  for (std::size_t i = 0; i < row_shapes_.size(); ++i) {
    if (!Join(insert_shapes_[i], row_shapes_[i], types_[i])) return false;
  }
  return true;
}

void InsertBatch::Finish() {
  text_ += insert_rows_ > 0 && !identity_off_.empty() ? ";" + identity_off_ : identity_off_;
  Send();
}

void InsertBatch::Send() {
  if (text_.empty()) return;
  destination_.Execute(text_);
  text_.clear();
  insert_rows_ = 0;
}

}  // namespace dorvane::to_mssql
