#include "platform/ado/mysql/writer.h"

#include <fmt/format.h>
#include <mariadb/mysqld_error.h>

#include <algorithm>
#include <bit>

#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/session.h"

namespace dorvane::ado::mysql {

namespace {

// The server takes 65,535 parameters, but its cost for each grows with their number; much fewer
// make too many trips.
constexpr std::size_t kMaxParameters = 1024;
constexpr std::size_t kMaxStatementRows = 512;
// What a request holds beside its values, at most: its header, and for each value its type, its
// length and its bit among the NULLs.
constexpr std::size_t kRequestOverhead = 64;
constexpr std::size_t kValueOverhead = 12;
constexpr std::size_t kLongValue = 1 << 20;  // bytes
constexpr std::size_t kPieceBytes = 256 << 10;

/// Bytes go as a binary string, text as text of the connection's character set.
enum_field_types ParameterType(const Value& value) {
  return std::holds_alternative<Binary>(value) ? MYSQL_TYPE_BLOB : MYSQL_TYPE_STRING;
}

std::size_t SizeOf(std::span<const Value> row) {
  std::size_t size = 0;
  for (const Value& value : row) size += BytesOf(value).size() + kValueOverhead;
  return size;
}

bool IsLong(const Value& value) {
  return BytesOf(value).size() > kLongValue;
}

void AppendBinds(std::span<const Value> row, std::vector<MYSQL_BIND>& binds) {
  for (const Value& value : row) {
    const std::string_view bytes = BytesOf(value);
    MYSQL_BIND& bind = binds.emplace_back();
    bind.buffer_type = IsNull(value) ? MYSQL_TYPE_NULL : ParameterType(value);
    bind.buffer = const_cast<char*>(bytes.data());
    bind.buffer_length = bytes.size();
  }
}

/// How many rows from `first` on go into one request of `limit` bytes; a row with a long value goes
/// alone.
std::size_t FittingRows(const RowBlock& rows, std::size_t first, std::size_t count,
                        std::size_t limit) {
  std::size_t size = kRequestOverhead;
  for (std::size_t i = 0; i < count; ++i) {
    const std::span<const Value> row = rows.Row(first + i);
    size += SizeOf(row);
    if (size > limit || (i > 0 && std::ranges::any_of(row, IsLong))) return i;
  }
  return count;
}

/// The rows from `first` on whose values are of one type in each column, NULL being of any.
std::size_t UniformRows(const RowBlock& rows, std::size_t first, std::size_t count,
                        std::vector<enum_field_types>& types) {
  types.assign(rows.Columns(), MYSQL_TYPE_NULL);
  for (std::size_t i = 0; i < count; ++i) {
    const std::span<const Value> row = rows.Row(first + i);
    for (std::size_t column = 0; column < row.size(); ++column) {
      if (IsNull(row[column])) continue;
      const enum_field_types type = ParameterType(row[column]);
      if (types[column] != MYSQL_TYPE_NULL && types[column] != type) return i;
      types[column] = type;
    }
  }
  return count;
}

}  // namespace

RowWriter::RowWriter(ClientSession& session, std::string_view table,
                     const std::vector<std::string>& columns)
    : session_(session), loader_(session, table, columns), columns_(columns.size()) {
  insert_clause_ = fmt::format("INSERT INTO {} (", table);
  for (const std::string& column : columns) {
    if (&column != &columns.front()) insert_clause_ += ',';
    insert_clause_ += QuotedName(column);
  }
  insert_clause_ += ") VALUES ";
  // A table or column that is not there is told of now, whether rows follow or not.
  Prepared(multi_row_[1], 1);
}

void RowWriter::Insert(const RowBlock& rows, std::size_t first, std::size_t count) {
  const std::size_t max_packet = session_.Link().limits.max_allowed_packet;
  while (count > 0) {
    std::size_t sent = FittingRows(rows, first, count, max_packet);
    if (sent == 0) {
      throw MakeError(ER_NET_PACKET_TOO_LARGE, "08S01",
                      "Got a packet bigger than 'max_allowed_packet' bytes");
    }
    sent = session_.Watch([&] { return Send(rows, first, sent); });
    first += sent;
    count -= sent;
  }
}

std::size_t RowWriter::Send(const RowBlock& rows, std::size_t first, std::size_t count) {
  // A column that is not among these and has no default is found by statements only.
  if (takes_statements_ && loader_.Load(rows, first, count)) return count;
  std::size_t sent = 1;
  if (std::ranges::any_of(rows.Row(first), IsLong)) {
    InsertInPieces(rows.Row(first));
  } else if (session_.UsesBulk()) {
    sent = InsertBulk(rows, first, count);
  } else {
    sent = InsertMultiRow(rows, first, count);
  }
  takes_statements_ = true;
  return sent;
}

MYSQL_STMT* RowWriter::Prepared(Statement& statement, std::size_t rows) {
  MYSQL* client = session_.Link().client.get();
  // The library takes statements off a connection that ends.
  if (statement != nullptr && statement->mysql == client) return statement.get();
  std::string tuple = "(";
  for (std::size_t i = 0; i < columns_; ++i) tuple += i == 0 ? "?" : ",?";
  tuple += ')';
  std::string sql = insert_clause_;
  for (std::size_t i = 0; i < rows; ++i) {
    if (i != 0) sql += ',';
    sql += tuple;
  }
  statement = Prepare(client, sql);
  return statement.get();
}

void RowWriter::Check(MYSQL_STMT* statement, bool succeeded) {
  if (!succeeded) ThrowError(statement, session_.Link().client.get());
}

void RowWriter::Bind(MYSQL_STMT* statement, std::vector<MYSQL_BIND>& binds) {
  // The library would read past the bindings of a statement with more parameters.
  if (mysql_stmt_param_count(statement) != binds.size()) {
    throw MalformedPacket("a statement with other parameters than were sent");
  }
  Check(statement, binds.empty() || mysql_stmt_bind_param(statement, binds.data()) == 0);
}

void RowWriter::Execute(MYSQL_STMT* statement, std::vector<MYSQL_BIND>& binds) {
  Bind(statement, binds);
  Check(statement, mysql_stmt_execute(statement) == 0);
}

void RowWriter::InsertInPieces(std::span<const Value> row) {
  MYSQL_STMT* statement = Prepared(multi_row_[1], 1);
  std::vector<MYSQL_BIND> binds;
  AppendBinds(row, binds);
  Bind(statement, binds);
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!IsLong(row[i])) continue;
    for (std::string_view rest = BytesOf(row[i]); !rest.empty();) {
      const std::string_view piece = rest.substr(0, kPieceBytes);
      Check(statement, mysql_stmt_send_long_data(statement, static_cast<unsigned>(i), piece.data(),
                                                 piece.size()) == 0);
      rest.remove_prefix(piece.size());
    }
  }
  Check(statement, mysql_stmt_execute(statement) == 0);
}

