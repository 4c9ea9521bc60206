#include "platform/ado/odbc/result_reader.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <utility>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/server_types.h"
#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado::odbc {

namespace {

constexpr std::size_t kArrayBytes = 256 * 1024;
constexpr std::size_t kMaxArrayRows = 500;

/// A call that succeeded may have an error to report all the same: FreeTDS says so of rows that an
/// error follows.
bool HasError(const Diagnostics& records) {
  return std::any_of(records.begin(), records.end(), IsError);
}

}  // namespace

OdbcResultReader::OdbcResultReader(std::shared_ptr<Logon> logon, Statement statement,
                                   SQLRETURN executed)
    : logon_(std::move(logon)), statement_(std::move(statement)) {
  if (SeekResult(executed)) {
    OpenResult();
  } else {
    Finish();
  }
}

OdbcResultReader::~OdbcResultReader() {
  logon_->Watch([&] { Finish(); });
}

bool OdbcResultReader::Read(RowBlock& block) {
  block.Clear(fields_.size());
  ThrowPendingFailure();
  try {
    logon_->Watch([&] { ReadRows(block); });
  } catch (const ProviderError& error) {
    Finish();
    if (block.Rows() == 0) throw;
    pending_failure_ = error;
  }
  return block.Rows() > 0;
}

bool OdbcResultReader::NextResult() {
  ThrowPendingFailure();
  try {
    return logon_->Watch([&] {
      if (state_ == State::InResult) LeaveResult();
      if (state_ != State::BeforeNextResult) return false;
      OpenResult();
      return true;
    });
  } catch (const ProviderError&) {
    Finish();
    throw;
  }
}

void OdbcResultReader::ThrowPendingFailure() {
  if (pending_failure_) throw std::exchange(pending_failure_, std::nullopt).value();
}

/// From what an execution or a step to the next result returned on to a result with columns.
bool OdbcResultReader::SeekResult(SQLRETURN result) {
  while (true) {
    // An execution says "no data" of a statement that changed no row.
    if (result != SQL_NO_DATA) {
      Check(result);
      SQLSMALLINT columns = 0;
      Check(SQLNumResultCols(statement_.Get(), &columns));
      if (columns > 0) return true;
    }
    result = SQLMoreResults(statement_.Get());
    if (result == SQL_NO_DATA) return false;
  }
}

void OdbcResultReader::LeaveResult() {
  const SQLRETURN result = SQLMoreResults(statement_.Get());
  if (result != SQL_NO_DATA && SeekResult(result)) {
    state_ = State::BeforeNextResult;
  } else {
    Finish();
  }
}

void OdbcResultReader::OpenResult() {
  fields_.clear();
  columns_.clear();
  position_ = 0;
  fetched_rows_ = 0;
  is_last_array_ = false;
  SQLSMALLINT count = 0;
  Check(SQLNumResultCols(statement_.Get(), &count));
  for (SQLUSMALLINT column = 1; column <= count; ++column) DescribeColumn(column);
  BindColumns();
  state_ = State::InResult;
  logon_->SetStreaming(true);
}

void OdbcResultReader::DescribeColumn(SQLUSMALLINT column) {
  char16_t name[256] = {};
  SQLSMALLINT length = 0;
  SQLSMALLINT code = 0;
  SQLULEN size = 0;
  SQLSMALLINT scale = 0;
  SQLSMALLINT nullable = 0;
  CheckStatement(SQLDescribeColW(statement_.Get(), column, reinterpret_cast<SQLWCHAR*>(name),
                                 std::size(name), &length, &code, &size, &scale, &nullable),
                 statement_.Get());
  const ServerType& type = FindServerType(TypeName(column), code);
  const DeclaredSize declared = {static_cast<std::int64_t>(size), scale};
  FieldInfo field = DescribeField(type, declared);
  field.name = ToUtf8(name);
  columns_.emplace_back(type.fetch_type, declared.size, IsUnlimited(type, declared), field.name);
  fields_.push_back(std::move(field));
}

std::string OdbcResultReader::TypeName(SQLUSMALLINT column) const {
  char16_t name[128] = {};
  SQLSMALLINT bytes = 0;
  SQLColAttributeW(statement_.Get(), column, SQL_DESC_TYPE_NAME, name, sizeof name, &bytes,
                   nullptr);
  return ToUtf8(name);
}

void OdbcResultReader::BindColumns() {
  const auto first_long =
      std::find_if(columns_.begin(), columns_.end(), [](const auto& c) { return c.IsLong(); });
  bound_columns_ = first_long - columns_.begin();
  std::size_t row_bytes = 0;
  for (std::size_t i = 0; i < bound_columns_; ++i) row_bytes += columns_[i].RowBytes();
  const bool in_arrays = first_long == columns_.end();
  array_size_ = in_arrays ? std::clamp<std::size_t>(kArrayBytes / row_bytes, 1, kMaxArrayRows) : 1;

  const SQLHANDLE statement = statement_.Get();
  SQLFreeStmt(statement, SQL_UNBIND);
  CheckStatement(
      SQLSetStmtAttrW(statement, SQL_ATTR_ROW_ARRAY_SIZE, AttributeValue(array_size_), 0),
      statement);
  CheckStatement(SQLSetStmtAttrW(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_rows_, 0),
                 statement);
  for (std::size_t i = 0; i < bound_columns_; ++i) {
    columns_[i].Bind(statement, static_cast<SQLUSMALLINT>(i + 1), array_size_);
  }
}

void OdbcResultReader::ReadRows(RowBlock& block) {
  while (state_ == State::InResult && !block.IsFull()) {
    if (position_ < fetched_rows_) {
      ConvertRow(block);
    } else if (fetch_failure_) {
      throw std::exchange(fetch_failure_, std::nullopt).value();
    } else if (is_last_array_ || !FetchRows()) {
      LeaveResult();
    }
  }
}

bool OdbcResultReader::FetchRows() {
  position_ = 0;
  fetched_rows_ = 0;
  const SQLRETURN result = SQLFetch(statement_.Get());
  if (result == SQL_NO_DATA) return false;
  try {
    Check(result);
  } catch (const ProviderError& error) {
    if (!SQL_SUCCEEDED(result)) throw;
    fetch_failure_ = error;
  }
  is_last_array_ = fetched_rows_ < array_size_;
  for (std::size_t i = bound_columns_; i < columns_.size(); ++i) {
    columns_[i].Get(statement_.Get(), static_cast<SQLUSMALLINT>(i + 1));
  }
  return true;
}

void OdbcResultReader::ConvertRow(RowBlock& block) {
  const std::span<Value> row = block.AppendRow();
  try {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      row[i] = columns_[i].Convert(position_, block.Storage());
    }
  } catch (const ProviderError&) {
    block.DropLastRow();
    throw;
  }
  ++position_;
}

/// Frees the statement, which cancels it on the server if it is not at its end.
void OdbcResultReader::Finish() {
  state_ = State::Finished;
  if (!statement_) return;
  statement_ = Statement();
  logon_->SetStreaming(false);
}

void OdbcResultReader::Check(SQLRETURN result) const {
  if (result == SQL_SUCCESS) return;
  const Diagnostics records = ReadDiagnostics(SQL_HANDLE_STMT, statement_.Get());
  if (SQL_SUCCEEDED(result) && !HasError(records)) return;
  throw logon_->IsLost() ? LostConnectionError(records) : StatementError(records);
}

}  // namespace dorvane::ado::odbc
