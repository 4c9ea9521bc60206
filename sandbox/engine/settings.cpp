#include <array>

#include "sandbox/engine/definitions.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

// Options that SET knows but that change nothing here.
constexpr std::array<std::string_view, 36> kAcceptedOptions{"ansi_defaults",
                                                            "ansi_null_dflt_off",
                                                            "ansi_null_dflt_on",
                                                            "ansi_nulls",
                                                            "ansi_padding",
                                                            "ansi_warnings",
                                                            "arithabort",
                                                            "arithignore",
                                                            "concat_null_yields_null",
                                                            "context_info",
                                                            "cursor_close_on_commit",
                                                            "datefirst",
                                                            "dateformat",
                                                            "deadlock_priority",
                                                            "fips_flagger",
                                                            "forceplan",
                                                            "language",
                                                            "lock_timeout",
                                                            "numeric_roundabort",
                                                            "offsets",
                                                            "parseonly",
                                                            "query_governor_cost_limit",
                                                            "quoted_identifier",
                                                            "remote_proc_transactions",
                                                            "showplan_all",
                                                            "showplan_text",
                                                            "showplan_xml",
                                                            "statistics",
                                                            "transaction",
                                                            "identity_insert",
                                                            "procid",
                                                            "disable_def_cnst_chk",
                                                            "result",
                                                            "no_browsetable",
                                                            "textsize",
                                                            "rowcount"};

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

Flow FlowRunner::Run(const SetOptionStatement& statement) {
  const auto number = [&]() -> std::int64_t {
    if (!statement.value) return 0;
    const TypeInfo type = BigIntType();
    const Value value = session_.Evaluate(*statement.value, &type);
    const auto* held = std::get_if<std::int64_t>(&value);
    return held ? *held : 0;
  };
  for (const std::string& word : statement.words) {
    if (word == "identity_insert") SetIdentityInsert(statement);
    if (word == "nocount") state_.options.no_count = IsOn(statement);
    if (word == "xact_abort") state_.options.xact_abort = IsOn(statement);
    if (word == "fmtonly") state_.options.format_only = IsOn(statement);
    if (word == "noexec") state_.options.no_execute = IsOn(statement);
    if (word == "implicit_transactions") state_.options.implicit_transactions = IsOn(statement);
    if (word == "rowcount") state_.options.row_limit = number();
    if (word == "textsize") state_.options.text_size = static_cast<int>(number());
  }
  static constexpr std::array<std::string_view, 5> kOwn{"nocount", "xact_abort", "fmtonly",
                                                        "noexec", "implicit_transactions"};
  const std::string& first = statement.words.front();
  const bool known = std::find(kAcceptedOptions.begin(), kAcceptedOptions.end(), first) !=
                         kAcceptedOptions.end() ||
                     std::find(kOwn.begin(), kOwn.end(), first) != kOwn.end();
  if (!known) Raise(195, first);
  return Done();
}

}  // namespace sandbox
