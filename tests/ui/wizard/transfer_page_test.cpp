#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTableView>
#include <QTimer>
#include <limits>
#include <semaphore>
#include <thread>

#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

using Boxes = std::vector<SeenBox>;

class TransferPages : public testing::Test {
 protected:
  void GoToTransfer() {
    driver_.Next();
    driver_.Click("cmdSrcConnect");
    driver_.Next();
    driver_.Click("cmdDestConnect");
    driver_.Next();
    driver_.Click("cmdMLR");
    driver_.Next();
    ASSERT_EQ(driver_.Window().CurrentPage(), page::kTransfer);
  }
  /// What the messages pane shows, copied from it, without the times.
  QStringList Messages() {
    driver_.Click("cmdCopyMessages");
    QStringList lines = QApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
    for (QString& line : lines) line = line.section('\t', 1);
    return lines;
  }
  QProgressBar& Bar(const char* name) { return driver_.Get<QProgressBar>(name); }

  Script script_;
  WizardDriver driver_{script_};
};

TEST_F(TransferPages, TablesWithErrorsAndNotesAreShownAsSuch) {
  script_.transfer = [this](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
    listener.TableConversionStarted(tables[0]);
    listener.ErrorOccured("1 of 3 rows were not copied", message_style::kError, "Insertion Error");
    listener.TableContentTransferStarted(tables[0], 3);
    for (int row = 0; row < 3; ++row) listener.TableRecordConverted();
    listener.TableConversionSuccessed(tables[0]);
    listener.TableConversionStarted(tables[1]);
    listener.TableConversionSuccessed(tables[1]);
    script_.host->Inform("Table Orders: 2 of 3 rows were there already and were left out");
    script_.host->Inform("Table Customers: Verified: 3 rows equal");
    listener.ConversionEnded();
  };
  GoToTransfer();
  EXPECT_FALSE(driver_.Get<QWidget>("tblMessages").isVisible());
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.TakeBoxes().size(), 2u) << "the error and the summary";
  EXPECT_EQ(driver_.Names("lstConvertedTables"), (NameList{"Customers", "Orders"}));
  EXPECT_EQ(driver_.Column("lstConvertedTables", 1), (NameList{"3 of 3", ""}));
  EXPECT_EQ(driver_.Column("lstConvertedTables", 3), (NameList{"Done, with errors", "Done"}));
  EXPECT_EQ(driver_.LabelText("lblOverall"), "1 with errors: Customers");
  const QModelIndex customers =
      driver_.Get<QAbstractItemView>("lstConvertedTables").model()->index(0, 0);
  EXPECT_EQ(customers.data(Qt::ToolTipRole).toString(),
            "Customers\n1 of 3 rows were not copied\nTable Customers: Verified: 3 rows equal");
  EXPECT_TRUE(driver_.Names("lstSelectedTables").empty());
  EXPECT_TRUE(driver_.Get<QWidget>("tblMessages").isVisible());
  const QStringList messages = Messages();
  ASSERT_EQ(messages.size(), 4) << "with the summary";
  EXPECT_EQ(messages[0], "Customers\tError\t1 of 3 rows were not copied");
  EXPECT_EQ(messages[1],
            "Orders\tNote\tTable Orders: 2 of 3 rows were there already and were left out");
  EXPECT_EQ(messages[2], "Customers\tNote\tTable Customers: Verified: 3 rows equal")
      << "it is not the table in hand";
  driver_.Type("txtMessageFilter", "NOTE");
  EXPECT_EQ(Messages().size(), 2);
}

