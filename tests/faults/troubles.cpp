#include "tests/faults/troubles.h"

#include <signal.h>

#include <chrono>
#include <sstream>
#include <thread>

namespace dorvane::test {

namespace {

constexpr std::chrono::seconds kWhile(4);  // what passes by itself lasts longer than the idle limit
constexpr std::size_t kLeftOnDisk = 256 << 10;

/// Holds "Big" in another session, against writers at least.
void HoldTable(const Stage& stage, ServerKind server, const std::string& database) {
  ado::Connection holder(ado::InstalledProvider(server));
  holder.Open(stage.Settings(server, database));
  try {
    if (server == ServerKind::MySql) {
      holder.Execute("lock tables Big write");
    } else {
      holder.Execute("begin transaction update Big set Note = Note where Id = 1");
    }
  } catch (const RunTimeError&) {
    return;  // the run has dropped the table just now
  }
  std::this_thread::sleep_for(kWhile);
}

/// Ends every session of the program; those of the test have ended.
void KillSessions(const PrivateMySql& server) {
  std::istringstream ids(
      server.Query("select id from information_schema.processlist where user = 'root' and id <> "
                   "connection_id()"));
  for (std::string id; std::getline(ids, id);) {
    try {
      server.Query("kill " + id);
    } catch (const std::exception&) {
      // It has ended by itself.
    }
  }
}

}  // namespace

void CauseTrouble(Stage& stage, const Scenario& scenario, const std::string& database) {
  const ServerKind server = scenario.Server();
  switch (scenario.trouble) {
    case Trouble::KillServer:
      return stage.ServerOf(server).Restart();
    case Trouble::StopServer:
      return stage.ServerOf(server).Signal(SIGSTOP);
    case Trouble::PauseServer:
      stage.ServerOf(server).Signal(SIGSTOP);
      std::this_thread::sleep_for(kWhile);
      return stage.ServerOf(server).Signal(SIGCONT);
    case Trouble::KillSessions:
      return KillSessions(stage.MySql());
    case Trouble::LockTable:
      return HoldTable(stage, server, scenario.side == Side::Source ? "source" : database);
    case Trouble::FullDisk:
      return stage.Disk().Fill(kLeftOnDisk);
    default:
      return;
  }
}

void RelieveTrouble(Stage& stage, const Scenario& scenario) {
  if (scenario.trouble == Trouble::StopServer) stage.ServerOf(scenario.Server()).Signal(SIGCONT);
  if (scenario.trouble == Trouble::FullDisk) {
    stage.Disk().Empty();
    // A server may have given itself up.
    stage.ServerOf(scenario.Server()).Restart();
    if (scenario.Server() == ServerKind::MySql) stage.Disk().DeleteOrphanedTables();
  }
}

}  // namespace dorvane::test
