#pragma once

#include <memory>

#include "endpoint/database.h"
#include "endpoint/run_host.h"

namespace dorvane {

/// A new endpoint on the installed client libraries. `host` must outlive it.
std::unique_ptr<IDatabase> MakeEndpoint(ServerKind kind, IRunHost& host);

}  // namespace dorvane