TEST_F(TransferPages, AWholeConversionIsShownAndSummedUp) {
  script_.transfer = [](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), true);
    listener.TableConversionStarted(tables[0]);
    listener.TableContentTransferStarted(tables[0], 3);
    for (int i = 0; i < 3; ++i) listener.TableRecordConverted();
    listener.TableConversionSuccessed(tables[0]);
    listener.TableConversionStarted(tables[1]);
    listener.ErrorOccured("it was refused", message_style::kError, "Table Conversion");
    listener.TableConversionFailed(tables[1]);
    listener.TableRelationsConversionStarted(tables[0]);
    listener.TableRelationsConversionStarted(tables[1]);
    listener.ConversionEnded();
  };
  GoToTransfer();
  EXPECT_EQ(driver_.LabelText("lblStatus"), "- - - - -");
  driver_.Click("cmdTasks");
  EXPECT_EQ(driver_.tasks_shown, 1);
  std::vector<QString> states;
  driver_.on_box = [&](QWidget&) {
    states.push_back(driver_.Window().windowTitle().section(' ', 0, 1) + " " +
                     driver_.LabelText("lblStatus") + " " +
                     QString::number(Bar("pbTablesProgress").value()));
    for (const char* button :
         {"cmdTransferTables", "cmdSchedule", "cmdNav2", "cmdNav3", "cmdNav4"}) {
      EXPECT_FALSE(driver_.IsEnabled(button)) << button;
    }
    EXPECT_TRUE(driver_.IsEnabled("cmdNav1"));
  };
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(states, (std::vector<QString>{"25 % Converting table 'Orders' ..... 1",
                                          "Convert from Done... 4"}));
  const Boxes boxes = driver_.TakeBoxes();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[0], (SeenBox{"Table Conversion", "it was refused"}));
  EXPECT_EQ(boxes[1].title, "Dorvane");
  EXPECT_TRUE(
      boxes[1].text.startsWith("Transfer Complete!\r\nNo. of converted tables: 1\r\n"
                               "No. of Failed tables: 1\r\nElapsed time: 00:00:0"))
      << boxes[1];
  EXPECT_EQ(Bar("pbTablesProgress").maximum(), 4);
  EXPECT_EQ(driver_.Names("lstConvertedTables"), (NameList{"Customers", "Orders"}));
  EXPECT_EQ(driver_.Column("lstConvertedTables", 3), (NameList{"Done", "Failed"}));
  EXPECT_EQ(driver_.LabelText("lblOverall"), "1 failed: Orders");
  EXPECT_EQ(driver_.Names("lstSelectedTables"), NameList{"Orders"});
  EXPECT_EQ(driver_.LabelText("lblStatus"), "Conversion Completed.");
  EXPECT_FALSE(driver_.IsEnabled("cmdNav1"));
  EXPECT_TRUE(driver_.IsEnabled("cmdNav4"));
  EXPECT_FALSE(driver_.IsEnabled("cmdTransferTables"));
  driver_.Click("cmdSchedule");
  EXPECT_EQ(driver_.scheduled, (NameList{"Customers", "Orders"}));
}

TEST_F(TransferPages, AComparisonIsShownSummedUpAndReported) {
  script_.transfer = [this](IConversionListener& listener, const NameList& tables) {
    IRunHost& host = *script_.host;
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
    for (const std::string& table : tables) {
      host.TableStepStarted(table);
      listener.TableConversionStarted(table);
      listener.TableConversionSuccessed(table);
      host.TableStepEnded(table, std::chrono::seconds(1));
    }
    host.ComparisonStarted();
    for (const std::string& table : tables) {
      host.TableStepStarted(table);
      host.TableComparisonStarted(table, 100);
      host.ShowRowsCompared(60);
      if (table == "Customers") {
        listener.ErrorOccured("Table Customers: 1 row is missing", message_style::kError,
                              "Verification");
      } else {
        host.Inform("Table Orders: Verified: 100 rows equal");
      }
      host.TableStepEnded(table, std::chrono::seconds(1));
    }
    listener.ConversionEnded();
  };
  driver_.Get<QComboBox>("cboVerification").setCurrentText("every value");
  GoToTransfer();
  EXPECT_FALSE(driver_.IsEnabled("cmdSaveReport"));
  std::vector<QString> states;
  driver_.on_box = [&](QWidget&) {
    states.push_back(driver_.LabelText("lblStatus") + " " +
                     QString::number(Bar("pbRecordsProgress").value()) + " " +
                     QString::number(Bar("pbTablesProgress").value()));
  };
  driver_.Click("cmdTransferTables");
  ASSERT_EQ(states.size(), 2u);
  EXPECT_EQ(states[0], "Comparing table 'Customers' ..... 60 2");
  EXPECT_EQ(Bar("pbTablesProgress").maximum(), 4);
  EXPECT_EQ(Bar("pbTablesProgress").value(), 4);
  EXPECT_TRUE(driver_.TakeBoxes()[1].text.endsWith("\r\nVerified: 1 of 2 tables equal"));
  EXPECT_TRUE(Messages().contains("Orders\tNote\tTable Orders: Verified: 100 rows equal"));

  const QString path = QString::fromStdString((driver_.Folder() / "r.json").string());
  QTimer::singleShot(0, &driver_.Window(), [&] {
    auto* chooser = driver_.Window().findChild<QFileDialog*>("cdReport");
    chooser->selectFile(path);
    QMetaObject::invokeMethod(chooser, "accept");
  });
  driver_.Click("cmdSaveReport");
  QFile saved(path);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  const QByteArray report = saved.readAll();
  EXPECT_TRUE(report.contains("\"complete\": true")) << report.toStdString();
  EXPECT_TRUE(report.contains("\"text\": \"1 row is missing\""));
  EXPECT_TRUE(report.contains("\"text\": \"Verified: 100 rows equal\""));
}

