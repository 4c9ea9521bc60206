#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "endpoint/database.h"

namespace dorvane::test {

/// An endpoint that only holds its settings; its transfer is what a test says.
class PlainEndpoint : public IDatabase {
 public:
  using Transfer = std::function<void(IDatabase& dest, const NameList&, IConversionListener&)>;
  explicit PlainEndpoint(ServerKind kind, Transfer transfer = {})
      : kind_(kind), transfer_(std::move(transfer)) {}

  bool WinNTAuthentication() const override {
    CheckMsSql();
    return win_auth_;
  }
  void SetWinNTAuthentication(bool value) override {
    CheckMsSql();
    win_auth_ = value;
  }
  const std::string& UserId() const override { return user_; }
  void SetUserId(std::string value) override { user_ = std::move(value); }
  const std::string& Password() const override { return password_; }
  void SetPassword(std::string value) override { password_ = std::move(value); }
  std::int16_t PortNo() const override { return port_; }
  void SetPortNo(std::int16_t value) override { port_ = value; }
  const std::string& DbName() const override { return db_; }
  void SetDbName(std::string value) override { db_ = std::move(value); }
  const std::string& Server() const override { return server_; }
  void SetServer(std::string value) override { server_ = std::move(value); }
  bool CopyTableContent() const override { return copy_; }
  void SetCopyTableContent(bool value) override { copy_ = value; }
  void SetConvertMode(std::int16_t value) override { mode_ = value; }
  std::int16_t ConvertMode() const override { return mode_; }
  void SetReplaceSpaceWithUnderscore(bool value) override { underscore_ = value; }
  bool ReplaceSpaceWithUnderscore() const override { return underscore_; }
  bool ConvertRelationships() const override { return relations_; }
  void SetConvertRelationships(bool value) override { relations_ = value; }

  std::unique_ptr<ado::Connection> OpenConnection(bool /*with_db_name*/) override { return {}; }
  std::optional<NameList> GetDatabases() override { return {}; }
  bool CreateDatabase(const std::string& /*name*/) override { return false; }
  std::optional<NameList> GetTablesFromDatabase() override { return {}; }
  void TransferToDest(IDatabase& dest, const NameList& tables) override {
    if (transfer_) transfer_(dest, tables, *listener_);
  }
  ServerKind Kind() const override { return kind_; }
  void SetListener(IConversionListener* listener) override { listener_ = listener; }

 private:
  void CheckMsSql() const {
    if (kind_ != ServerKind::MsSql) {
      throw RunTimeError(run_time::kInvalidPropertyAccess, "MySql", "Invalid Property Access");
    }
  }

  ServerKind kind_;
  Transfer transfer_;
  IConversionListener* listener_ = nullptr;
  bool win_auth_ = false, copy_ = false, underscore_ = false, relations_ = false;
  std::int16_t port_ = 0, mode_ = 1;
  std::string user_, password_, db_, server_;
};

}  // namespace dorvane::test
