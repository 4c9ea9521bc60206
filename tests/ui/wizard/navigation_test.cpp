#include <gtest/gtest.h>

#include <fstream>

#include "job/encryptor.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

using Boxes = std::vector<SeenBox>;

void WriteConfig(const std::filesystem::path& folder, const NameList& lines) {
  std::ofstream file(folder / "config", std::ios::binary);
  for (const std::string& line : lines) file << line << "\r\n";
}

std::string ReadConfig(const std::filesystem::path& folder) {
  std::ifstream file(folder / "config", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Navigation : public testing::Test {
 protected:
  // Both pages connected and the table page shown, source MS SQL.
  void GoToTables() {
    driver_.Next();
    driver_.Click("cmdSrcConnect");
    driver_.Next();
    driver_.Type("txtDestNewDbName", "copy");
    driver_.Click("cmdDestConnect");
    driver_.Next();
    ASSERT_EQ(driver_.Window().CurrentPage(), page::kTables);
  }

  Script script_;
  WizardDriver driver_{script_};
};

TEST_F(Navigation, OpensOnTheDirectionPage) {
  EXPECT_EQ(driver_.Window().CurrentPage(), 0);
  EXPECT_EQ(driver_.LabelText("lblTitle"), "Step 1 - Select conversion direction");
  EXPECT_EQ(driver_.Window().windowTitle(), "Dorvane");
  EXPECT_FALSE(driver_.IsEnabled("cmdNav2"));
  EXPECT_TRUE(driver_.IsEnabled("cmdNav3"));
  EXPECT_FALSE(driver_.IsEnabled("cmdNav4"));
  EXPECT_EQ(driver_.Get<theme::StepMarker>("shpCircle0").FillColor(), QColor(255, 0, 0));
  EXPECT_TRUE(driver_.Get<QRadioButton>("optMsSqlToMySql").isChecked()) << "no config yet";
  EXPECT_TRUE(driver_.TakeBoxes().empty());
}

TEST_F(Navigation, NextShowsExactlyOnePageAndMarksItsStep) {
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), 1);
  EXPECT_EQ(driver_.LabelText("lblTitle"), "Step 2 - Connect to the source database");
  EXPECT_EQ(driver_.Window().windowTitle(), "Convert from MS SQL to MySQL");
  for (int i = 0; i < page::kCount; ++i) {
    const std::string name = "fraStep" + std::to_string(i);
    EXPECT_EQ(driver_.Get(name.c_str()).isVisible(), i == 1) << name;
    EXPECT_EQ(driver_.IsEnabled(name.c_str()), i == 1) << name;
  }
  for (int i = 0; i < kStepCount; ++i) {
    const std::string index = std::to_string(i);
    EXPECT_EQ(driver_.Get<theme::StepMarker>(("shpCircle" + index).c_str()).FillColor(),
              i == 1 ? QColor(255, 0, 0) : QColor(71, 102, 171));
    EXPECT_EQ(driver_.Get<QLabel>(("lblleft" + index).c_str()).palette().windowText().color(),
              i == 1 ? QColor(255, 255, 255) : QColor(128, 128, 128));
  }
  driver_.Back();
  EXPECT_EQ(driver_.Window().CurrentPage(), 0);
  EXPECT_EQ(driver_.Window().windowTitle(), "Dorvane");
}

TEST_F(Navigation, RefusesToPassAPageThatIsNotConnected) {
  driver_.Next();
  driver_.Next();
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please click connect to database button"}}));
  EXPECT_EQ(driver_.Window().CurrentPage(), 1);
  driver_.Click("cmdSrcConnect");
  driver_.Next();
  driver_.Click("optNewDb");
  driver_.Next();
  driver_.Click("optExistingDb");
  driver_.Next();
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please click create database button first"},
                                        {"Dorvane", "Please click connect to database button"}}));
  EXPECT_EQ(driver_.Window().CurrentPage(), 2);
}

