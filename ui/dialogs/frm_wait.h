#pragma once

#include <QDialog>

namespace dorvane {

/// The window that is shown while a server is asked something. It takes all clicks, shows that the
/// program is alive, and can't be closed by the user: it is only shown and hidden.
class frmWait : public QDialog {
 public:
  explicit frmWait(QWidget* parent = nullptr);

  void reject() override {}

 protected:
  void closeEvent(QCloseEvent* event) override;
};

}  // namespace dorvane
