#pragma once

#include <QObject>
#include <QPointer>
#include <vector>

#include "ui/controls/gradient_button.h"

namespace dorvane {

/// Gives a window its default button, which Enter presses and which carries a heavier border: the
/// button that has the focus, else the first of `candidates` that is shown and enabled. Owned by
/// the window.
class DefaultButton : public QObject {
 public:
  DefaultButton(std::vector<GradientButton*> candidates, QWidget* window);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  GradientButton* Find() const;
  void Mark();

  QWidget* window_;
  std::vector<GradientButton*> candidates_;
  QPointer<GradientButton> marked_;
};

}  // namespace dorvane
