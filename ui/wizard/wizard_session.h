#pragma once

#include <memory>

#include "endpoint/database.h"
#include "job/last_settings.h"

namespace dorvane {

/// What the pages share: the two endpoints of the chosen direction, the chosen tables and the
/// values of the last run. The endpoints exist from the moment a direction has been chosen.
struct WizardSession {
  std::unique_ptr<IDatabase> src;
  std::unique_ptr<IDatabase> dest;
  NameList tables;
  LastSettings last;

  ServerKind Direction() const { return src->Kind(); }
};

}  // namespace dorvane