/// As many rows as one statement takes, which is a power of two; returns their number.
std::size_t RowWriter::InsertMultiRow(const RowBlock& rows, std::size_t first, std::size_t count) {
  const std::size_t most = std::max<std::size_t>(
      1, std::min({count, kMaxStatementRows, kMaxParameters / std::max<std::size_t>(1, columns_)}));
  const std::size_t statement_rows = std::bit_floor(most);
  std::vector<MYSQL_BIND> binds;
  binds.reserve(statement_rows * columns_);
  for (std::size_t i = 0; i < statement_rows; ++i) {
    AppendBinds(rows.Row(first + i), binds);
  }
  Execute(Prepared(multi_row_[statement_rows], statement_rows), binds);
  return statement_rows;
}

/// The rows that can go in one request of the bulk protocol; returns their number.
std::size_t RowWriter::InsertBulk(const RowBlock& rows, std::size_t first, std::size_t count) {
  std::vector<enum_field_types> types;
  count = UniformRows(rows, first, count, types);
  if (count == 1) return InsertMultiRow(rows, first, 1);

  // Column by column: addresses, lengths and NULL indicators of its values.
  std::vector<const char*> addresses(count * columns_);
  std::vector<unsigned long> lengths(count * columns_);
  std::vector<char> indicators(count * columns_, STMT_INDICATOR_NONE);
  for (std::size_t i = 0; i < count; ++i) {
    const std::span<const Value> row = rows.Row(first + i);
    for (std::size_t column = 0; column < columns_; ++column) {
      const std::size_t at = column * count + i;
      const std::string_view bytes = BytesOf(row[column]);
      // The library takes a missing address for NULL.
      addresses[at] = bytes.empty() ? "" : bytes.data();
      lengths[at] = bytes.size();
      if (IsNull(row[column])) indicators[at] = STMT_INDICATOR_NULL;
    }
  }
  std::vector<MYSQL_BIND> binds(columns_);
  for (std::size_t column = 0; column < columns_; ++column) {
    MYSQL_BIND& bind = binds[column];
    bind.buffer_type = types[column] == MYSQL_TYPE_NULL ? MYSQL_TYPE_STRING : types[column];
    bind.buffer = addresses.data() + column * count;
    bind.length = lengths.data() + column * count;
    bind.u.indicator = indicators.data() + column * count;
  }

  MYSQL_STMT* statement = Prepared(bulk_, 1);
  const auto array_size = static_cast<unsigned>(count);
  mysql_stmt_attr_set(statement, STMT_ATTR_ARRAY_SIZE, &array_size);
  Execute(statement, binds);
  return count;
}

}  // namespace dorvane::ado::mysql
