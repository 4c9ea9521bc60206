#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <functional>
#include <string>
#include <vector>

#include "tests/ui/contrast.h"
#include "ui/look/current_look.h"
#include "ui/look/skins.h"

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

/// Calls `look` with each skin on a light and on a dark desktop, and says where it is; the classic
/// skin and the desktop that was are back afterwards.
inline void InEverySkinAndPalette(const std::function<void(const std::string& where)>& look) {
  const QPalette usual = QApplication::palette();
  for (const QPalette& palette : {usual, DarkPalette()}) {
    QApplication::setPalette(palette);
    QApplication::processEvents();
    for (const QString& skin : {kClassicSkin, kLightSkin, kDarkSkin}) {
      ChooseSkin(skin);
      look(skin.toStdString() + (palette == usual ? ", light desktop" : ", dark desktop"));
    }
  }
  QApplication::setPalette(usual);
  QApplication::processEvents();
  ChooseSkin(kClassicSkin);
}

inline void ExpectReadable(QWidget& window, const std::string& where) {
  for (QWidget* control : Worded(window)) {
    const QRect place(control->mapTo(&window, QPoint()), control->size());
    EXPECT_GE(Contrast(window.grab(place).toImage()), kReadable)
        << control->objectName().toStdString() << " on " << where;
  }
}

}  // namespace dorvane::test
