#include "platform/ado/provider.h"

#include <sql.h>
#include <sqlext.h>

#include <memory>
#include <string>
#include <utility>

#include "platform/ado/odbc/bulk_writer.h"
#include "platform/ado/odbc/catalog_reader.h"
#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/logon.h"
#include "platform/ado/odbc/long_parameters.h"
#include "platform/ado/odbc/result_reader.h"
#include "platform/ado/odbc/session_state.h"
#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado {

namespace odbc {

namespace {

class OdbcSession : public Session {
 public:
  explicit OdbcSession(const ConnectionSettings& settings)
      : logon_(std::make_shared<Logon>(settings)) {
    SetUpSession(logon_, settings);
  }

  std::unique_ptr<ResultReader> Execute(std::string_view sql) override {
    std::u16string text = ToUtf16(sql);
    return logon_->Watch([&] {
      Statement statement = logon_->NewStatement();
      const SQLRETURN executed =
          SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                         static_cast<SQLINTEGER>(text.size()));
      return std::make_unique<OdbcResultReader>(logon_, std::move(statement), executed);
    });
  }

  void ExecuteWith(std::string_view sql, std::span<const Value> parameters) override {
    logon_->Watch([&] {
      Statement statement = logon_->NewStatement();
      const SQLRETURN executed = ExecuteInPieces(statement, sql, parameters);
      OdbcResultReader(logon_, std::move(statement), executed);
    });
  }

  bool IsStreaming() const override { return logon_->IsStreaming(); }
  bool IsExposed() const override { return logon_->IsExposed(); }

  bool IsAlive() override {
    if (logon_->IsQuiet()) return true;
    try {
      Execute("select 1");
      return true;
    } catch (const ProviderError&) {
      return false;
    }
  }

  std::unique_ptr<TableWriter> OpenWriter(std::string_view table,
                                          const std::vector<std::string>& columns) override {
    return std::make_unique<BulkWriter>(logon_, table, columns);
  }

  // As statements, so that the server's own rollback of a failed batch does not leave the driver
  // believing in a transaction that is gone.
  void BeginTransaction() override { Execute("BEGIN TRANSACTION"); }
  void Commit() override { Execute("COMMIT TRANSACTION"); }
  void Rollback() override {
    try {
      Execute("IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION");
    } catch (const ProviderError&) {
      if (!logon_->IsLost()) throw;  // else the server has rolled back by itself
    }
  }

  std::vector<TableInfo> Tables() override { return catalog_.Tables(); }
  std::vector<Column> Columns(const TableName& table) override { return catalog_.Columns(table); }
  std::vector<Index> Indexes(const TableName& table) override { return catalog_.Indexes(table); }
  std::vector<Key> Keys(const TableName& table) override { return catalog_.Keys(table); }
  std::map<TableName, TableDetails> AllTables() override { return catalog_.AllTables(); }

 private:
  std::shared_ptr<Logon> logon_;
  CatalogReader catalog_{logon_};
};

class Odbc : public Provider {
 public:
  std::unique_ptr<Session> Connect(const ConnectionSettings& settings) override {
    return std::make_unique<OdbcSession>(settings);
  }
};

}  // namespace

}  // namespace odbc

Provider& OdbcProvider() {
  static odbc::Odbc provider;
  return provider;
}

}  // namespace dorvane::ado
