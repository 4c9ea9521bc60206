#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "endpoint/rehearsed_server.h"
#include "endpoint/row_copier.h"
#include "endpoint/trial_table.h"

namespace dorvane {

/// What becomes of a row that refers to one that is not there.
enum class OrphanRule {
  Refused,
  Stored,     // and counted when all tables are there
  Postponed,  // and tried again when all tables are there
};

/// The foreign keys that a merge meets on the destination: which rows find the rows that they refer
/// to, there or among those that have arrived before them. The keys that have arrived, and the rows
/// that wait for some, stand in temporary tables of the trial's session. When there are too many of
/// them or the server cannot be asked, every row is taken from then on.
class RehearsedParents {
 public:
  /// Both must outlive this.
  RehearsedParents(TrialTable& trial, IRehearsedServer& server, OrphanRule rule);

  /// A table of the destination that rows are added to, by its keys. Ahead of the first row.
  void Add(const ado::TableName& table, const std::vector<ado::Key>& keys);

  // Of the rows in the trial table, which are of the table that it stands for.

  /// True when the last `rows` of them are taken together: each finds its parents, or may be
  /// without by the rule and `takes_orphans`.
  bool TakeBlock(std::size_t rows, bool takes_orphans);
  /// What becomes of the last of them, the table's row at `position`, from 1.
  RowOutcome TakeRow(std::int64_t position);

  // When all tables are there.

  /// Adds the postponed rows that still find no parent to the accounts of their tables.
  void FinishPostponed(std::map<std::string, RowAccount>& accounts);
  /// How many rows of the table find no parent by this key of it; none where that is not known.
  std::optional<std::int64_t> Orphans(const ado::TableName& table, const ado::Key& key);

  /// Why every row is taken, told once; empty while there is no reason.
  std::string TakeTrouble() { return std::exchange(trouble_, {}); }

 private:
  /// A temporary table with some columns of the rows of a table.
  struct Temporary {
    ado::TableName table;  // of the destination
    std::vector<std::string> columns;
    std::string name = {};  // quoted; empty until it is made
  };
  struct Link {
    ado::TableName child;
    ado::Key key;
    std::size_t parents;  // position in arrived_
  };

  /// Does nothing, and nothing any more, once an operation has failed.
  template <typename Operation>
  void Try(Operation operation);
  void GiveUp(std::string_view why);
  void Keep(std::size_t rows);
  void Make(Temporary& table);
  std::string Quoted(std::string_view column) const;
  std::string List(const std::vector<std::string>& columns) const;
  /// The condition under which a row of `from` finds no parent by the key.
  std::string Lack(const Link& link, const std::string& from) const;
  std::int64_t Count(const std::string& from, const std::string& condition);
  /// The first key by which rows of `from` that meet the condition find no parent; null for none.
  const Link* FirstLack(const ado::TableName& table, const std::string& from,
                        std::string_view condition = "1 = 1");
  /// Others may refer from now on to those rows of `from`, which are the table's; `rows` of them
  /// are new.
  void Arrive(const ado::TableName& table, const std::string& from, std::string_view condition,
              std::size_t rows);
  /// Has the trial's rows wait.
  void Wait(std::size_t rows, std::int64_t position);
  Temporary WaitingOf(const ado::TableName& table) const;
  /// Lets those arrive that find their parents now. False when there is none.
  bool Release(const Temporary& waiting);

  TrialTable& trial_;
  IRehearsedServer& server_;
  const OrphanRule rule_;
  std::vector<Link> links_;
  std::vector<Temporary> arrived_;  // keys
  std::vector<Temporary> waiting_;  // rows: what they refer by and what others refer to
  int made_ = 0;                    // temporary tables
  std::size_t kept_rows_ = 0;
  bool is_usable_ = true;
  std::string trouble_;
};

}  // namespace dorvane
