#pragma once

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <string_view>

#include "ui/controls/gradient_button.h"

namespace dorvane {

/// What will happen: the script of a rehearsal, as it grows. Closing it while the rehearsal is
/// under way asks for its end; it closes when that has come.
class PreviewDialog : public QDialog {
  Q_OBJECT

 public:
  explicit PreviewDialog(QWidget* parent);

  /// Adds lines; from any thread.
  void Append(std::string_view lines);
  /// The rehearsal is over.
  void End(const QString& outcome);

  void reject() override;

 signals:
  void StopRequested();
  void HelpRequested();

 private:
  void Save();

  QLabel* lblOutcome_;
  QPlainTextEdit* txtScript_;
  GradientButton* cmdSave_;
  bool has_ended_ = false;
  bool is_closing_ = false;
};

}  // namespace dorvane
