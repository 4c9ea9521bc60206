#include "sandbox/tds/bulk_load.h"

#include <strings.h>

#include <vector>

#include "sandbox/tds/tokens.h"
#include "sandbox/tds/type_decoder.h"

namespace sandbox::tds {

namespace {

std::vector<WireType> ReadColumns(ByteReader& reader) {
  if (static_cast<Token>(reader.U8()) != Token::ColMetadata) {
    throw ProtocolError("a bulk load starts without its columns");
  }
  std::vector<WireType> columns(reader.U16());
  for (WireType& column : columns) {
    reader.Skip(4);  // user type
    reader.Skip(2);  // flags
    column = ReadTypeInfo(reader);
    if (column.shape == WireShape::Long) reader.Skip(2U * reader.U16());  // table name
    reader.Skip(2U * reader.U8());                                        // column name
  }
  return columns;
}

std::string_view NextWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  std::string_view word = text.substr(0, text.find_first_of(" \t\r\n"));
  text.remove_prefix(word.size());
  return word;
}

bool IsWord(std::string_view text, std::string_view word) {
  return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0;
}

}  // namespace

bool IsInsertBulk(std::string_view batch) {
  return IsWord(NextWord(batch), "insert") && IsWord(NextWord(batch), "bulk");
}

void LoadRows(ByteReader& reader, BulkTarget& target, ResultWriter& results) {
  std::vector<WireType> columns = ReadColumns(reader);
  if (columns.size() != target.Columns().size()) {
    throw ProtocolError("a bulk load's columns are not those it announced");
  }
  std::vector<Value> row(columns.size());
  // Some clients end with a DONE token, some with their last row.
  while (!reader.AtEnd() && static_cast<Token>(reader.U8()) == Token::Row) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      row[i] = ReadValue(reader, columns[i], LongForm::InRow);
    }
    if (!target.Row(row, results)) return;
  }
  results.Done(target.Finish(results));
}

}  // namespace sandbox::tds
