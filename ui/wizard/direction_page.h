#pragma once

#include <QRadioButton>

#include "endpoint/database.h"
#include "ui/wizard/wizard_page.h"

namespace dorvane {

/// Page 0: which way to convert.
class DirectionPage : public WizardPage {
  Q_OBJECT

 public:
  explicit DirectionPage(QWidget* parent);

  /// Selects an option as a click on it does.
  void Choose(ServerKind source);
  ServerKind Source() const;

 signals:
  /// An option was chosen, perhaps once more.
  void Chosen(dorvane::ServerKind source);

 private:
  QRadioButton& AddOption(const char* name, const char* caption, const char* explanation,
                          ServerKind source);

  QRadioButton* optMsSqlToMySql_;
  QRadioButton* optMySqlToMsSql_;
};

}  // namespace dorvane
