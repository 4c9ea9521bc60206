#include "endpoint/names.h"

#include <utility>

namespace dorvane {

namespace {

std::string Quoted(char open, std::string_view name, char close) {
  std::string quoted(1, open);
  for (const char c : name) {
    quoted += c;
    if (c == close) quoted += c;
  }
  quoted += close;
  return quoted;
}

}  // namespace

std::string MySqlName(std::string_view name) {
  return Quoted('`', name, '`');
}

std::string MsSqlName(std::string_view name) {
  return Quoted('[', name, ']');
}

std::string MySqlTable(const ado::TableName& table) {
  return (table.IsBare() ? "" : MySqlName(table.schema) + ".") + MySqlName(table.name);
}

std::string MsSqlTable(const ado::TableName& table) {
  return (table.IsBare() ? "" : MsSqlName(table.schema) + ".") + MsSqlName(table.name);
}

std::string TakeQuoted(std::string_view& rest, char close) {
  std::string text;
  rest.remove_prefix(1);
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == close && !rest.starts_with(close)) break;
    if (c == close) rest.remove_prefix(1);
    text += c;
  }
  return text;
}

ado::TableName TakeTableName(std::string_view& text) {
  if (!text.starts_with('`') && !text.starts_with('[')) return {};
  const char close = text.front() == '[' ? ']' : '`';
  std::string name = TakeQuoted(text, close);
  if (text.size() < 2 || text.front() != '.') return name;
  text.remove_prefix(1);
  return {std::move(name), TakeQuoted(text, close)};
}

}  // namespace dorvane