TEST_F(TransferPages, WhatWillHappenIsShownBeforehand) {
  script_.transfer = [this](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
    listener.TableConversionStarted(tables[0]);
    script_.host->Inform("Table Customers: 3 fractions of a second were cut");
    listener.TableContentTransferStarted(tables[0], 3);
    listener.ErrorOccured("it is too long", message_style::kError, "Insertion Error");
    listener.ConversionEnded();
  };
  GoToTransfer();
  driver_.Click("cmdPreview");
  EXPECT_TRUE(driver_.TakeBoxes().empty());
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kPreview);
  EXPECT_TRUE(driver_.LabelText("lblOutcome").startsWith("Something would be lost"));
  EXPECT_FALSE(driver_.IsEnabled("cmdNav3"));
  EXPECT_FALSE(driver_.IsEnabled("cmdNav4")) << "Enter would end the program";
  EXPECT_THAT(driver_.Get<QPlainTextEdit>("txtScript").toPlainText().toStdString(),
              testing::HasSubstr("-- Table Customers\n"
                                 "-- Note: Table Customers: 3 fractions of a second were cut\n"
                                 "-- 3 rows are copied\n"
                                 "-- Lost: Insertion Error - it is too long\n"
                                 "\n-- 2 remarks, see above."));
  driver_.Back();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kTransfer);
  EXPECT_EQ(driver_.Names("lstSelectedTables").size(), 2u);
  EXPECT_FALSE(driver_.Get<QWidget>("tblMessages").isVisible());
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.TakeBoxes().size(), 2u) << "the listener is the run's again";
}

TEST_F(TransferPages, WhatWillHappenCanBeLeftWhileTheServersAreAsked) {
  std::atomic<bool> is_asking = false;
  script_.transfer = [&](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
    is_asking = true;
    while (!script_.host->IsStopping()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  };
  GoToTransfer();
  QTimer meanwhile;
  const auto once_asking = [&](const std::function<void()>& action) {
    is_asking = false;
    meanwhile.callOnTimeout([&, action] {
      if (!is_asking) return;
      meanwhile.stop();
      meanwhile.disconnect();
      action();
    });
    meanwhile.start(5);
    driver_.Click("cmdPreview");
  };
  once_asking([&] {
    driver_.Back();
    EXPECT_EQ(driver_.LabelText("lblOutcome"), "Stopping ......");
    EXPECT_EQ(driver_.Window().CurrentPage(), page::kPreview) << "until they have answered";
  });
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kTransfer);
  EXPECT_TRUE(driver_.IsEnabled("cmdTransferTables"));
  EXPECT_TRUE(driver_.IsEnabled("cmdNav2"));

  once_asking([&] {
    driver_.Window().close();
    EXPECT_FALSE(driver_.closed);
  });
  EXPECT_TRUE(driver_.closed);
}

