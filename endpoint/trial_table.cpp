#include "endpoint/trial_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "endpoint/failure.h"
#include "endpoint/names.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

constexpr const char* kMySqlTrial = "dorvane_trial";
// With the sign of a temporary table; short, so that it stands whole in the names of its keys.
constexpr const char* kMsSqlTrial = "#dorvane";

/// Refusals that concern temporary tables only, or no statement at all.
constexpr std::array kNoTrials{
    262,   // no right to create a table
    1021,  // the disk is full
    1041,  // no memory
    1044,  // no right to the database
    1053,  // the server is going down
    1114,  // no room left
    1142,  // no right to the command
    1227,  // likewise
    1562,  // no partitions
};

std::string Quoted(const ado::TableName& table, ServerKind kind) {
  return kind == ServerKind::MySql ? MySqlTable(table) : MsSqlTable(table);
}

void Replace(std::string& text, const std::string& name, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += by.size()) {
    text.replace(at, name.size(), by);
  }
}

bool IsOfTheTable(const ado::ProviderError& failure, ServerKind kind) {
  const ado::Error* entry = PrimaryError(failure.Entries(), 0);
  if (entry == nullptr) return false;
  const std::int32_t number = entry->native_error;
  // MySQL has one class for many refusals and for lost connections, of which its library tells.
  const bool is_refusal = IsRowRefusal(failure.Number()) ||
                          (kind == ServerKind::MySql && number >= 1000 && number / 1000 != 2);
  return is_refusal && std::ranges::find(kNoTrials, number) == kNoTrials.end();
}

}  // namespace

TrialTable::TrialTable(std::unique_ptr<ado::Connection> connection, ServerKind kind)
    : connection_(std::move(connection)),
      kind_(kind),
      name_(kind == ServerKind::MySql ? kMySqlTrial : kMsSqlTrial) {}

void TrialTable::StandFor(const ado::TableName& table) {
  Drop();
  checks_.clear();
  stands_for_ = table;
}

void TrialTable::Drop() {
  if (!std::exchange(is_there_, false)) return;
  try {
    connection_->Execute(fmt::format("drop {}table {}",
                                     kind_ == ServerKind::MySql ? "temporary " : "", QuotedName()));
  } catch (const RunTimeError&) {
    GiveUp();
  }
}

void TrialTable::GiveUp() {
  is_usable_ = is_there_ = false;
}

std::string TrialTable::QuotedName() const {
  return Quoted(name_, kind_);
}

void TrialTable::Try(std::string_view sql, const DefinitionStatement& definition) {
  const std::optional<std::string> trial = TrialOf(sql, definition);
  if (!trial) return;
  try {
    connection_->Execute(*trial);
    is_there_ = true;
  } catch (const ado::ProviderError& failure) {
    if (!IsOfTheTable(failure, kind_)) return GiveUp();
    ado::Errors entries = failure.Entries();
    for (ado::Error& entry : entries) entry.description = Words(std::move(entry.description));
    throw ado::ProviderError(failure.Number(), std::string(failure.Source()),
                             Words(std::string(failure.Description())), std::move(entries));
  } catch (const RunTimeError&) {
    GiveUp();
  }
}

std::optional<std::string> TrialTable::TrialOf(std::string_view sql,
                                               const DefinitionStatement& definition) const {
  constexpr std::string_view kCreate = "create ";
  if (!is_usable_ || definition.table != stands_for_) return std::nullopt;
  const bool makes_it = definition.right == TableRight::Create;
  const bool changes_it =
      definition.right == TableRight::Alter || definition.right == TableRight::Index;
  if (!makes_it && !(changes_it && is_there_)) return std::nullopt;
  std::string trial(sql);
  trial.replace(definition.table_begin, definition.table_end - definition.table_begin,
                QuotedName());
  if (makes_it && kind_ == ServerKind::MySql) trial.insert(kCreate.size(), "temporary ");
  return trial;
}

std::string TrialTable::Add(const std::string& statement) {
  try {
    connection_->Execute(statement);
    is_there_ = is_usable_;
    return {};
  } catch (const RunTimeError& error) {
    return Words(error.Description());
  }
}

void TrialTable::Empty() {
  connection_->Execute("truncate table " + QuotedName());
}

std::string TrialTable::Words(std::string text) const {
  // The checks first, in whose names the trial's may stand.
  for (const auto& [trial, own] : checks_) Replace(text, trial, own);
  Replace(text, name_.name, stands_for_.name);
  return text;
}

}  // namespace dorvane
