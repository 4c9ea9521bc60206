#include "platform/ado/mysql/row_loader.h"

#include <fmt/format.h>
#include <mariadb/mysqld_error.h>

#include <algorithm>
#include <array>

#include "platform/ado/mysql/client.h"
#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/served_text.h"
#include "platform/ado/mysql/session.h"

namespace dorvane::ado::mysql {

namespace {

constexpr std::size_t kFewRows = 200;  // are as fast as a statement

constexpr std::array<unsigned, 3> kTransactionIsGone = {ER_LOCK_DEADLOCK, ER_LOCK_WAIT_TIMEOUT,
                                                        ER_LOCK_TABLE_FULL};

bool HasBytes(const RowBlock& rows, std::size_t first, std::size_t count) {
  for (std::size_t row = first; row < first + count; ++row) {
    const auto is_binary = [](const Value& value) { return std::holds_alternative<Binary>(value); };
    if (std::ranges::any_of(rows.Row(row), is_binary)) return true;
  }
  return false;
}

void AppendField(std::string& text, std::string_view value) {
  constexpr std::string_view kSpecial("\\\t\n\0", 4);
  for (;;) {
    const std::size_t plain = std::min(value.find_first_of(kSpecial), value.size());
    text += value.substr(0, plain);
    value.remove_prefix(plain);
    if (value.empty()) return;
    text += '\\';
    text += value.front() == '\0' ? '0' : value.front();
    value.remove_prefix(1);
  }
}

}  // namespace

void AppendLine(std::string& text, std::span<const Value> row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i != 0) text += '\t';
    if (IsNull(row[i])) {
      text += "\\N";
    } else {
      AppendField(text, BytesOf(row[i]));
    }
  }
  text += '\n';
}

RowLoader::RowLoader(ClientSession& session, std::string_view table,
                     const std::vector<std::string>& columns)
    : session_(session) {
  statement_ =
      fmt::format("load data local infile 'rows' into table {} character set utf8mb4 (", table);
  for (const std::string& column : columns) {
    if (&column != &columns.front()) statement_ += ',';
    statement_ += QuotedName(column);
  }
  statement_ += ')';
}

bool RowLoader::Load(const RowBlock& rows, std::size_t first, std::size_t count) {
  if (is_given_up_ || count < kFewRows || !session_.UsesLoads()) return false;
  if (HasBytes(rows, first, count)) return false;
  text_.clear();
  for (std::size_t row = first; row < first + count; ++row) AppendLine(text_, rows.Row(row));
  MYSQL* client = session_.Link().client.get();
  Query(client, "savepoint before_load");
  if (LoadText(count)) return true;
  is_given_up_ = true;
  Query(client, "rollback to savepoint before_load");
  return false;
}

bool RowLoader::LoadText(std::size_t rows) {
  MYSQL* client = session_.Link().client.get();
  const ServedText served(client, text_);
  try {
    Query(client, statement_);
    return mysql_warning_count(client) == 0 && mysql_affected_rows(client) == rows;
  } catch (const ProviderError& failure) {
    const std::int32_t number = failure.Entries().at(0).native_error;
    const bool is_gone = IsClientError(number) ||
                         std::ranges::find(kTransactionIsGone, number) != kTransactionIsGone.end();
    if (is_gone) throw;
    return false;
  }
}

}  // namespace dorvane::ado::mysql
