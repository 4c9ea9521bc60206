#include "app/trace.h"

#include <syslog.h>

#include <optional>
#include <string>

#include "job/conversion_settings.h"
#include "platform/files/text_file.h"

namespace dorvane {

namespace {

bool Append(const std::filesystem::path& path, std::string_view line) {
  try {
    files::LineAppender log(path);
    log.WriteLine(line);
    log.Close();
    return true;
  } catch (const RunTimeError&) {
    return false;
  }
}

}  // namespace

void LeaveTrace(const std::filesystem::path& settings_file, std::string_view line) {
  std::error_code ignored;
  // Nothing is made beside a file that is not there, and a pipe is not read twice.
  if (std::filesystem::is_regular_file(settings_file, ignored)) {
    const std::optional<std::string> log = LogPathIn(settings_file);
    if (log && Append(*log, line)) return;
    if (Append(settings_file.string() + ".log", line)) return;
  }
  syslog(LOG_USER | LOG_ERR, "%s: %.*s", settings_file.c_str(), static_cast<int>(line.size()),
         line.data());
}

}  // namespace dorvane
