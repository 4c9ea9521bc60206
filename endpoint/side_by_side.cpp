// Tables side by side: what a conversion does with its forks.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "endpoint/conversion.h"
#include "endpoint/lanes.h"
#include "endpoint/table_queue.h"

namespace dorvane {

void Conversion::ConvertSideBySide(const NameList& tables) {
  const std::optional<TableQueue> order = IsMerging() ? MergingOrder(tables) : TableQueue(tables);
  if (!order) return ConvertOneByOne(tables);
  std::vector<ConnectionPair> pairs = OpenPairs(tables.size());
  Lanes lanes(pairs.size() + 1, events_, host_);
  if (IsOverwriting()) {
    OnLanes(lanes, pairs, TableQueue(tables), &Conversion::PlanListed);
    PrepareOverwriting(tables);
  }
  OnLanes(lanes, pairs, *order, &Conversion::ConvertListed);
  std::ranges::sort(postponed_tables_, {}, [&](const PostponedTable& each) {
    return std::ranges::find(tables, each.table->name.Text());
  });
}

std::vector<Conversion::ConnectionPair> Conversion::OpenPairs(std::size_t tables) {
  const auto at_once =
      static_cast<std::size_t>(std::clamp(options_.tables_at_once, 1, kMostTablesAtOnce));
  const std::size_t wanted = std::min(at_once, tables) - 1;
  std::vector<ConnectionPair> pairs;
  try {
    while (pairs.size() < wanted) {
      auto source = source_->OpenAnother();
      pairs.emplace_back(std::move(source), destination_->OpenAnother());
    }
  } catch (const RunTimeError& error) {
    host_.Inform(
        fmt::format("Tables at once: {} instead of {}, since no further connection could "
                    "be opened: {}",
                    pairs.size() + 1, wanted + 1, error.Description()));
  }
  return pairs;
}

std::optional<TableQueue> Conversion::MergingOrder(const NameList& tables) {
  std::vector<ado::TableName> dest_names;
  for (const std::string& name : tables) dest_names.push_back(DestTableOf(name));
  try {
    return TableQueue(tables, dest_names, DestReferences({dest_names.begin(), dest_names.end()}));
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
}

void Conversion::OnLanes(Lanes& lanes, std::vector<ConnectionPair>& pairs, TableQueue tables,
                         Step step) {
  std::vector<std::unique_ptr<Conversion>> forks;
  forks.push_back(ForkOver({std::move(source_), std::move(destination_)}, lanes.Record(0)));
  for (ConnectionPair& pair : pairs) {
    forks.push_back(ForkOver(std::move(pair), lanes.Record(forks.size())));
  }
  lanes.Run(std::move(tables),
            {.prepare = [&](std::size_t lane) { return forks[lane]->TryKeepConnected(); },
             .convert = [&](std::size_t lane,
                            const std::string& table) { forks[lane]->TryStep(step, table); }});
  std::tie(source_, destination_) = JoinFork(*forks[0]);
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = JoinFork(*forks[i + 1]);
}

std::unique_ptr<Conversion> Conversion::ForkOver(ConnectionPair pair, EventRecord& record) const {
  auto fork = Fork({.source = std::move(pair.first),
                    .destination = std::move(pair.second),
                    .source_database = source_database_,
                    .options = options_,
                    .events = record,
                    .host = record,
                    .copy = copy_});
  fork->plans_ = plans_;
  fork->catalog_.LearnFrom(catalog_);
  return fork;
}

Conversion::ConnectionPair Conversion::JoinFork(Conversion& fork) {
  Join(fork);
  failed_.merge(fork.failed_);
  postponed_accounts_.merge(fork.postponed_accounts_);
  std::ranges::move(fork.postponed_tables_, std::back_inserter(postponed_tables_));
  return {std::move(fork.source_), std::move(fork.destination_)};
}

bool Conversion::TryKeepConnected() {
  try {
    KeepConnected();
    return true;
  } catch (const RunTimeError&) {
    return false;
  }
}

}  // namespace dorvane
