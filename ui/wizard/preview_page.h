#pragma once

#include <QLabel>
#include <QPlainTextEdit>
#include <string_view>

#include "ui/controls/gradient_button.h"
#include "ui/wizard/wizard_page.h"

namespace dorvane {

/// What will happen: the script of a rehearsal, as it grows.
class PreviewPage : public WizardPage {
  Q_OBJECT

 public:
  explicit PreviewPage(QWidget* parent);

  /// Empties the page for a rehearsal.
  void Begin();
  /// Adds lines; from any thread.
  void Append(std::string_view lines);
  /// Nothing more is wanted: the servers are waited for.
  void Stopping();
  void End(const QString& outcome);

 private:
  void Save();

  QLabel* lblOutcome_;
  QPlainTextEdit* txtScript_;
  GradientButton* cmdSave_;
};

}  // namespace dorvane
