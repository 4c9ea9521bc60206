#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>

#include "tests/support/temp_folder.h"

int main(int argc, char** argv) {
  // The user's own settings stay out of the tests, and the tests out of them.
  const dorvane::test::TempFolder settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     QString::fromStdString(settings.Path().string()));
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QApplication::setStyle("Fusion");
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
