#include "ui/wizard/save_report.h"

#include <fmt/format.h>

#include <optional>

#include "endpoint/events.h"
#include "platform/run_time_error.h"
#include "ui/dialogs/message_box.h"
#include "ui/dialogs/save_text.h"

namespace dorvane {

void AskAndSaveReport(const RunReport& report, QWidget* parent) {
  const std::optional<QString> chosen =
      AskWhereToSave(parent, {.name = "cdReport",
                              .title = "Save the report",
                              .proposal = "report.html",
                              .filters = {"html (*.html *.htm)", "json (*.json)"}});
  if (!chosen) return;
  const std::string path = chosen->toStdString();
  try {
    if (!IsReportName(path)) {
      throw RunTimeError(run_time::kTypeMismatch, "Dorvane", "no name of a .html or .json file");
    }
    SaveReport(path, report);
  } catch (const RunTimeError& error) {
    ShowMessage(fmt::format("The report {} cannot be saved: {}", path, error.Description()),
                message_style::kError, "");
  }
}

}  // namespace dorvane
