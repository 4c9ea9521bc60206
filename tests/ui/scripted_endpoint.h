#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "endpoint/database.h"
#include "platform/run_time_error.h"

namespace dorvane::test {

/// What the servers of a test answer, and what they were asked.
struct Script {
  IRunHost* host = nullptr;  // of the run that made the endpoints
  std::function<std::optional<NameList>()> databases = [] { return NameList{"master", "Sales"}; };
  std::function<std::optional<NameList>()> tables = [] { return NameList{"Customers", "Orders"}; };
  std::function<bool(const std::string& name)> create = [](const std::string&) { return true; };
  std::function<void(IConversionListener& listener, const NameList& tables)> transfer;

  std::vector<std::string> created;  // the names that CreateDatabase was called with
};

/// An endpoint that keeps its settings as the real ones do and answers by its script.
class ScriptedEndpoint : public IDatabase {
 public:
  ScriptedEndpoint(ServerKind kind, Script& script) : kind_(kind), script_(script) {}

  bool WinNTAuthentication() const override { return MsSqlOnly(), win_nt_authentication_; }
  void SetWinNTAuthentication(bool value) override { MsSqlOnly(), win_nt_authentication_ = value; }
  const std::string& UserId() const override { return user_id_; }
  void SetUserId(std::string value) override { user_id_ = std::move(value); }
  const std::string& Password() const override { return password_; }
  void SetPassword(std::string value) override { password_ = std::move(value); }
  std::int16_t PortNo() const override { return port_no_; }
  void SetPortNo(std::int16_t value) override { port_no_ = value; }
  const std::string& DbName() const override { return db_name_; }
  void SetDbName(std::string value) override { db_name_ = std::move(value); }
  const std::string& Server() const override { return server_; }
  void SetServer(std::string value) override { server_ = std::move(value); }
  bool CopyTableContent() const override { return copy_table_content_; }
  void SetCopyTableContent(bool value) override { copy_table_content_ = value; }
  void SetConvertMode(std::int16_t value) override { convert_mode_ = value; }
  std::int16_t ConvertMode() const override { return convert_mode_; }
  void SetReplaceSpaceWithUnderscore(bool value) override { underscore_ = value; }
  bool ReplaceSpaceWithUnderscore() const override { return underscore_; }
  bool ConvertRelationships() const override { return convert_relationships_; }
  void SetConvertRelationships(bool value) override { convert_relationships_ = value; }

  std::unique_ptr<ado::Connection> OpenConnection(bool) override { return nullptr; }
  std::optional<NameList> GetDatabases() override { return script_.databases(); }
  bool CreateDatabase(const std::string& name) override {
    script_.created.push_back(name);
    return script_.create(name);
  }
  std::optional<NameList> GetTablesFromDatabase() override { return script_.tables(); }
  void TransferToDest(IDatabase&, const NameList& tables) override {
    script_.transfer(*listener_, tables);
  }
  ServerKind Kind() const override { return kind_; }
  void SetListener(IConversionListener* listener) override { listener_ = listener; }

 private:
  void MsSqlOnly() const {
    if (kind_ == ServerKind::MySql) {
      throw RunTimeError(run_time::kInvalidPropertyAccess, "MySql", "Invalid Property Access");
    }
  }

  ServerKind kind_;
  Script& script_;
  IConversionListener* listener_ = nullptr;
  std::string user_id_, password_, db_name_, server_;
  std::int16_t port_no_ = 0;
  std::int16_t convert_mode_ = convert_mode::kMerge;
  bool win_nt_authentication_ = false;
  bool copy_table_content_ = false;
  bool underscore_ = false;
  bool convert_relationships_ = false;
};

}  // namespace dorvane::test
