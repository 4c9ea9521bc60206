#include "endpoint/lanes.h"

#include <thread>
#include <utility>
#include <vector>

namespace dorvane {

Lanes::Lanes(std::size_t count, IConversionListener& events, IRunHost& host)
    : events_(events), host_(host) {
  for (std::size_t i = 0; i < count; ++i) lanes_.emplace_back(is_stopping_);
}

void Lanes::Run(TableQueue tables, const Work& work) {
  // However this ends, no lane works on behind it.
  struct StopAtEnd {
    Lanes& lanes;
    ~StopAtEnd() { lanes.Stop(); }
  };
  queue_ = std::move(tables);
  at_work_ = lanes_.size();
  ended_ = 0;
  is_stopping_ = host_.IsStopping();
  std::vector<std::jthread> threads;
  const StopAtEnd stop{*this};
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    threads.emplace_back([this, i, &work] { RunLane(i, work); });
  }
  Tell();
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void Lanes::RunLane(std::size_t number, const Work& work) {
  Lane& lane = lanes_[number];
  try {
    while (Begin(number, work)) {
      work.convert(number, lane.table);
      End(lane);
    }
  } catch (...) {
    const std::lock_guard lock(mutex_);
    failure_ = std::current_exception();
    is_stopping_ = true;
    --at_work_;
    HandOver(lane);
  }
  changed_.notify_all();
}

bool Lanes::Begin(std::size_t number, const Work& work) {
  Lane& lane = lanes_[number];
  // Without a table to come a lost connection is nobody's.
  const bool is_ready = HasTables() && work.prepare(number);
  std::unique_lock lock(mutex_);
  const bool is_last = at_work_ == 1;
  std::optional<std::string> next;
  while ((is_ready || is_last) && !is_stopping_ && !queue_.IsEmpty()) {
    next = queue_.Begin();
    if (next) break;
    changed_.wait(lock);
  }
  if (next) {
    lane.table = std::move(*next);
    return true;
  }
  --at_work_;
  HandOver(lane);
  return false;
}

bool Lanes::HasTables() {
  const std::lock_guard lock(mutex_);
  return !queue_.IsEmpty();
}

void Lanes::End(Lane& lane) {
  const std::lock_guard lock(mutex_);
  queue_.End(std::exchange(lane.table, {}));
  ++ended_;
  HandOver(lane);
  changed_.notify_all();
}

void Lanes::HandOver(Lane& lane) {
  Report report = lane.record.Take();
  if (!report.IsEmpty()) reports_.push_back(std::move(report));
}

void Lanes::Tell() {
  std::unique_lock lock(mutex_);
  for (bool is_over = false; !is_over;) {
    changed_.wait_for(lock, kTellEvery, [this] { return !reports_.empty() || at_work_ == 0; });
    const std::deque<Report> reports = std::exchange(reports_, {});
    const TablesInHand in_hand = InHand();
    is_over = at_work_ == 0;
    lock.unlock();
    for (const Report& report : reports) report.TellTo(events_, host_);
    if (!in_hand.names.empty()) host_.ShowTablesInHand(in_hand);
    host_.Yield();
    if (host_.IsStopping()) Stop();
    lock.lock();
  }
}

void Lanes::Stop() {
  const std::lock_guard lock(mutex_);
  is_stopping_ = true;
  changed_.notify_all();
}

TablesInHand Lanes::InHand() const {
  TablesInHand in_hand{.ended = ended_};
  for (const Lane& lane : lanes_) {
    if (!lane.table.empty()) in_hand.names.push_back(lane.table);
    in_hand.rows += lane.record.Rows();
    in_hand.announced += lane.record.AnnouncedRows();
  }
  return in_hand;
}

}  // namespace dorvane
