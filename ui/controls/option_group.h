#pragma once

#include <QAbstractButton>
#include <QButtonGroup>

namespace dorvane {

/// Options that exclude each other. Tab stops at the chosen one only; the arrow keys move the
/// choice.
class OptionGroup : public QButtonGroup {
 public:
  explicit OptionGroup(QObject* parent) : QButtonGroup(parent) {
    connect(this, &QButtonGroup::buttonToggled, this, [this](QAbstractButton* chosen, bool on) {
      if (!on) return;
      for (QAbstractButton* option : buttons()) {
        option->setFocusPolicy(option == chosen ? Qt::StrongFocus : Qt::ClickFocus);
      }
    });
  }
};

}  // namespace dorvane
