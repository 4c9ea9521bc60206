#include "tests/conversions/table_differences.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/literal_text.h"

namespace dorvane::test {

namespace {

std::string CellText(ado::Field& field, bool identifiers_as_bytes) {
  if (field.IsNull()) return "NULL";
  if (const auto* bytes = std::get_if<ado::Binary>(&field.Value())) return HexCode(bytes->bytes);
  const auto* guid = std::get_if<ado::Guid>(&field.Value());
  return guid && identifiers_as_bytes ? HexCode(GuidBytes(guid->text)) : field.Text();
}

class TableDifferences {
 public:
  TableDifferences(std::string name, const Table& source, const Table& dest)
      : name_(std::move(name)) {
    for (const auto& [key, cells] : source.rows) {
      const auto row = dest.rows.find(key);
      if (row == dest.rows.end()) {
        Add("row {} is missing", key);
      } else {
        AddCells(key, source.columns, cells, dest.columns, row->second);
      }
    }
    for (const auto& row : dest.rows) {
      if (!source.rows.contains(row.first)) Add("row {} is more", row.first);
    }
  }
  const Lines& Found() const { return found_; }

 private:
  void AddCells(const std::string& key, const Lines& source_columns, const Lines& source,
                const Lines& dest_columns, const Lines& dest) {
    for (std::size_t i = 0; i < source.size(); ++i) {
      const auto column = std::ranges::find(dest_columns, source_columns[i]);
      if (column == dest_columns.end()) {
        Add("{} of row {} is missing", source_columns[i], key);
        continue;
      }
      const std::string& there = dest[static_cast<std::size_t>(column - dest_columns.begin())];
      if (source[i] != there) {
        Add("{} of row {}: {} became {}", source_columns[i], key, source[i], there);
      }
    }
  }

  template <typename... Parts>
  void Add(fmt::format_string<Parts...> text, Parts&&... parts) {
    found_.push_back(Shown(name_ + ": " + fmt::format(text, std::forward<Parts>(parts)...)));
  }

  std::string name_;
  Lines found_;
};

}  // namespace

std::string Replaced(std::string text, std::string_view part, std::string_view by) {
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size()) {
    text.replace(at, part.size(), by);
  }
  return text;
}

/// The text as one line of a script.
std::string Shown(const std::string& text) {
  if (text.empty()) return "(empty)";
  return Replaced(Replaced(text, "\n", "\\n"), std::string(1, '\0'), "\\0");
}

Lines Cells(ado::Recordset& row, bool identifiers_as_bytes) {
  Lines cells;
  for (std::size_t i = 0; i < row.FieldCount(); ++i) {
    cells.push_back(CellText(row.Field(i), identifiers_as_bytes));
  }
  return cells;
}

Table ReadTable(ado::Connection& connection, const std::string& quoted_name,
                bool identifiers_as_bytes) {
  Table table;
  ado::Recordset rows = connection.Execute("select * from " + quoted_name);
  for (const ado::FieldInfo& each : rows.FieldInfos()) table.columns.push_back(each.name);
  for (; !rows.AtEnd(); rows.MoveNext()) {
    const Lines cells = Cells(rows, identifiers_as_bytes);
    std::string key = cells[0];
    while (table.rows.contains(key)) key += " again";
    table.rows.emplace(key, cells);
  }
  return table;
}

Lines DifferencesOf(const std::string& name, const Table& source, const Table& dest) {
  return TableDifferences(name, source, dest).Found();
}

}  // namespace dorvane::test
