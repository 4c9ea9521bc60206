// The program's unattended run with its row-by-row copy, the reference that scripts/bench measures
// the block copy against.

#include <fmt/format.h>

#include <cstdio>

#include "app/unattended_run.h"
#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/support/planned_endpoint.h"

namespace {

template <typename Endpoint>
std::unique_ptr<dorvane::IDatabase> RowByRow(dorvane::IRunHost& host) {
  auto endpoint = std::make_unique<dorvane::test::PlannedEndpoint<Endpoint>>(host);
  endpoint->plan.strategy = dorvane::CopyStrategy::RowByRow;
  return endpoint;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fmt::print(stderr, "usage: row_by_row SETTINGS.dcs\n");
    return 2;
  }
  const auto make_endpoint = [](dorvane::ServerKind kind, dorvane::IRunHost& host) {
    return kind == dorvane::ServerKind::MsSql ? RowByRow<dorvane::MsSqlDatabase>(host)
                                              : RowByRow<dorvane::MySqlDatabase>(host);
  };
  return static_cast<int>(dorvane::RunUnattendedConversion(argv[1], make_endpoint));
}