TEST_F(Navigation, TheOtherDirectionHasItsOwnTexts) {
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  EXPECT_EQ(driver_.Window().windowTitle(), "Convert from MySQL to MS SQL");
  driver_.Click("cmdDir2MysqlConnect");
  driver_.Next();
  EXPECT_EQ(driver_.Text("txtDir2MsSqlNewDatabase"), "master");
  driver_.Next();
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please click create database button"}}));
  driver_.Click("cmdDir2MsSqlConnect");
  driver_.Type("txtDir2MsSqlNewDatabase", "x");
  driver_.Next();
  driver_.Next();
  EXPECT_EQ(driver_.TakeBoxes(),
            (Boxes{{"Dorvane", "Please select at least one table to convert"}}));
  // On a busy machine the box gives the focus back late, and keys before that are lost.
  ASSERT_TRUE(QTest::qWaitFor([this] {
    driver_.Window().activateWindow();
    QTest::keyClick(&driver_.Window(), Qt::Key_F1);
    return !driver_.help_contexts.empty();
  }));
  driver_.Click("imgHelp");
  EXPECT_EQ(driver_.help_contexts, (std::vector<std::int32_t>{7, 7}));
  QTest::keyClick(&driver_.Window(), Qt::Key_F2);
  EXPECT_EQ(driver_.help_contexts.size(), 2u);
}

TEST_F(Navigation, TablePageSettlesTheDestinationAndTransferPageTheOptions) {
  GoToTables();
  EXPECT_EQ(driver_.Window().Session().dest->DbName(), "copy");
  EXPECT_EQ(driver_.Names("lstSrcTables"), (NameList{"Customers", "Orders"}));
  EXPECT_EQ(driver_.Get<NameListView>("lstSrcTables").Current(), 0);
  driver_.Click("cmdMLR");
  driver_.Click("chkConvertDefOnly");
  driver_.Click("chkConvertRelationShips");
  driver_.Click("chkExactTypes");
  driver_.Click("chkKeepComputed");
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), 6);
  const WizardSession& session = driver_.Window().Session();
  EXPECT_EQ(session.tables, (NameList{"Customers", "Orders"}));
  EXPECT_EQ(driver_.Names("lstSelectedTables"), session.tables);
  EXPECT_EQ(driver_.LabelText("lblPlan"),
            "2 tables from localhost/master to localhost/copy; existing tables are kept and added "
            "to; definitions only, without rows; with relationships; every value exactly; "
            "computed columns stay computed");
  EXPECT_EQ(session.src->DbName(), "master");
  EXPECT_FALSE(session.src->CopyTableContent());
  EXPECT_FALSE(session.src->ReplaceSpaceWithUnderscore());
  EXPECT_TRUE(session.src->ConvertRelationships());
  EXPECT_EQ(session.src->Options().types, TypeMapping::Exact);
  EXPECT_EQ(session.src->Options().computed_columns, ComputedColumns::Generated);
  EXPECT_TRUE(driver_.IsEnabled("cmdNav4"));
  EXPECT_FALSE(driver_.IsEnabled("cmdNav3"));
  EXPECT_FALSE(driver_.IsEnabled("cmdSchedule"));

  driver_.Back();
  EXPECT_FALSE(driver_.IsEnabled("cmdNav4"));
  EXPECT_EQ(driver_.Names("lstDestTables").size(), 2u) << "choices are kept";
  driver_.Back();
  EXPECT_TRUE(driver_.Names("lstDestTables").empty());
  EXPECT_EQ(driver_.Names("lstSrcTables").size(), 2u) << "reloaded";
  EXPECT_EQ(driver_.Text("txtDestNewDbName"), "copy") << "the database that was created";
}

TEST_F(Navigation, WhatIsComparedAfterwardsIsChosenWithTheTables) {
  GoToTables();
  driver_.Click("cmdMLR");
  auto& choice = driver_.Get<QComboBox>("cboVerification");
  EXPECT_EQ(choice.currentText(), "nothing");
  choice.setCurrentText("every value");
  driver_.Next();
  const WizardSession& session = driver_.Window().Session();
  EXPECT_EQ(session.src->Options().verification, Verification::Values);
  EXPECT_TRUE(driver_.LabelText("lblPlan").endsWith("; every value is compared afterwards"));
  driver_.Back();
  driver_.Click("chkConvertDefOnly");
  EXPECT_FALSE(choice.isEnabled());
  driver_.Next();
  EXPECT_EQ(session.src->Options().verification, Verification::None);
}

