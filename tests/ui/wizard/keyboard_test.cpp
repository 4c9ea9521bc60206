#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <set>

#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

class Keyboard : public testing::Test {
 protected:
  Keyboard() {
    driver_.Window().activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&driver_.Window()));
  }

  QWidget* Focus() { return driver_.Window().focusWidget(); }
  void Press(Qt::Key key) {
    QTest::keyClick(driver_.Window().windowHandle(), key);
    QApplication::processEvents();
  }

  static QImage Picture(QWidget& control) {
    QApplication::processEvents();
    return control.grab().toImage();
  }

  /// The controls that Tab reaches, from the one that a page focuses first until that one has the
  /// focus again. Each of them shows that it has the focus.
  std::vector<std::string> TabOrder() {
    std::vector<std::string> names;
    QWidget* const first = Focus();
    do {
      QWidget& control = *Focus();
      names.push_back(control.objectName().toStdString());
      const QImage focused = Picture(control);
      Press(Qt::Key_Tab);
      EXPECT_NE(Picture(control), focused) << names.back() << " does not show the focus";
    } while (Focus() != first && names.size() < 40);
    return names;
  }

  /// The letters that work together with Alt on what is shown.
  std::vector<QChar> AccessKeys() {
    std::vector<QChar> keys;
    const auto add = [&](const QString& text) {
      const QString mnemonic = QKeySequence::mnemonic(text).toString();
      if (!mnemonic.isEmpty()) keys.push_back(mnemonic.back());
    };
    for (auto* control : driver_.Window().findChildren<QWidget*>()) {
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

  Script script_;
  WizardDriver driver_{script_};
};

using Names = std::vector<std::string>;

TEST_F(Keyboard, TabGoesThroughEveryPageInTheOrderOfItsControls) {
  struct Stop {
    const char* reached_by;  // the button that is clicked first, or none
    Names order;
  };
  const auto expect = [this](const std::vector<Stop>& stops) {
    for (const Stop& stop : stops) {
      if (stop.reached_by) driver_.Click(stop.reached_by);
      SCOPED_TRACE(stop.order.front() + " on page " +
                   std::to_string(driver_.Window().CurrentPage()));
      EXPECT_EQ(TabOrder(), stop.order);
      const std::vector<QChar> keys = AccessKeys();
      EXPECT_EQ(std::set<QChar>(keys.begin(), keys.end()).size(), keys.size())
          << "an access key stands for two controls";
    }
  };
  expect({
      {nullptr, {"optMsSqlToMySql", "cmdNav1", "cmdNav3", "cmdLook"}},
      {"cmdNav3",
       {"txtSrcHost", "txtSrcPortnumber", "txtSrcUsername", "txtSrcPassword", "chkWinAuth",
        "cmbSrcEncryption", "cmdSrcConnect", "cmdNav1", "cmdNav2", "cmdNav3", "cmdLook"}},
      {"cmdSrcConnect",
       {"cmbSrcExistingDatabase", "cmdSrcDisconnect", "cmdNav1", "cmdNav2", "cmdNav3", "cmdLook",
        "txtSrcHost", "txtSrcPortnumber", "txtSrcUsername", "txtSrcPassword"}},
      {"cmdNav3",
       {"txtDestHost", "txtDestPortNumber", "txtDestUserName", "txtDestPassword",
        "cmbDestEncryption", "optNewDb", "txtDestNewDbName", "cmdDestConnect", "cmdNav1", "cmdNav2",
        "cmdNav3", "cmdLook"}},
      {"optExistingDb",
       {"optExistingDb", "opnMerge", "cmdDestConnect", "cmdNav1", "cmdNav2", "cmdNav3", "cmdLook",
        "txtDestHost", "txtDestPortNumber", "txtDestUserName", "txtDestPassword",
        "cmbDestEncryption"}},
  });
  driver_.Click("opnOverwite");
  driver_.Click("cmdDestConnect");
  expect({
      {nullptr,
       {"cmbDestExistingDatabase", "opnOverwite", "cmdDestDisconnect", "cmdNav1", "cmdNav2",
        "cmdNav3", "cmdLook", "txtDestHost", "txtDestPortNumber", "txtDestUserName",
        "txtDestPassword"}},
      {"cmdNav3",
       {"txtTableFilter", "cboSortTables", "lstSrcTables", "cmdSLR", "cmdMLR", "cmdSRL", "cmdMRL",
        "lstDestTables", "chkConvertDefOnly", "chkReplaceSpaceWithUnderscore",
        "chkConvertRelationShips", "chkExactTypes", "chkKeepComputed", "spnTablesAtOnce",
        "cboVerification", "cmdNav1", "cmdNav2", "cmdNav3", "cmdLook"}},
  });
  driver_.Click("cmdMLR");
  expect({{"cmdNav3",
           {"cmdTransferTables", "cmdPreview", "cmdSaveSettings", "cmdTasks", "lstSelectedTables",
            "lstConvertedTables", "cmdNav1", "cmdNav2", "cmdNav4", "cmdLook"}}});
}

TEST_F(Keyboard, TabGoesThroughThePagesOfTheOtherDirection) {
  driver_.Click("optMySqlToMsSql");
  EXPECT_EQ(TabOrder(), (Names{"optMySqlToMsSql", "cmdNav1", "cmdNav3", "cmdLook"}));
  driver_.Next();
  EXPECT_EQ(TabOrder(), (Names{"txtDir2MysqlHost", "txtDir2MysqlPortNo", "txtDir2MysqlUsername",
                               "txtDir2MysqlPassword", "cmbDir2MysqlEncryption",
                               "cmdDir2MysqlConnect", "cmdNav1", "cmdNav2", "cmdNav3", "cmdLook"}));
  driver_.Click("cmdDir2MysqlConnect");
  driver_.Next();
  EXPECT_EQ(TabOrder(), (Names{"txtDir2MsSqlHost", "txtDir2MsSqlPortNo", "txtDir2MsSqlUsername",
                               "txtDir2MsSqlPassword", "chkDir2MsSqlAuth", "cmbDir2MsSqlEncryption",
                               "opnDir2MsSqlNewDb", "txtDir2MsSqlNewDatabase",
                               "cmdDir2MsSqlConnect", "cmdNav1", "cmdNav2", "cmdNav3", "cmdLook"}));
}

TEST_F(Keyboard, ArrowsMoveTheChoice) {
  ASSERT_TRUE(driver_.HasFocus("optMsSqlToMySql"));
  Press(Qt::Key_Down);
  EXPECT_TRUE(driver_.HasFocus("optMySqlToMsSql"));
  EXPECT_EQ(driver_.Window().Session().Direction(), ServerKind::MySql);
  Press(Qt::Key_Up);
  EXPECT_EQ(driver_.Window().Session().Direction(), ServerKind::MsSql);
}

TEST_F(Keyboard, EnterAloneLeadsThroughTheWizard) {
  script_.transfer = [](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
    for (const std::string& table : tables) listener.TableConversionSuccessed(table);
    listener.ConversionEnded();
  };
  struct Step {
    const char* marked;  // the default button that Enter is to press
    int page;            // that is shown then
  };
  const auto expect = [this](const std::vector<Step>& steps) {
    for (const auto& [marked, page] : steps) {
      EXPECT_TRUE(driver_.Get<GradientButton>(marked).IsDefault()) << marked;
      Press(Qt::Key_Return);
      EXPECT_EQ(driver_.Window().CurrentPage(), page) << marked;
    }
  };
  expect({{"cmdNav3", 1}, {"cmdSrcConnect", 1}, {"cmdNav3", 2}, {"cmdDestConnect", 2}});
  EXPECT_FALSE(driver_.IsEnabled("cmdDestConnect"));
  expect({{"cmdNav3", 5}});
  driver_.Click("cmdMLR");
  driver_.Get("lstDestTables").setFocus();
  expect({{"cmdNav3", 6}, {"cmdTransferTables", 6}});
  EXPECT_EQ(driver_.TakeBoxes().size(), 1u);
  // The box is seen before it is gone.
  ASSERT_TRUE(QTest::qWaitFor([this] { return driver_.HasFocus("cmdNav4"); }));
  // A platform without a window manager may have activated the window while the box blocked it.
  QApplication::setActiveWindow(&driver_.Window());
  ASSERT_TRUE(QTest::qWaitFor([this] { return driver_.Window().isActiveWindow(); }));
  expect({{"cmdNav4", 6}});
  EXPECT_TRUE(driver_.closed);
}

TEST_F(Keyboard, EnterPressesTheButtonThatHasTheFocus) {
  driver_.Next();
  driver_.Get("cmdNav2").setFocus();
  EXPECT_TRUE(driver_.Get<GradientButton>("cmdNav2").IsDefault());
  EXPECT_FALSE(driver_.Get<GradientButton>("cmdSrcConnect").IsDefault());
  Press(Qt::Key_Enter);
  EXPECT_EQ(driver_.Window().CurrentPage(), 0);
}

}  // namespace
}  // namespace dorvane::test
