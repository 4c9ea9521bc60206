#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <memory>

#include "tests/support/temp_folder.h"
#include "ui/controls/window_style.h"

int main(int argc, char** argv) {
  // The user's own settings stay out of the tests, and the tests out of them.
  const dorvane::test::TempFolder settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     QString::fromStdString(settings.Path().string()));
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QApplication::setStyle(std::make_unique<dorvane::WindowStyle>().release());
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
