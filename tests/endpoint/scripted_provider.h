#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/provider.h"

namespace dorvane::test {

/// One result of a scripted statement. Text of the values must outlive the server: literals, or
/// what ScriptedServer::Keep returns.
struct ScriptedResult {
  std::vector<ado::FieldInfo> fields;
  std::vector<std::vector<ado::Value>> rows;
};

/// A result of text columns.
ScriptedResult TextResult(const std::vector<std::string>& names,
                          const std::vector<std::vector<std::optional<std::string_view>>>& rows);

/// A failure as a provider throws it: one entry in the list.
ado::ProviderError Failure(std::int32_t number, std::int32_t native_error,
                           const std::string& description);

/// A server whose answers a test writes down: statements are recorded, and answered by the script
/// or with nothing. Rows written through an updatable table are recorded as text, NULL as "NULL",
/// bytes as "0x...".
class ScriptedServer : public ado::Provider {
 public:
  std::unique_ptr<ado::Session> Connect(const ado::ConnectionSettings& settings) override;
  ado::ProviderLookup Lookup();

  /// Statements, oldest first, with "begin", "commit" and "rollback" among them and
  /// "insert <table> (<columns>)" for a writer that was opened.
  std::vector<std::string> log;
  std::vector<std::string> Sent(std::string_view beginning) const;
  ado::ConnectionSettings last_settings;
  bool is_exposed = false;

  /// Answers statements of exactly this text.
  void Answer(const std::string& sql, std::vector<ScriptedResult> results);
  /// Fails statements that contain the text; the first rule that fits counts. `times` below zero
  /// is for ever.
  void Fail(const std::string& part, ado::ProviderError error, int times = -1);
  std::optional<ado::ProviderError> connect_failure;
  bool lost = false;       // sessions do not answer any more, until one is opened
  int refused_logons = 0;  // that many from now on
  /// The reading of the result of this statement fails behind its rows.
  void BreakResult(const std::string& sql, ado::ProviderError error);

  std::vector<ado::TableInfo> tables;
  std::map<std::string, std::vector<ado::Column>> columns;
  std::map<std::string, std::vector<ado::Index>> indexes;
  std::map<std::string, std::vector<ado::Key>> keys;
  std::optional<ado::ProviderError> keys_failure;

  /// Called for each row on its way into a table; throws to refuse it.
  std::function<void(const std::vector<std::string>& row)> on_row;
  std::vector<std::vector<std::string>> stored;

  std::string_view Keep(std::string text) { return texts_.emplace_back(std::move(text)); }

 private:
  friend class ScriptedSession;
  friend class ScriptedWriter;
  struct FailureRule {
    std::string part;
    ado::ProviderError error;
    int times;
  };
  void Record(std::string_view sql);

  std::map<std::string, std::vector<ScriptedResult>> answers_;
  std::map<std::string, ado::ProviderError> broken_results_;
  std::vector<FailureRule> failures_;
  std::deque<std::string> texts_;
  std::optional<std::size_t> rollback_to_;  // rows stored when the transaction began
};

}  // namespace dorvane::test
