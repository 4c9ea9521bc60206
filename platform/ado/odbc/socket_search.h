#pragma once

#include <sys/types.h>

#include <set>

namespace dorvane::ado::odbc {

/// Finds the socket that a driver opens for a connection, which no driver tells: it was not there
/// when the search began.
class SocketSearch {
 public:
  SocketSearch();

  /// The new TCP connection to that port, 0 for any. -1 when there is none, or more than one.
  int NewSocket(int port) const;

 private:
  std::set<ino_t> known_;  // numbers of files are used again, these are not
};

}  // namespace dorvane::ado::odbc
