#include "endpoint/rehearsed_parents.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "endpoint/names.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

// What stands on the server's disk.
constexpr std::size_t kMostRows = 1'000'000;
constexpr std::string_view kPosition = "dorvane_position";

bool IsSame(const ado::TableName& a, const ado::TableName& b) {
  return text::EqualsIgnoringCase(a.Text(), b.Text());
}

/// Empty for NULL.
std::int64_t NumberOf(const ado::Field& field) {
  const std::string text = field.Text();
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

void AddNew(std::vector<std::string>& columns, const std::string& column) {
  if (std::ranges::find(columns, column) == columns.end()) columns.push_back(column);
}

}  // namespace

RehearsedParents::RehearsedParents(TrialTable& trial, IRehearsedServer& server, OrphanRule rule)
    : trial_(trial), server_(server), rule_(rule) {}

void RehearsedParents::Add(const ado::TableName& table, const std::vector<ado::Key>& keys) {
  for (const ado::Key& key : keys) {
    if (key.type != ado::KeyType::Foreign || key.is_disabled) continue;
    Temporary parents{key.related_table, {}};
    for (const ado::KeyColumn& column : key.columns) {
      parents.columns.push_back(column.related_column);
    }
    const auto known = std::ranges::find_if(arrived_, [&](const Temporary& each) {
      return IsSame(each.table, parents.table) && each.columns == parents.columns;
    });
    links_.push_back({table, key, static_cast<std::size_t>(known - arrived_.begin())});
    if (known == arrived_.end()) arrived_.push_back(std::move(parents));
  }
}

template <typename Operation>
void RehearsedParents::Try(Operation operation) {
  if (!is_usable_) return;
  try {
    operation();
  } catch (const RunTimeError& error) {
    GiveUp(error.Description());
  }
}

void RehearsedParents::GiveUp(std::string_view why) {
  is_usable_ = false;
  trouble_ = why;
}

void RehearsedParents::Keep(std::size_t rows) {
  kept_rows_ += rows;
  if (kept_rows_ > kMostRows) GiveUp(fmt::format("more than {} rows", kMostRows));
}

std::string RehearsedParents::Quoted(std::string_view column) const {
  return trial_.Server() == ServerKind::MySql ? MySqlName(column) : MsSqlName(column);
}

std::string RehearsedParents::List(const std::vector<std::string>& columns) const {
  std::string list;
  for (const std::string& column : columns) {
    list += (list.empty() ? "" : ", ") + Quoted(column);
  }
  return list;
}

std::string RehearsedParents::Lack(const Link& link, const std::string& from) const {
  std::string is_set;
  std::string is_parent;
  std::string is_itself;
  for (const ado::KeyColumn& column : link.key.columns) {
    const std::string own = from + "." + Quoted(column.name);
    const std::string related = Quoted(column.related_column);
    const char* separator = is_parent.empty() ? "" : " and ";
    is_set += own + " is not null and ";
    is_parent += fmt::format("{}p.{} = {}", separator, related, own);
    is_itself += fmt::format("{}{}.{} = {}", separator, from, related, own);
  }
  const auto is_missing = [&](const std::string& table) {
    return fmt::format("not exists (select 1 from {} p where {})", table, is_parent);
  };
  const bool is_my_sql = trial_.Server() == ServerKind::MySql;
  const ado::TableName& related = link.key.related_table;
  std::string lack = is_set + is_missing(is_my_sql ? MySqlTable(related) : MsSqlTable(related));
  const Temporary& arrived = arrived_[link.parents];
  if (!arrived.name.empty()) lack += " and " + is_missing(arrived.name);
  if (IsSame(related, link.child)) {
    lack += fmt::format(" and case when {} then 0 else 1 end = 1", is_itself);
  }
  return lack;
}

std::int64_t RehearsedParents::Count(const std::string& from, const std::string& condition) {
  ado::Recordset answer =
      trial_.Connection().Execute(fmt::format("select count(*) from {} where {}", from, condition));
  return NumberOf(answer.Field(0));
}

const RehearsedParents::Link* RehearsedParents::FirstLack(const ado::TableName& table,
                                                          const std::string& from,
                                                          std::string_view condition) {
  // One key at a time: MySQL opens a temporary table once in a statement.
  const auto found = std::ranges::find_if(links_, [&](const Link& link) {
    return IsSame(link.child, table) &&
           Count(from, fmt::format("{} and {}", condition, Lack(link, from))) > 0;
  });
  return found != links_.end() ? &*found : nullptr;
}

void RehearsedParents::Make(Temporary& table) {
  const bool is_my_sql = trial_.Server() == ServerKind::MySql;
  std::string name = fmt::format("{}dorvane_parents_{}", is_my_sql ? "" : "#", ++made_);
  name = Quoted(name);
  trial_.Connection().Execute(server_.CopyOfColumns(table.table, name, table.columns));
  table.name = std::move(name);
}

void RehearsedParents::Arrive(const ado::TableName& table, const std::string& from,
                              std::string_view condition, std::size_t rows) {
  for (Temporary& keys : arrived_) {
    if (!IsSame(keys.table, table)) continue;
    const bool is_my_sql = trial_.Server() == ServerKind::MySql;
    const std::string columns = List(keys.columns);
    if (keys.name.empty()) {
      Make(keys);
      trial_.Connection().Execute(
          fmt::format("alter table {} add unique ({})", keys.name, columns));
    }
    std::string is_new(condition);
    std::string is_there;
    for (const std::string& column : keys.columns) {
      const std::string name = Quoted(column);
      is_new += fmt::format(" and {}.{} is not null", from, name);
      is_there += fmt::format("{}o.{} = {}.{}", is_there.empty() ? "" : " and ", name, from, name);
    }
    if (!is_my_sql) {
      is_new += fmt::format(" and not exists (select 1 from {} o where {})", keys.name, is_there);
    }
    trial_.Connection().Execute(
        fmt::format("insert {}into {} ({}) select distinct {} from {} where {}",
                    is_my_sql ? "ignore " : "", keys.name, columns, columns, from, is_new));
    Keep(rows);
  }
}

