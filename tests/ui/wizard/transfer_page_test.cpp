#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QProgressBar>
#include <QTableView>
#include <QTimer>
#include <limits>
#include <semaphore>

#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

class TransferPages : public testing::Test {
 protected:
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
  driver_.GoTo(page::kTransfer);
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
  driver_.GoTo(page::kTransfer);
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
  driver_.GoTo(page::kTransfer);
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
  driver_.GoTo(page::kTransfer);
  driver_.Click("cmdTransferTables");
  EXPECT_EQ(driver_.Names("lstConvertedTables").size(), 10'000u);
  auto& table = driver_.Get<QTableView>("lstConvertedTables");
  EXPECT_GE(table.rowAt(table.viewport()->height() - 1), 9'990) << "the newest are in view";
  EXPECT_TRUE(driver_.LabelText("lblOverall").startsWith("9500 left out: table 500, "));
  EXPECT_EQ(driver_.Names("lstSelectedTables").front(), "table 500");
}

}  // namespace
}  // namespace dorvane::test
