#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/row_block.h"

namespace dorvane::ado::mysql {

class ClientSession;

/// Sends many rows as one text that the server loads, which costs it much less than statements.
class RowLoader {
 public:
  /// `table` is quoted where it must be.
  RowLoader(ClientSession& session, std::string_view table,
            const std::vector<std::string>& columns);

  /// Adds the rows to the open transaction. False when they are better inserted, and none of them
  /// is left in the table: few rows, bytes among the texts, a session that does not load, or a
  /// server that would have changed a value or left a row out. Throws ProviderError when the
  /// connection or the transaction is lost.
  bool Load(const RowBlock& rows, std::size_t first, std::size_t count);

 private:
  /// False when the server did not store them all as they are.
  bool LoadText(std::size_t rows);

  ClientSession& session_;
  std::string statement_;
  std::string text_;
  bool is_given_up_ = false;  // the rest of this table's rows are inserted
};

/// A row as a line that LOAD DATA reads in its standard format.
void AppendLine(std::string& text, std::span<const Value> row);

}  // namespace dorvane::ado::mysql
