#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>

#include "endpoint/event_record.h"
#include "endpoint/table_queue.h"

namespace dorvane {

/// Threads that work on tables side by side, each on one table at a time. What the work on a table
/// reports is told in the thread that called Run, whole, in the order in which the tables end; the
/// listener and the host are used there only.
class Lanes {
 public:
  /// What the lanes do, each in its own thread.
  struct Work {
    /// Sees to it that the lane can work; false when it never will again. Its tables are left to
    /// the others then, as long as there are others.
    std::function<bool(std::size_t lane)> prepare;
    std::function<void(std::size_t lane, const std::string& table)> convert;
  };

  Lanes(std::size_t count, IConversionListener& events, IRunHost& host);

  /// Where the work of a lane reports.
  EventRecord& Record(std::size_t lane) { return lanes_[lane].record; }
  /// Returns when every table has ended, or those in hand when the host is stopping. Throws what
  /// the work throws, after all lanes have ended.
  void Run(TableQueue tables, const Work& work);

 private:
  struct Lane {
    explicit Lane(const std::atomic<bool>& is_stopping) : record(is_stopping) {}
    EventRecord record;
    std::string table;  // in hand
  };
  static constexpr std::chrono::milliseconds kTellEvery{100};

  // In the lanes' threads.
  void RunLane(std::size_t number, const Work& work);
  bool Begin(std::size_t number, const Work& work);
  void End(Lane& lane);
  bool HasTables();
  void HandOver(Lane& lane);

  // In the thread of Run.
  void Tell();
  void Stop();
  TablesInHand InHand() const;

  IConversionListener& events_;
  IRunHost& host_;
  std::deque<Lane> lanes_;
  std::atomic<bool> is_stopping_ = false;

  std::mutex mutex_;  // of everything below, and of the lanes' tables
  std::condition_variable changed_;
  TableQueue queue_{{}};
  std::deque<Report> reports_;  // of tables that have ended
  std::size_t at_work_ = 0;     // lanes
  std::size_t ended_ = 0;       // tables
  std::exception_ptr failure_;
};

}  // namespace dorvane
