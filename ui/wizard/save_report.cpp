#include "ui/wizard/save_report.h"

#include <fmt/format.h>

#include <QFileDialog>

#include "endpoint/events.h"
#include "platform/run_time_error.h"
#include "ui/dialogs/message_box.h"

namespace dorvane {

void AskAndSaveReport(const RunReport& report, QWidget* parent) {
  QFileDialog chooser(parent, "Save the report", "report.html");
  chooser.setObjectName("cdReport");
  chooser.setAcceptMode(QFileDialog::AcceptSave);
  chooser.setNameFilters({"html (*.html *.htm)", "json (*.json)"});
  chooser.setDefaultSuffix("html");
  QObject::connect(&chooser, &QFileDialog::filterSelected, [&chooser](const QString& filter) {
    chooser.setDefaultSuffix(filter.startsWith("json") ? "json" : "html");
  });
  if (chooser.exec() != QDialog::Accepted) return;
  const std::string path = chooser.selectedFiles().first().toStdString();
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
