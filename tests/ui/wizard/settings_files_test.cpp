// A conversion that the wizard saves as a settings file fills another wizard.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <fstream>

#include "tests/support/process.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

using Boxes = std::vector<SeenBox>;

class SettingsFiles : public testing::Test {
 protected:
  SettingsFiles() {
    script_.tables = [] { return NameList{"a", "b", "c"}; };
  }
  /// Drops a file on the window as a file manager does.
  static bool Drop(WizardDriver& driver, const std::filesystem::path& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path.string()))});
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    enter.ignore();
    QApplication::sendEvent(&driver.Window(), &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&driver.Window(), &drop);
    QApplication::processEvents();
    return true;
  }
  static void SaveAs(WizardDriver& driver, const std::filesystem::path& path) {
    QTimer::singleShot(0, &driver.Window(), [&] {
      auto* chooser = driver.Window().findChild<QFileDialog*>("cdSettings");
      chooser->selectFile(QString::fromStdString(path.string()));
      QMetaObject::invokeMethod(chooser, "accept");
    });
    driver.Click("cmdSaveSettings");
  }

  TempFolder folder_;
  std::filesystem::path path_ = folder_.Path() / "nightly run.dcs";
  Script script_;
};

TEST_F(SettingsFiles, WhatOneWizardSavedFillsAnother) {
  QString plan;
  {
    WizardDriver driver(script_);
    driver.Click("optMySqlToMsSql");
    driver.Next();
    driver.Type("txtDir2MysqlHost", "dbhost");
    driver.Type("txtDir2MysqlPortNo", "3310");
    driver.Type("txtDir2MysqlPassword", "Secret 1");
    driver.Click("cmdDir2MysqlConnect");
    driver.Get<QComboBox>("cmbDir2MysqlDatabases").setCurrentText("Sales");
    driver.Next();
    driver.Click("opnDir2MsSqlExistingDb");
    driver.Click("cmdDir2MsSqlConnect");
    driver.Get<QComboBox>("cmbDir2MsSqlExistingDatabase").setCurrentText("Sales");
    driver.Click("opnDir2MsSqlOverwite");
    driver.Next();
    driver.Get<NameListView>("lstSrcTables").SetCurrent(2);
    driver.Click("cmdSLR");
    driver.Get<NameListView>("lstSrcTables").SetCurrent(0);
    driver.Click("cmdSLR");
    driver.Click("chkConvertRelationShips");
    driver.Next();
    plan = driver.LabelText("lblPlan");
    SaveAs(driver, path_);
    EXPECT_EQ(driver.TakeBoxes(),
              (Boxes{{"Dorvane",
                      "Saved. A run of this file writes its log to " +
                          QString::fromStdString((folder_.Path() / "nightly run.txt").string())}}));
  }
  WizardDriver driver(script_);
  ASSERT_TRUE(Drop(driver, path_));
  EXPECT_EQ(driver.Window().CurrentPage(), page::kMySqlSource);
  EXPECT_EQ(driver.Text("txtDir2MysqlHost"), "dbhost");
  EXPECT_EQ(driver.Text("txtDir2MysqlPassword"), "Secret 1");
  driver.Click("cmdDir2MysqlConnect");
  driver.Next();
  EXPECT_EQ(driver.Text("txtDir2MsSqlPassword"), "") << "not the last run's";
  driver.Click("cmdDir2MsSqlConnect");
  driver.Next();
  EXPECT_EQ(driver.Names("lstDestTables"), (NameList{"c", "a"}));
  EXPECT_EQ(driver.Names("lstSrcTables"), NameList{"b"});
  EXPECT_TRUE(driver.Get<QCheckBox>("chkConvertRelationShips").isChecked());
  driver.Next();
  EXPECT_EQ(driver.LabelText("lblPlan"), plan);
  EXPECT_EQ(driver.Window().Session().src->PortNo(), 3310);
  const std::filesystem::path again = folder_.Path() / "again.dcs";
  SaveAs(driver, again);
  const auto without_log = [](const std::string& text) { return text.substr(0, text.rfind('/')); };
  EXPECT_EQ(without_log(ReadFile(again)), without_log(ReadFile(path_)));
}

TEST_F(SettingsFiles, ADamagedFileIsToldAndChangesNothing) {
  WizardDriver driver(script_);
  driver.Next();
  driver.Type("txtSrcHost", "typed");
  std::ofstream(path_) << "1\r\nhost\r\nno port\r\n";
  ASSERT_TRUE(Drop(driver, path_));
  const Boxes boxes = driver.TakeBoxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(boxes[0].text.startsWith("The settings file cannot be used: ")) << boxes[0];
  EXPECT_EQ(driver.Text("txtSrcHost"), "typed");
  EXPECT_FALSE(Drop(driver, folder_.Path() / "picture.png"));
  EXPECT_TRUE(driver.TakeBoxes().empty());
}

}  // namespace
}  // namespace dorvane::test
