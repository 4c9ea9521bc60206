#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/odbc/column_buffer.h"
#include "platform/ado/odbc/handle.h"
#include "platform/ado/odbc/logon.h"
#include "platform/ado/provider.h"

namespace dorvane::ado::odbc {

/// Reads a statement's results forwards. A result whose columns all have a limit is fetched as
/// arrays of rows; in one with long columns each row is fetched by itself, and the columns from the
/// first long one on are asked for one by one.
///
/// The end of a result is noticed with its last rows: the reader is then at the next
/// result, or has freed the connection for other statements.
class OdbcResultReader : public ResultReader {
 public:
  /// Takes over a statement that has been executed, and what its execution returned. Steps over
  /// results without columns; a batch that has no others has been carried out whole when this
  /// returns. Throws ProviderError, the first failure of the batch; what stands behind it in the
  /// batch is cancelled.
  OdbcResultReader(std::shared_ptr<Logon> logon, Statement statement, SQLRETURN executed);
  ~OdbcResultReader() override;

  const std::vector<FieldInfo>& Fields() const override { return fields_; }
  bool Read(RowBlock& block) override;
  bool NextResult() override;

 private:
  enum class State { InResult, BeforeNextResult, Finished };

  bool SeekResult(SQLRETURN result);
  void LeaveResult();
  void OpenResult();
  void DescribeColumn(SQLUSMALLINT column);
  std::string TypeName(SQLUSMALLINT column) const;
  void BindColumns();
  void ReadRows(RowBlock& block);
  bool FetchRows();
  void ConvertRow(RowBlock& block);
  void Finish();
  void Check(SQLRETURN result) const;
  void ThrowPendingFailure();

  std::shared_ptr<Logon> logon_;
  Statement statement_;
  State state_ = State::Finished;
  std::vector<FieldInfo> fields_;
  std::vector<ColumnBuffer> columns_;
  std::size_t bound_columns_ = 0;  // the columns behind them are asked for one by one
  std::size_t array_size_ = 1;     // rows per fetch
  SQLULEN fetched_rows_ = 0;
  std::size_t position_ = 0;  // of the next row among the fetched ones
  bool is_last_array_ = false;
  std::optional<ProviderError> fetch_failure_;    // follows the fetched rows
  std::optional<ProviderError> pending_failure_;  // met behind rows that were still delivered
};

}  // namespace dorvane::ado::odbc
