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

  const ado::ConnectionSettings& Settings() const override { return settings_; }
  void SetSettings(ado::ConnectionSettings settings) override { settings_ = std::move(settings); }
  const ConversionOptions& Options() const override { return options_; }
  void SetOptions(ConversionOptions options) override { options_ = options; }
  std::unique_ptr<ado::Connection> OpenConnection(bool /*with_db_name*/) override { return {}; }
  std::optional<NameList> GetDatabases() override { return {}; }
  bool CreateDatabase(const std::string& /*name*/) override { return false; }
  std::optional<NameList> GetTablesFromDatabase() override { return {}; }
  void CompareWithDest(IDatabase& dest, const NameList& tables) override {
    TransferToDest(dest, tables);
  }
  void RehearseTransfer(IDatabase& dest, const NameList& tables,
                        const ado::StatementSink& /*statements*/) override {
    TransferToDest(dest, tables);
  }
  void TransferToDest(IDatabase& dest, const NameList& tables) override {
    if (transfer_) transfer_(dest, tables, *listener_);
  }
  ServerKind Kind() const override { return kind_; }
  void SetListener(IConversionListener* listener) override { listener_ = listener; }

 private:
  ServerKind kind_;
  Transfer transfer_;
  IConversionListener* listener_ = nullptr;
  ado::ConnectionSettings settings_;
  ConversionOptions options_;
};

}  // namespace dorvane::test
