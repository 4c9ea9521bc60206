#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/ado/provider.h"
#include "platform/ado/value_text.h"
#include "tests/support/servers.h"

namespace dorvane::ado {

/// A session on a practice server of this program's own, shared by all tests.
class ServerTest : public testing::Test {
 protected:
  static ConnectionSettings Settings() {
    static const test::SandboxServer server({"shop"});
    ConnectionSettings settings;
    settings.server = "127.0.0.1";
    settings.port = server.Port();
    settings.user_id = "sa";
    settings.password = server.Password();
    settings.database = "shop";
    return settings;
  }

  void Run(const std::string& sql) { session_->Execute(sql); }

  /// The rows of a result as text, NULL as "NULL".
  static std::vector<std::vector<std::string>> Rest(ResultReader& reader, BlockLimits limits = {}) {
    std::vector<std::vector<std::string>> rows;
    RowBlock block(limits);
    while (reader.Read(block)) {
      for (std::size_t i = 0; i < block.Rows(); ++i) rows.push_back(Texts(reader, block.Row(i)));
    }
    return rows;
  }

  std::vector<std::vector<std::string>> Rows(const std::string& sql) {
    return Rest(*session_->Execute(sql));
  }

  /// The error that a statement fails with.
  ProviderError Failure(const std::string& sql) {
    try {
      const auto reader = session_->Execute(sql);
      Rest(*reader);
      while (reader->NextResult()) Rest(*reader);
    } catch (const ProviderError& error) {
      return error;
    }
    ADD_FAILURE() << "no failure: " << sql;
    return {0, "", "", {{}}};
  }

  std::unique_ptr<Session> session_ = OdbcProvider().Connect(Settings());

 private:
  static std::vector<std::string> Texts(const ResultReader& reader, std::span<const Value> row) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < row.size(); ++i) {
      texts.push_back(IsNull(row[i]) ? "NULL" : ToText(row[i], reader.Fields()[i].type));
    }
    return texts;
  }
};

}  // namespace dorvane::ado
