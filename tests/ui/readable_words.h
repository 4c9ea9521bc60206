#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <string>
#include <vector>

#include "tests/ui/contrast.h"

namespace dorvane::test {

/// The controls with words on them that are shown and enabled.
inline std::vector<QWidget*> Worded(QWidget& window) {
  std::vector<QWidget*> worded;
  for (auto* control : window.findChildren<QWidget*>()) {
    if (!control->isVisible() || !control->isEnabled()) continue;
    const auto* label = qobject_cast<QLabel*>(control);
    const auto* button = qobject_cast<QAbstractButton*>(control);
    const auto* field = qobject_cast<QLineEdit*>(control);
    if ((label && !label->text().isEmpty()) || (button && !button->text().isEmpty()) ||
        (field && !field->displayText().isEmpty())) {
      worded.push_back(control);
    }
  }
  return worded;
}

inline void ExpectReadable(QWidget& window, const std::string& where) {
  for (QWidget* control : Worded(window)) {
    const QRect place(control->mapTo(&window, QPoint()), control->size());
    EXPECT_GE(Contrast(window.grab(place).toImage()), kReadable)
        << control->objectName().toStdString() << " on " << where;
  }
}

}  // namespace dorvane::test
