#include "ui/wizard/table_outcome.h"

#include <utility>

namespace dorvane {

OutcomeRecorder::OutcomeRecorder(std::function<Clock::time_point()> now) : now_(std::move(now)) {}

void OutcomeRecorder::RunStarted(const NameList& tables) {
  tables_ = tables;
  open_.clear();
  for (const std::string& name : tables) open_[name].name = name;
  seen_.clear();
  begun_.clear();
  current_.clear();
}

void OutcomeRecorder::TablesInHandSeen(const TablesInHand& tables) {
  for (const std::string& name : tables.names) seen_.try_emplace(name, now_());
}

void OutcomeRecorder::Pause() {
  const auto table = open_.find(current_);
  if (table != open_.end()) table->second.took += now_() - since_;
  current_.clear();
}

void OutcomeRecorder::TableStarted(const std::string& name) {
  Pause();
  current_ = name;
  begun_.insert(name);
  since_ = now_();
  const auto seen = seen_.find(name);
  if (seen == seen_.end()) return;
  since_ = seen->second;
  seen_.erase(seen);
}

void OutcomeRecorder::RowsAnnounced(std::int64_t rows) {
  const auto table = open_.find(current_);
  if (table != open_.end()) table->second.announced = rows;
}

void OutcomeRecorder::RowsConverted(std::int64_t rows) {
  const auto table = open_.find(current_);
  if (table != open_.end()) table->second.rows += rows;
}

TableOutcome OutcomeRecorder::TableEnded(const std::string& name, TableState state) {
  if (current_ == name) Pause();
  const auto table = open_.find(name);
  TableOutcome outcome{.name = name};
  if (table != open_.end()) {
    outcome = std::move(table->second);
    open_.erase(table);
  }
  outcome.state = state;
  return outcome;
}

std::vector<TableOutcome> OutcomeRecorder::RunEnded(bool is_stopped) {
  if (is_stopped) begun_.erase(current_);
  Pause();
  std::vector<TableOutcome> unended;
  for (const std::string& name : tables_) {
    const auto table = open_.find(name);
    if (table == open_.end()) continue;
    table->second.state = begun_.contains(name) ? TableState::Failed : TableState::LeftOut;
    unended.push_back(table->second);
  }
  return unended;
}

}  // namespace dorvane
