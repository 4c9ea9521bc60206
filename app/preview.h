#pragma once

#include <filesystem>

#include "app/unattended_run.h"

namespace dorvane {

/// Prints what a run of the settings would do, as a script of the destination's statements with
/// remarks as comments, and changes nothing: no table, no log. kFailed when something would be lost
/// or changed, or the preview could not be finished.
RunStatus RunPreview(const std::filesystem::path& settings_file,
                     const HostedEndpointFactory& make_endpoint);

}  // namespace dorvane
