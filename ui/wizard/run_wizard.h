#pragma once

namespace dorvane {

/// The interactive run: opens the wizard and returns the program's exit status when it was closed.
int RunWizard(int argc, char** argv);

}  // namespace dorvane
