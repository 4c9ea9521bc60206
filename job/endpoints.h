#pragma once

#include <functional>
#include <memory>

#include "endpoint/database.h"
#include "endpoint/run_host.h"

namespace dorvane {

/// Makes an endpoint of a kind that reports to `host`, which must outlive it.
using HostedEndpointFactory =
    std::function<std::unique_ptr<IDatabase>(ServerKind kind, IRunHost& host)>;

/// A HostedEndpointFactory: endpoints on the installed client libraries.
std::unique_ptr<IDatabase> MakeEndpoint(ServerKind kind, IRunHost& host);

}  // namespace dorvane
