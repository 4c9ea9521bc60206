#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <vector>

#include "tests/ui/print_qt.h"
#include "ui/controls/gradient_button.h"

namespace dorvane::test {

/// The controls that Tab reaches, from the one with the focus until that one has it again. Each of
/// them shows that it has the focus.
inline QStringList TabOrder(QWidget& window) {
  const auto picture = [](QWidget& control) {
    QApplication::processEvents();
    return control.grab().toImage();
  };
  QStringList names;
  const QWidget* const first = window.focusWidget();
  do {
    QWidget& control = *window.focusWidget();
    names << control.objectName();
    const QImage focused = picture(control);
    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
    EXPECT_NE(picture(control), focused) << names.back().toStdString() << " shows no focus";
  } while (window.focusWidget() != first && names.size() < 40);
  return names;
}

/// The letters that work together with Alt on what is shown.
inline std::vector<QChar> AccessKeys(QWidget& window) {
  std::vector<QChar> keys;
  const auto add = [&](const QString& text) {
    const QString mnemonic = QKeySequence::mnemonic(text).toString();
    if (!mnemonic.isEmpty()) keys.push_back(mnemonic.back());
  };
  for (auto* control : window.findChildren<QWidget*>()) {
    if (!control->isVisible()) continue;
    if (auto* button = qobject_cast<GradientButton*>(control)) {
      if (!button->AccessKey().isNull()) keys.push_back(button->AccessKey().toUpper());
    } else if (auto* option = qobject_cast<QAbstractButton*>(control)) {
      add(option->text());
    } else if (auto* label = qobject_cast<QLabel*>(control); label && label->buddy()) {
      add(label->text());
    }
  }
  return keys;
}

}  // namespace dorvane::test