TEST_F(Navigation, TablesMoveByButtonsAndDoubleClicks) {
  script_.tables = [] { return NameList{"a", "b", "c", "d", "e"}; };
  GoToTables();
  auto& source = driver_.Get<NameListView>("lstSrcTables");
  const auto double_click = [](NameListView& list, int row) {
    const QPoint place = list.visualRect(list.model()->index(row, 0)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
  };
  double_click(source, 2);
  EXPECT_EQ(driver_.Names("lstDestTables"), NameList{"c"});
  EXPECT_EQ(source.Current(), 2);
  driver_.Click("cmdSLR");
  EXPECT_EQ(driver_.Names("lstDestTables"), (NameList{"c", "d"}));
  double_click(driver_.Get<NameListView>("lstDestTables"), 0);
  EXPECT_EQ(driver_.Names("lstSrcTables"), (NameList{"a", "b", "e", "c"}));
  driver_.Click("cmdMLR");
  driver_.Click("cmdMRL");
  EXPECT_EQ(driver_.Names("lstSrcTables"), NameList{"c"}) << "one entry, not all";
  driver_.Click("cmdSRL");
  EXPECT_EQ(driver_.Names("lstDestTables"), (NameList{"d", "a", "b"}));
}

TEST_F(Navigation, TablesThatCanNotBeReadKeepThePage) {
  driver_.Next();
  driver_.Click("cmdSrcConnect");
  script_.tables = [] { return std::nullopt; };
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), 1);
  EXPECT_TRUE(driver_.TakeBoxes().empty()) << "the endpoint reports by itself";
  script_.tables = []() -> std::optional<NameList> {
    throw RunTimeError(-2147467259, "catalog", "it broke");
  };
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), 1);
  EXPECT_EQ(driver_.TakeBoxes(),
            (Boxes{{"Dorvane", "Unexpected error no. -2147467259 _ it broke"}}));
}

TEST_F(Navigation, AnUnreachableSourceLocksNobodyOnTheTablePage) {
  GoToTables();
  script_.tables = [] { return std::nullopt; };
  driver_.Back();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kMySqlDestination);
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kMySqlDestination) << "there are no tables";
  driver_.Back();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kMsSqlSource);
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kMsSqlSource);
  script_.tables = [] { return NameList{"Customers"}; };
  driver_.Next();
  driver_.Next();
  EXPECT_EQ(driver_.Names("lstSrcTables"), NameList{"Customers"});
}

TEST_F(Navigation, WhoCancelsFindsTheValuesAgain) {
  WriteConfig(driver_.Folder(),
              {"mssql", "false", "1433", "old", "sa", "", "3307", "dest", "me", ""});
  driver_.Window().Load();
  driver_.Next();
  driver_.Type("txtSrcHost", "new");
  driver_.Type("txtSrcPassword", "Ab1");
  driver_.Click("cmdNav1");
  const std::string config = ReadConfig(driver_.Folder());
  EXPECT_TRUE(config.starts_with("mssql\r\nfalse\r\n1433\r\nnew\r\nsa\r\n")) << config;
  EXPECT_EQ(config.find("Ab1"), std::string::npos);
  EXPECT_TRUE(config.find("\r\n3307\r\ndest\r\nme\r\n") != std::string::npos)
      << "of the page that was not reached: " << config;
}

TEST_F(Navigation, AnEmptyNewNameIsRefusedOnTheWayToTheTables) {
  driver_.Next();
  driver_.Click("cmdSrcConnect");
  driver_.Next();
  driver_.Click("cmdDestConnect");
  driver_.Get<QLineEdit>("txtDestNewDbName").clear();
  driver_.Next();
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please enter a valid database name"}}));
  EXPECT_EQ(driver_.Window().CurrentPage(), 2);
}