RehearsedParents::Temporary RehearsedParents::WaitingOf(const ado::TableName& table) const {
  Temporary waiting{table, {}};
  for (const Link& link : links_) {
    if (!IsSame(link.child, table)) continue;
    for (const ado::KeyColumn& column : link.key.columns) AddNew(waiting.columns, column.name);
  }
  for (const Temporary& keys : arrived_) {
    if (!IsSame(keys.table, table)) continue;
    for (const std::string& column : keys.columns) AddNew(waiting.columns, column);
  }
  return waiting;
}

void RehearsedParents::Wait(std::size_t rows, std::int64_t position) {
  const ado::TableName& table = trial_.StandsFor();
  auto waiting = std::ranges::find_if(
      waiting_, [&](const Temporary& each) { return IsSame(each.table, table); });
  if (waiting == waiting_.end()) {
    waiting = waiting_.insert(waiting, WaitingOf(table));
    Make(*waiting);
    trial_.Connection().Execute(
        fmt::format("alter table {} add {} bigint", waiting->name, kPosition));
  }
  const std::string columns = List(waiting->columns);
  trial_.Connection().Execute(fmt::format("insert into {} ({}, {}) select {}, {} from {}",
                                          waiting->name, columns, kPosition, columns, position,
                                          trial_.QuotedName()));
  trial_.Empty();  // what waits must not be found again
  Keep(rows);
}

bool RehearsedParents::TakeBlock(std::size_t rows, bool takes_orphans) {
  bool is_taken = true;
  Try([&] {
    const ado::TableName& table = trial_.StandsFor();
    const bool lacks = FirstLack(table, trial_.QuotedName()) != nullptr;
    is_taken = !lacks || (takes_orphans && rule_ == OrphanRule::Stored);
    if (!is_taken) return;
    Arrive(table, trial_.QuotedName(), "1 = 1", rows);
    if (lacks) Wait(rows, 0);
  });
  return is_taken;
}

RowOutcome RehearsedParents::TakeRow(std::int64_t position) {
  RowOutcome outcome;
  Try([&] {
    const ado::TableName& table = trial_.StandsFor();
    const Link* lack = FirstLack(table, trial_.QuotedName());
    if (lack != nullptr && rule_ != OrphanRule::Stored) {
      const bool is_refused = rule_ == OrphanRule::Refused;
      outcome.reason = server_.LackOfParent(table, lack->key);
      outcome.result = is_refused ? RowResult::Refused : RowResult::Postponed;
    }
    if (outcome.result == RowResult::Stored) Arrive(table, trial_.QuotedName(), "1 = 1", 1);
    if (lack != nullptr && outcome.result != RowResult::Refused) Wait(1, position);
  });
  return outcome;
}

bool RehearsedParents::Release(const Temporary& waiting) {
  std::string lacks;
  for (const Link& link : links_) {
    if (!IsSame(link.child, waiting.table)) continue;
    lacks += fmt::format("{}({})", lacks.empty() ? "" : " or ", Lack(link, waiting.name));
  }
  const std::string finds = fmt::format("not ({})", lacks);
  if (Count(waiting.name, finds) == 0) return false;
  // Marked first: those that refer to others of them come in the next round.
  ado::Connection& connection = trial_.Connection();
  connection.Execute(fmt::format("update {} set {} = 0 where {}", waiting.name, kPosition, finds));
  const std::string is_released = fmt::format("{} = 0", kPosition);
  Arrive(waiting.table, waiting.name, is_released, 0);
  connection.Execute(fmt::format("delete from {} where {}", waiting.name, is_released));
  return true;
}

void RehearsedParents::FinishPostponed(std::map<std::string, RowAccount>& accounts) {
  Try([&] {
    for (bool goes_on = true; goes_on;) {
      goes_on = false;
      for (const Temporary& waiting : waiting_) goes_on = Release(waiting) || goes_on;
    }
    for (const Temporary& waiting : waiting_) {
      const std::int64_t count = Count(waiting.name, "1 = 1");
      if (count == 0) continue;
      const std::int64_t first =
          NumberOf(trial_.Connection()
                       .Execute(fmt::format("select min({}) from {}", kPosition, waiting.name))
                       .Field(0));
      const Link* lack =
          FirstLack(waiting.table, waiting.name, fmt::format("{} = {}", kPosition, first));
      if (lack == nullptr) continue;
      accounts[waiting.table.Text()].AddRefused(count, first,
                                                server_.LackOfParent(waiting.table, lack->key));
    }
  });
}

std::optional<std::int64_t> RehearsedParents::Orphans(const ado::TableName& table,
                                                      const ado::Key& key) {
  std::optional<std::int64_t> orphans;
  Try([&] {
    const auto link = std::ranges::find_if(links_, [&](const Link& each) {
      return IsSame(each.child, table) && each.key.name == key.name;
    });
    if (link == links_.end()) return;
    std::int64_t count = Count(MySqlTable(table), Lack(*link, MySqlTable(table)));
    for (const Temporary& waiting : waiting_) {
      if (IsSame(waiting.table, table)) count += Count(waiting.name, Lack(*link, waiting.name));
    }
    orphans = count;
  });
  return orphans;
}

}  // namespace dorvane
