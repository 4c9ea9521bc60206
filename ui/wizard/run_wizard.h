#pragma once

#include <string>

namespace dorvane {

/// Ends the program of somebody who has no display.
using NoDisplay = void (*)();

/// The interactive run: opens the wizard and returns the program's exit status when it was closed.
/// `settings_file` fills it, unless empty. `no_display` is called where there is no display to open
/// it on, and must not return.
int RunWizard(int argc, char** argv, const std::string& settings_file, NoDisplay no_display);

}  // namespace dorvane