TEST_F(Navigation, CancelAsksFirst) {
  driver_.answer_no = true;
  driver_.Click("cmdNav1");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Are you sure you want to exit?"}}));
  EXPECT_FALSE(driver_.closed);
  EXPECT_TRUE(driver_.Window().isVisible());
  driver_.answer_no = false;
  driver_.Click("cmdNav1");
  EXPECT_TRUE(driver_.closed);
  EXPECT_EQ(ReadConfig(driver_.Folder()), "") << "only Finish saves";
}

TEST_F(Navigation, FinishSavesWhatWasUsed) {
  driver_.Next();
  driver_.Type("txtSrcHost", "sqlhost");
  driver_.Type("txtSrcPassword", "secret");
  driver_.Back();
  driver_.Next();
  EXPECT_EQ(driver_.Text("txtSrcHost"), "sqlhost") << "a preset leaves text alone";
  driver_.Back();
  GoToTables();
  driver_.Click("cmdMLR");
  driver_.Next();
  driver_.Click("cmdNav4");
  EXPECT_TRUE(driver_.closed);
  EXPECT_EQ(ReadConfig(driver_.Folder()), "mssql\r\nfalse\r\n1433\r\nsqlhost\r\nsa\r\n" +
                                              Encryptor().Encrypt("secret") +
                                              "\r\n3306\r\nlocalhost\r\nroot\r\n\r\n");
}

TEST_F(Navigation, FinishEndsTheProgramEvenWhenNothingCanBeSaved) {
  GoToTables();
  driver_.Click("cmdMLR");
  driver_.Next();
  std::filesystem::remove_all(driver_.Folder());
  driver_.Click("cmdNav4");
  EXPECT_EQ(driver_.TakeBoxes().size(), 1u);
  EXPECT_TRUE(driver_.closed);
  std::filesystem::create_directory(driver_.Folder());
}

TEST_F(Navigation, HelpPictureAndLogoReact) {
  auto& help = driver_.Get<PictureBox>("imgHelp");
  const QImage normal = help.Picture().toImage();
  QTest::mouseMove(&help, {10, 10});
  EXPECT_NE(help.Picture().toImage(), normal);
  QTest::mouseMove(&driver_.Get("picNav"), {60, 5});
  EXPECT_EQ(help.Picture().toImage(), normal);
  driver_.Click("Image2");
  EXPECT_EQ(driver_.help_contexts, std::vector<std::int32_t>{0}) << "the help's first page";
}

TEST(LastRun, PresetsDirectionFieldsAndWindowsLogin) {
  Script script;
  WizardDriver driver(script);
  WriteConfig(driver.Folder(), {"mysql", "true", "3307", "src", "me", Encryptor().Encrypt("pw"),
                                "1434", "dest", "sa2", ""});
  driver.Window().Load();
  EXPECT_TRUE(driver.Get<QRadioButton>("optMySqlToMsSql").isChecked());
  EXPECT_TRUE(driver.HasFocus("optMySqlToMsSql"));
  EXPECT_TRUE(driver.Get<QCheckBox>("chkDir2MsSqlAuth").isChecked());
  EXPECT_FALSE(driver.Get<QCheckBox>("chkWinAuth").isChecked());
  EXPECT_TRUE(driver.Window().Session().dest->WinNTAuthentication());
  EXPECT_FALSE(driver.IsEnabled("txtDir2MsSqlUsername"));
  driver.Next();
  EXPECT_EQ(driver.Text("txtDir2MysqlHost"), "src");
  EXPECT_EQ(driver.Text("txtDir2MysqlPassword"), "pw");
  EXPECT_EQ(driver.Text("txtDir2MysqlPortNo"), "3307");
}

TEST(LastRun, AShortConfigIsReportedOnce) {
  Script script;
  WizardDriver driver(script);
  WriteConfig(driver.Folder(), {"mssql", "TRUE", "1", "h", "u", "", "2", "d", "r"});
  driver.Window().Load();
  const Boxes boxes = driver.TakeBoxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(boxes[0].text.startsWith("Unkown error ")) << boxes[0];
  EXPECT_FALSE(driver.Get<QCheckBox>("chkWinAuth").isChecked()) << "letter case counts";
  driver.Next();
  EXPECT_EQ(driver.Text("txtSrcHost"), "h");
}

}  // namespace
}  // namespace dorvane::test
