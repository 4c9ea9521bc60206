#pragma once

#include <filesystem>

#include "job/endpoints.h"

namespace dorvane {

/// Exit statuses of an unattended run.
enum class RunStatus : int {
  Converted = 0,         // every table was converted and nothing was reported
  Failed = 1,            // anything failed; the log says what
  SettingsUnusable = 2,  // the settings file, or the log it names, could not be used
};

/// The status of a run that a signal ended in order.
inline RunStatus StoppedBy(int signal) {
  return static_cast<RunStatus>(128 + signal);
}

/// Converts what the settings file describes without any window and appends to its log. What cannot
/// go to the log, because it is not open yet or cannot be written, goes to standard error.
RunStatus RunUnattendedConversion(const std::filesystem::path& settings_file,
                                  const HostedEndpointFactory& make_endpoint);
/// The same for a comparison of what the settings file describes with what is on the destination,
/// which changes nothing.
RunStatus RunUnattendedComparison(const std::filesystem::path& settings_file,
                                  const HostedEndpointFactory& make_endpoint);

}  // namespace dorvane
