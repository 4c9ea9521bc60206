#include <sys/prctl.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/preview.h"
#include "app/standard_error.h"
#include "app/unattended_run.h"
#include "job/endpoints.h"
#include "ui/wizard/run_wizard.h"

namespace {

constexpr char kHelp[] =
    "Dorvane copies a database from Microsoft SQL Server to MySQL or back.\n"
    "\n"
    "  Dorvane                 opens the wizard\n"
    "  Dorvane --wizard SETTINGS.dcs\n"
    "                          opens the wizard with what the settings file describes\n"
    "  Dorvane SETTINGS.dcs    converts what the settings file describes, without a window,\n"
    "                          and appends to the log that it names\n"
    "  Dorvane --verify SETTINGS.dcs\n"
    "                          compares what it describes with what is on the destination\n"
    "  Dorvane --preview SETTINGS.dcs\n"
    "                          prints what it would do as a script of the destination's\n"
    "                          statements, with what would be lost as comments; changes nothing\n"
    "  Dorvane --help          prints this text\n"
    "  Dorvane --version       prints the version\n"
    "\n"
    "Exit status of a conversion: 0 everything was converted, 1 something failed (see the log),\n"
    "2 the settings could not be used, 128 and the signal's number: stopped by it.\n";

/// What can be done with a settings file beside converting what it describes.
struct Mode {
  std::string_view option;
  dorvane::RunStatus (*run)(const std::filesystem::path& settings_file,
                            const dorvane::HostedEndpointFactory& make_endpoint);
};
constexpr Mode kModes[] = {{"--verify ", dorvane::RunUnattendedComparison},
                           {"--preview ", dorvane::RunPreview}};

/// The whole command line is one path, so that blanks in it need no quotes; quotes are taken off.
std::string SettingsPath(int argc, char** argv) {
  std::string path;
  for (int i = 1; i < argc; ++i) path += (i > 1 ? " " : "") + std::string(argv[i]);
  if (path.size() >= 2 && path.front() == '"' && path.back() == '"') {
    path = path.substr(1, path.size() - 2);
  }
  return path;
}

/// Prints to standard output. Returns the exit status: 1 when it did not take the text.
int Print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  return std::fflush(stdout) == 0 ? 0 : 1;
}

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    if (const char* value = std::getenv(name); value && *value) return true;
  }
  return false;
}

[[noreturn]] void EndWithoutDisplay() {
  dorvane::WriteStandardError(
      "Dorvane: there is no display for the wizard. Give a settings file to convert "
      "without one; see Dorvane --help.\n");
  std::_Exit(2);
}

}  // namespace

int main(int argc, char** argv) {
  prctl(PR_SET_DUMPABLE, 0);  // a core dump would hold passwords
  dorvane::OpenStandardDescriptors();
  std::setlocale(LC_TIME, "");
  std::signal(SIGPIPE, SIG_IGN);  // a server that went away is an error of its connection

  const std::string path = SettingsPath(argc, argv);
  if (path == "--help" || path == "-h") return Print(kHelp);
  if (path == "--version") return Print("Dorvane " DORVANE_VERSION "\n");
  for (const Mode& mode : kModes) {
    if (!path.starts_with(mode.option)) continue;
    return static_cast<int>(mode.run(path.substr(mode.option.size()), dorvane::MakeEndpoint));
  }
  constexpr std::string_view kWizard = "--wizard";
  const bool opens_wizard = path == kWizard || path.starts_with(std::string(kWizard) + " ");
  if (!path.empty() && !opens_wizard) {
    return static_cast<int>(dorvane::RunUnattendedConversion(path, dorvane::MakeEndpoint));
  }
  if (!HasDisplay()) EndWithoutDisplay();
  // "--wizard" alone is what a desktop says that has no file.
  const std::string settings = path.size() > kWizard.size() ? path.substr(kWizard.size() + 1) : "";
  return dorvane::RunWizard(argc, argv, settings, EndWithoutDisplay);
}
