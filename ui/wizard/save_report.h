#pragma once

#include "job/run_report.h"

class QWidget;

namespace dorvane {

/// Asks for a file and saves the report into it, as a page or as JSON by the name's ending. Tells a
/// failure.
void AskAndSaveReport(const RunReport& report, QWidget* parent);

}  // namespace dorvane
