#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"
#include "tests/conversions/script.h"

namespace dorvane::test {

std::string Replaced(std::string text, std::string_view part, std::string_view by);

/// The text as one line of a script.
std::string Shown(const std::string& text);

/// The values of a row as text. Where an identifier is to be compared with what holds bytes, it is
/// its bytes.
Lines Cells(ado::Recordset& row, bool identifiers_as_bytes = false);

/// The columns of a table and its rows by their first cell.
struct Table {
  Lines columns;
  std::map<std::string, Lines> rows;
};

Table ReadTable(ado::Connection& connection, const std::string& quoted_name,
                bool identifiers_as_bytes);

/// "name: row 7 is missing", "name: column of row 7: a became b". Columns are the same where their
/// names are.
Lines DifferencesOf(const std::string& name, const Table& source, const Table& dest);

}  // namespace dorvane::test
