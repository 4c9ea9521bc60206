#include <array>

#include "sandbox/engine/definitions.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

struct Switch {
  std::string_view name;
  bool SessionOptions::*value;
};
constexpr std::array kSwitches{
    Switch{"nocount", &SessionOptions::no_count},
    Switch{"fmtonly", &SessionOptions::format_only},
    Switch{"implicit_transactions", &SessionOptions::implicit_transactions},
};

// Options that clients set and scripts begin with, but that change nothing here.
constexpr std::string_view kAccepted =
    " ansi_defaults ansi_null_dflt_on ansi_nulls ansi_padding ansi_warnings arithabort "
    "concat_null_yields_null cursor_close_on_commit datefirst dateformat deadlock_priority "
    "identity_insert language lock_timeout no_browsetable numeric_roundabort quoted_identifier "
    "statistics textsize transaction ";
// Options that may be switched off, as they are.
constexpr std::string_view kAlwaysOff = " noexec parseonly showplan_text xact_abort ";

bool IsAmong(std::string_view words, const std::string& word) {
  return words.find(" " + word + " ") != std::string_view::npos;
}

bool IsOn(const SetOptionStatement& statement) {
  return statement.words.back() == "on";
}

}  // namespace

void FlowRunner::SetIdentityInsert(const SetOptionStatement& statement) {
  DatabaseLink& link = session_.LinkTo(statement.table.database);
  const TableDef& table = TargetTable(link, statement.table, 1088);
  if (!table.IdentityColumn()) Raise(8106, table.name);
  const std::pair<DatabaseState*, int> target(&link.State(), table.id);
  if (!IsOn(statement)) {
    if (state_.identity_insert == target) state_.identity_insert.reset();
    return;
  }
  if (state_.identity_insert && *state_.identity_insert != target) {
    const auto& tables = session_.LinkTo(state_.identity_insert->first->name).Definitions().tables;
    const auto held = tables.find(state_.identity_insert->second);
    if (held != tables.end()) {
      Raise(8107,
            fmt::format("{}.{}", state_.identity_insert->first->name, held->second.FullName()),
            table.name);
    }
  }
  state_.identity_insert = target;
}

void FlowRunner::Run(const SetOptionStatement& statement) {
  for (const std::string& word : statement.words) {
    if (word == "identity_insert") SetIdentityInsert(statement);
    for (const Switch& each : kSwitches) {
      if (each.name == word) state_.options.*each.value = IsOn(statement);
    }
  }
  const std::string& first = statement.words.front();
  const bool is_switch = std::ranges::find(kSwitches, first, &Switch::name) != kSwitches.end();
  const bool stays_off = IsAmong(kAlwaysOff, first) && !IsOn(statement);
  if (!is_switch && !stays_off && !IsAmong(kAccepted, first)) Raise(195, first);
  Done();
}

}  // namespace sandbox