TEST_F(TransferPages, RowsAreShownInOrderWithTheOtherEvents) {
  std::vector<int> values;
  const char* const words[] = {"look", "see"};
  script_.transfer = [&](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(2, false);
    for (const std::string& table : tables) {
      listener.TableConversionStarted(table);
      listener.TableContentTransferStarted(table, 50'000);
      for (int i = 0; i < 50'007; ++i) listener.TableRecordConverted();
      // Every row before this event is on the bar when the event is seen.
      listener.ErrorOccured(words[&table - tables.data()], 0, "");
    }
    listener.TableConversionStarted("x");
    listener.ErrorOccured("watch", 0, "");
  };
  GoToTransfer();
  driver_.on_box = [&](QWidget&) { values.push_back(Bar("pbRecordsProgress").value()); };
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(values, (std::vector<int>{50'000, 50'000, 0}));
}

TEST_F(TransferPages, ATransferThatNeverConnectsGivesThePageBack) {
  script_.transfer = [this](IConversionListener& listener, const NameList&) {
    listener.ConversionStarted(2, false);
    script_.host->ConnectionFailed({"no server", "log", "MySQL Server"});
  };
  GoToTransfer();
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"MySQL Server", "no server"}}));
  EXPECT_FALSE(driver_.IsEnabled("cmdSchedule"));
  EXPECT_FALSE(driver_.IsEnabled("cmdStop"));
  for (const char* button : {"cmdNav1", "cmdNav2", "cmdNav4", "cmdTransferTables"}) {
    EXPECT_TRUE(driver_.IsEnabled(button)) << button;
  }
  EXPECT_EQ(driver_.LabelText("lblStatus"), "- - - - -");
  EXPECT_EQ(driver_.Names("lstSelectedTables").size(), 2u);
  script_.transfer = [](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(2, false);
    for (const std::string& table : tables) listener.TableConversionSuccessed(table);
    listener.ConversionEnded();
  };
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.Names("lstConvertedTables").size(), 2u) << "the second attempt";
  EXPECT_FALSE(driver_.Get("cmdTransferRest").isVisible()) << "nothing is left";
}

TEST_F(TransferPages, StopEndsTheRunAndTheRestCanFollow) {
  std::vector<NameList> runs;
  script_.transfer = [&](IConversionListener& listener, const NameList& tables) {
    runs.push_back(tables);
    listener.ConversionStarted(2, false);
    listener.TableConversionStarted(tables[0]);
    listener.TableConversionSuccessed(tables[0]);
    for (int i = 0; runs.size() == 1 && i < 2'000 && !script_.host->IsStopping(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    listener.ConversionEnded();
  };
  GoToTransfer();
  EXPECT_FALSE(driver_.IsEnabled("cmdStop"));
  QTimer::singleShot(100, &driver_.Window(), [&] {
    driver_.Click("cmdStop");
    EXPECT_EQ(driver_.LabelText("lblStatus"), "Stopping.......");
  });
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.LabelText("lblStatus"), "Stopped.");
  EXPECT_TRUE(driver_.TakeBoxes().empty());
  EXPECT_FALSE(driver_.closed);
  EXPECT_TRUE(driver_.IsEnabled("cmdNav4"));
  EXPECT_EQ(driver_.Names("lstSelectedTables"), NameList{"Orders"});
  EXPECT_EQ(driver_.Column("lstConvertedTables", 3), (NameList{"Done", "Left out"}));
  driver_.Click("cmdTransferRest");
  EXPECT_EQ(runs.back(), NameList{"Orders"});
  EXPECT_EQ(driver_.Names("lstConvertedTables"), (NameList{"Customers", "Orders"}));
  EXPECT_EQ(driver_.Column("lstConvertedTables", 3), (NameList{"Done", "Done"}));
  EXPECT_EQ(driver_.TakeBoxes().size(), 1u);
  EXPECT_FALSE(driver_.Get("cmdTransferRest").isVisible());
  driver_.Click("cmdSchedule");
  EXPECT_EQ(driver_.scheduled, (NameList{"Customers", "Orders"})) << "the whole conversion";
}

