#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sandbox {

/// A failure of the storage engine; `code` is SQLite's extended result code.
class SqliteError : public std::runtime_error {
 public:
  SqliteError(int result_code, const std::string& what)
      : std::runtime_error(what), code(result_code) {}
  int code;
};

/// A prepared statement. Its bindings keep no copy of text and blobs bound by view.
class SqliteStatement {
 public:
  SqliteStatement() = default;
  SqliteStatement(sqlite3* connection, std::string_view sql);

  /// True with a row, false at the end. Throws SqliteError.
  bool Step();
  /// Runs to the end and resets, whatever happens.
  void Run();
  void Reset();

  SqliteStatement& Bind(int index, std::int64_t value);
  SqliteStatement& Bind(int index, std::string_view text);
  std::int64_t Integer(int column) const { return sqlite3_column_int64(handle_.get(), column); }
  std::string Text(int column) const;

  sqlite3_stmt* get() const { return handle_.get(); }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

/// Binds its arguments to the statement's parameters in their order and runs it.
template <typename... Arguments>
void RunWith(SqliteStatement& statement, const Arguments&... arguments) {
  int index = 0;
  (statement.Bind(++index, arguments), ...);
  statement.Run();
}

/// Ends a statement's run when it goes out of scope, so that no read lock outlives its reader.
class ResetGuard {
 public:
  explicit ResetGuard(SqliteStatement& statement) : statement_(statement) {}
  ~ResetGuard() { statement_.Reset(); }
  ResetGuard(const ResetGuard&) = delete;
  ResetGuard& operator=(const ResetGuard&) = delete;

 private:
  SqliteStatement& statement_;
};

/// One connection to one database file, in write-ahead mode.
class SqliteConnection {
 public:
  /// `durable` makes every commit reach the disk. Throws SqliteError.
  SqliteConnection(const std::filesystem::path& file, bool durable);

  void Execute(const std::string& sql);
  SqliteStatement Prepare(std::string_view sql) const { return {handle_.get(), sql}; }
  sqlite3* get() const { return handle_.get(); }
  bool InTransaction() const { return sqlite3_get_autocommit(handle_.get()) == 0; }

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };
  std::unique_ptr<sqlite3, Closer> handle_;
};

}  // namespace sandbox
