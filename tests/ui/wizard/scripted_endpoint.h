#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/plain_endpoint.h"

namespace dorvane::test {

/// What the servers of a test answer, and what they were asked.
struct Script {
  IRunHost* host = nullptr;  // of the run that made the endpoints
  std::function<std::optional<NameList>()> databases = [] { return NameList{"master", "Sales"}; };
  std::function<std::optional<NameList>()> tables = [] { return NameList{"Customers", "Orders"}; };
  /// Asked in a thread of their own.
  std::function<std::vector<TableSize>()> sizes = [] { return std::vector<TableSize>(); };
  std::optional<ServerInfo> info;
  std::function<bool(const std::string& name)> create = [](const std::string&) { return true; };
  std::function<void(IConversionListener& listener, const NameList& tables)> transfer;

  std::vector<std::string> created;  // the names that CreateDatabase was called with
};

/// An endpoint that answers by its script.
class ScriptedEndpoint : public PlainEndpoint {
 public:
  ScriptedEndpoint(ServerKind kind, Script& script)
      : PlainEndpoint(kind,
                      [&script](IDatabase&, const NameList& tables, IConversionListener& listener) {
                        script.transfer(listener, tables);
                      }),
        script_(script) {}

  std::optional<NameList> GetDatabases() override { return script_.databases(); }
  std::vector<TableSize> GetTableSizes() override { return script_.sizes(); }
  std::optional<ServerInfo> GetServerInfo() override { return script_.info; }
  bool CreateDatabase(const std::string& name) override {
    script_.created.push_back(name);
    return script_.create(name);
  }
  std::optional<NameList> GetTablesFromDatabase() override { return script_.tables(); }

 private:
  Script& script_;
};

}  // namespace dorvane::test