TEST_F(TransferPages, AnEscapedFailureIsTold) {
  script_.transfer = [](IConversionListener&, const NameList&) {
    throw RunTimeError(-2147217900, "x", "went wrong");
  };
  GoToTransfer();
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.TakeBoxes(),
            (Boxes{{"Dorvane", "Unexpected error no. -2147217900 _ went wrong"}}));
}

TEST_F(TransferPages, ClosingTheWindowStopsTheTransferFirst) {
  bool ended = false;
  script_.transfer = [&](IConversionListener& listener, const NameList&) {
    listener.ConversionStarted(2, false);
    listener.TableContentTransferStarted("Customers", 1'000'000);
    for (int i = 0; i < 2'000 && !script_.host->IsStopping(); ++i) {
      listener.TableRecordConverted();
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_TRUE(script_.host->IsStopping());
    EXPECT_FALSE(driver_.closed) << "the connections are still open";
    listener.ConversionEnded();
    ended = true;
  };
  GoToTransfer();
  QTimer::singleShot(100, &driver_.Window(), [&] { EXPECT_FALSE(driver_.Window().close()); });
  driver_.Click("cmdTransferTables");
  EXPECT_TRUE(ended);
  EXPECT_TRUE(driver_.closed);
  EXPECT_TRUE(driver_.TakeBoxes().empty()) << "no summary for who has left";
}

TEST_F(TransferPages, AServerThatNeverAnswersHoldsTheProgramForSecondsOnly) {
  QString rows;
  script_.transfer = [&](IConversionListener& listener, const NameList&) {
    listener.ConversionStarted(2, false);
    listener.TableContentTransferStarted("Customers", 1'000);
    listener.TableRecordConverted();
    while (driver_.ended == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  };
  GoToTransfer();
  QTimer::singleShot(3'500, &driver_.Window(), [&] {
    rows = driver_.LabelText("lblRowsProgress");
    driver_.Window().close();
    EXPECT_EQ(driver_.LabelText("lblStatus"), "Stopping.......");
    EXPECT_TRUE(driver_.IsEnabled("cmdNav1")) << "the second request may come from here";
  });
  driver_.Click("cmdTransferTables");
  EXPECT_TRUE(rows.startsWith("1 of 1,000 rows, nothing has arrived for 00:00:0"))
      << rows.toStdString();
  EXPECT_EQ(driver_.ended, 1);
}

TEST_F(TransferPages, CancelDuringATransferAsksWhileItGoesOn) {
  std::atomic<bool> asked = false;
  script_.transfer = [&](IConversionListener& listener, const NameList&) {
    listener.ConversionStarted(2, false);
    for (int i = 0; i < 2'000 && !script_.host->IsStopping(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    listener.ConversionEnded();
  };
  GoToTransfer();
  driver_.on_box = [&](QWidget& box) {
    asked = true;
    EXPECT_EQ(box.focusWidget()->objectName(), "cmdNo") << "a key pressed too much stops nothing";
  };
  QTimer::singleShot(50, &driver_.Window(), [&] { driver_.Click("cmdNav1"); });
  driver_.Click("cmdTransferTables");
  EXPECT_TRUE(asked);
  EXPECT_TRUE(driver_.closed);
}

/// Tells a thread that waits for it that a widget was painted.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(QWidget& widget) : QObject(&widget) { widget.installEventFilter(this); }

  bool WaitForPaint() { return painted_.try_acquire_for(std::chrono::seconds(20)); }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted_.release();
    return false;
  }

 private:
  std::counting_semaphore<> painted_{0};
};

// The servers of this test answer only when the window has painted itself meanwhile: a window that
// waits for them would wait for ever.
TEST_F(TransferPages, TheWindowWaitsForNoServer) {
  GoToTransfer();
  QWidget& list = driver_.Get("lstConvertedTables");
  PaintWatch watch(list);
  int painted = 0;
  const auto slow_answer = [&] {
    QMetaObject::invokeMethod(&list, [&list] { list.update(); });
    painted += watch.WaitForPaint() ? 1 : 0;
  };
  script_.transfer = [&](IConversionListener& listener, const NameList& tables) {
    slow_answer();  // logging on
    listener.ConversionStarted(1, true);
    listener.TableConversionStarted(tables[0]);
    slow_answer();  // counting
    listener.TableContentTransferStarted(tables[0], 2'000);
    for (int block = 0; block < 2; ++block) {
      slow_answer();  // storing
      for (int row = 0; row < 1'000; ++row) listener.TableRecordConverted();
    }
    listener.TableConversionSuccessed(tables[0]);
    listener.TableRelationsConversionStarted(tables[0]);
    slow_answer();
    listener.ConversionEnded();
  };
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(painted, 5);
  EXPECT_EQ(Bar("pbRecordsProgress").maximum(), 2'000);
}

// A transfer that never stops reporting rows ends when the bar has been painted in its middle.
TEST_F(TransferPages, TheBarMovesWhileRowsPourIn) {
  GoToTransfer();
  std::atomic<int> shown = 0;
  script_.transfer = [&](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(1, false);
    listener.TableContentTransferStarted(tables[0], std::numeric_limits<std::int32_t>::max());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (shown < 3 && std::chrono::steady_clock::now() < end) listener.TableRecordConverted();
  };
  QObject::connect(&Bar("pbRecordsProgress"), &QProgressBar::valueChanged, [&] { ++shown; });
  driver_.Click("cmdTransferTables");
  EXPECT_GE(shown, 3);
}

TEST_F(TransferPages, ThousandsOfFailuresAreFewBoxesAndOneList) {
  constexpr int kTables = 2'000;
  script_.transfer = [](IConversionListener& listener, const NameList&) {
    listener.ConversionStarted(kTables, false);
    for (int i = 0; i < kTables; ++i) {
      const std::string name = "table " + std::to_string(i);
      listener.TableConversionStarted(name);
      const std::string reason = i < kTables / 2 ? "the connection was lost"
                                 : i % 2         ? "name too long: "
                                                 : "no such type: ";
      listener.ErrorOccured(reason + name, message_style::kError, "MySQL Server");
      listener.TableConversionFailed(name);
    }
    listener.ConversionEnded();
  };
  GoToTransfer();
  int offers = 0;
  driver_.on_box = [&](QWidget& box) {
    auto* offer = box.findChild<QCheckBox*>("chkOffer");
    if (!offer->isVisible()) return;
    ++offers;
    EXPECT_EQ(offer->text(), "Show the rest in the list only");
    offer->click();
  };
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(offers, 1);
  EXPECT_EQ(driver_.TakeBoxes().size(), 3u) << "the first two failures and the summary";
  EXPECT_EQ(Messages().size(), kTables + 1);

  const QString path = QString::fromStdString((driver_.Folder() / "messages.txt").string());
  QTimer::singleShot(0, &driver_.Window(), [&] {
    auto* chooser = driver_.Window().findChild<QFileDialog*>("cdMessages");
    chooser->selectFile(path);
    QMetaObject::invokeMethod(chooser, "accept");
  });
  driver_.Click("cmdSaveMessages");
  QFile saved(path);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  EXPECT_EQ(saved.readAll().count('\n'), kTables + 1);
}

TEST_F(TransferPages, TenThousandTablesAreMovedAndConverted) {
  script_.tables = [] {
    NameList names;
    for (int i = 0; i < 10'000; ++i) names.push_back("table " + std::to_string(i));
    return names;
  };
  script_.transfer = [](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
    for (std::size_t i = 0; i < 500; ++i) {
      listener.TableConversionStarted(tables[i]);
      listener.TableConversionSuccessed(tables[i]);
    }
    listener.ConversionEnded();
  };
  GoToTransfer();
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.Names("lstConvertedTables").size(), 10'000u);
  auto& table = driver_.Get<QTableView>("lstConvertedTables");
  EXPECT_GE(table.rowAt(table.viewport()->height() - 1), 9'990) << "the newest are in view";
  EXPECT_TRUE(driver_.LabelText("lblOverall").startsWith("9500 left out: table 500, "));
  EXPECT_EQ(driver_.Names("lstSelectedTables").front(), "table 500");
}

}  // namespace
}  // namespace dorvane::test
