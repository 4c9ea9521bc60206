#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/proxy.h"

namespace dorvane::test {

/// What goes wrong while a conversion runs.
enum class Trouble {
  // what a network does to one connection, in the order of Fault
  Cut,
  Reset,
  Truncate,
  Corrupt,
  Delay,
  Swallow,
  SwallowAnswers,
  Stall,
  // what happens to a server
  KillServer,    // as by a crash, and started again
  StopServer,    // it stands still until the run has ended
  PauseServer,   // it stands still for some seconds
  KillSessions,  // an administrator ends them; on MySQL
  LockTable,     // another session holds a table for some seconds
  FullDisk,      // the destination's
  // what happens to the program
  FullLog,
};
inline constexpr int kTroubles = static_cast<int>(Trouble::FullLog) + 1;

enum class Side { Source, Destination };

/// One run under a trouble.
struct Scenario {
  ServerKind source = ServerKind::MsSql;
  Side side = Side::Source;  // whose connection or server it happens to
  Trouble trouble = Trouble::Cut;
  bool on_answers = true;     // of a network: in what the server sends, or in what is sent to it
  double moment = 0.5;        // of an undisturbed run: when, in its bytes or its time
  bool heal_merging = false;  // the run afterwards merges, else it overwrites

  /// The server that it happens to.
  ServerKind Server() const {
    const bool is_ms_sql = (source == ServerKind::MsSql) == (side == Side::Source);
    return is_ms_sql ? ServerKind::MsSql : ServerKind::MySql;
  }
};

std::string_view NameOf(Trouble trouble);
/// "to MySQL, Cut at the source, answers, 0.50, healed by merging".
std::string Describe(const Scenario& scenario);

/// The scenario of a number: every trouble, direction and side comes up in turn, the rest is drawn.
/// `full_disks`: whether the machine can have one.
Scenario DrawScenario(std::uint32_t number, std::uint32_t seed, bool full_disks);

/// True for what happens to one connection.
inline bool IsNetwork(Trouble trouble) {
  return trouble <= Trouble::Stall;
}
inline Fault FaultOf(Trouble trouble) {
  return static_cast<Fault>(trouble);
}

}  // namespace dorvane::test
