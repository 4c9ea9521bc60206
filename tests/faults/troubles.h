#pragma once

#include <string>

#include "tests/faults/scenario.h"
#include "tests/faults/stage.h"

namespace dorvane::test {

/// Lets a trouble of a server happen now; one that passes by itself has passed when this returns.
/// `database` is the run's destination.
void CauseTrouble(Stage& stage, const Scenario& scenario, const std::string& database);

/// Everything is again as it was before, but for what the run did.
void RelieveTrouble(Stage& stage, const Scenario& scenario);

}  // namespace dorvane::test
