#include "ui/dialogs/message_box.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QTest>
#include <QTextBlock>
#include <QTimer>

#include "tests/support/temp_folder.h"
#include "tests/ui/print_qt.h"
#include "ui/controls/make_child.h"
#include "ui/controls/picture_box.h"
#include "ui/dialogs/frm_msg_box.h"
#include "ui/dialogs/frm_wait.h"
#include "ui/dialogs/skin_module.h"
#include "ui/look/skins.h"

namespace dorvane {

namespace {

// Waits for a box other than `other`, looks at it and acts on it; then the call that shows it
// returns.
void WhenShown(std::function<void(QWidget& box)> act, const QWidget* other = nullptr) {
  QTimer::singleShot(5, qApp, [act = std::move(act), other]() mutable {
    QWidget* box = QApplication::activeModalWidget();
    if (!box || box == other) return WhenShown(std::move(act), other);
    EXPECT_EQ(box->objectName(), "frmMsgBox");
    act(*box);
  });
}

template <typename T = GradientButton>
T& Control(QWidget& box, const char* name) {
  return *box.findChild<T*>(name);
}

void Click(QWidget& box, const char* name) {
  QTest::mouseClick(&Control<QWidget>(box, name), Qt::LeftButton);
}

TEST(ShowMessage, ShowsTextTitleAndOneButton) {
  WhenShown([](QWidget& box) {
    EXPECT_EQ(Control<MessageText>(box, "lblMessage").text(), QString::fromUtf8("Größe & <b>"));
    EXPECT_EQ(Control<QLabel>(box, "lblTitle").text(), "MySQL Server");
    EXPECT_EQ(box.windowTitle(), "MySQL Server");
    EXPECT_EQ(Control(box, "cmdOK").Caption(), "OK");
    EXPECT_EQ(Control(box, "cmdOK").x(), 139);
    EXPECT_FALSE(Control(box, "cmdNo").isVisible());
    EXPECT_EQ(box.focusWidget(), &Control(box, "cmdOK"));
    Click(box, "cmdOK");
  });
  ShowMessage("Größe & <b>", message_style::kError, "MySQL Server");
}

TEST(ShowMessage, BlankTitleShowsTheProgramsName) {
  for (const char* title : {"", "   "}) {
    WhenShown([](QWidget& box) {
      EXPECT_EQ(Control<QLabel>(box, "lblTitle").text(), "Dorvane");
      QTest::keyClick(&box, Qt::Key_Return);
    });
    ShowMessage("text", 0, title);
  }
}

TEST(AskYesNo, AnswersByButtonAndByTheWayItWasClosed) {
  struct Case {
    std::function<void(QWidget&)> act;
    int answer;
  };
  const Case cases[] = {
      {[](QWidget& box) { Click(box, "cmdOK"); }, kAnswerYes},
      {[](QWidget& box) { Click(box, "cmdNo"); }, kAnswerNo},
      {[](QWidget& box) { Click(box, "imgTitleClose"); }, kAnswerNo},
      {[](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); }, kAnswerNo},
      {[](QWidget& box) { QTest::keyClick(&box, Qt::Key_Y, Qt::AltModifier); }, kAnswerYes},
      {[](QWidget& box) { QTest::keyClick(&box, Qt::Key_Y); }, kAnswerYes},
      {[](QWidget& box) { QTest::keyClick(box.focusWidget(), Qt::Key_N); }, kAnswerNo},
      {[](QWidget& box) {
         Control(box, "cmdNo").setFocus();
         QTest::keyClick(&Control(box, "cmdNo"), Qt::Key_Return);
       },
       kAnswerNo},
      // The other pictures of the title bar do nothing.
      {[](QWidget& box) {
         Click(box, "imgTitleMinimize");
         Click(box, "imgTitleMaxRestore");
         Click(box, "imgTitleHelp");
         EXPECT_TRUE(box.isVisible());
         Click(box, "cmdOK");
       },
       kAnswerYes},
  };
  for (const Case& one : cases) {
    WhenShown([&](QWidget& box) {
      EXPECT_EQ(Control(box, "cmdOK").Caption(), "Yes");
      EXPECT_EQ(Control(box, "cmdOK").x(), 70);
      EXPECT_EQ(Control(box, "cmdNo").x(), 224);
      one.act(box);
    });
    EXPECT_EQ(AskYesNo("Are you sure you want to exit?", message_style::kQuestion, ""), one.answer);
  }
}

TEST(AskYesNo, EnterGivesTheDefaultAnswer) {
  for (const int answer : {kAnswerYes, kAnswerNo}) {
    WhenShown([](QWidget& box) { QTest::keyClick(box.focusWidget(), Qt::Key_Return); });
    EXPECT_EQ(AskYesNo("stop?", message_style::kQuestion, "", answer), answer);
  }
}

TEST(AskYesNo, AMessageInBetweenGetsABoxOfItsOwn) {
  WhenShown([](QWidget& question) {
    WhenShown([](QWidget& message) { Click(message, "cmdOK"); }, &question);
    ShowMessage("meanwhile", 0, "");
    EXPECT_EQ(Control<MessageText>(question, "lblMessage").text(), "exit?");
    Click(question, "cmdNo");
  });
  EXPECT_EQ(AskYesNo("exit?", message_style::kQuestion, ""), kAnswerNo);
}

TEST(MessageIcon, IsChosenByStyleAndKind) {
  using enum MessageIcon;
  struct Case {
    std::int32_t style;
    MessageIcon in_ok_box, in_yes_no_box;
  };
  for (const Case& one :
       {Case{16, Error, Error}, Case{32, Warning, Question}, Case{48, Warning, Warning},
        Case{64, Information, Information}, Case{0, Warning, Warning}, Case{7, Warning, Warning}}) {
    EXPECT_EQ(IconOf(MessageBoxKind::Ok, one.style), one.in_ok_box) << one.style;
    EXPECT_EQ(IconOf(MessageBoxKind::YesNo, one.style), one.in_yes_no_box) << one.style;
  }
}

TEST(SkinFrame, PlacesThePicturesByTheWindowsSize) {
  const QSize window(400, 200);
  const QSize edge(19, 30), small(14, 14);
  EXPECT_EQ(SkinPictureRect("imgTitleMain", window, edge), QRect(19, 0, 381, 30));
  EXPECT_EQ(SkinPictureRect("imgTitleRight", window, edge), QRect(381, 0, 19, 30));
  EXPECT_EQ(SkinPictureRect("imgWindowLeft", window, edge), QRect(0, 30, 19, 140));
  EXPECT_EQ(SkinPictureRect("imgWindowRight", window, edge), QRect(381, 30, 19, 162));
  EXPECT_EQ(SkinPictureRect("imgWindowBottomLeft", window, edge), QRect(0, 170, 19, 30));
  EXPECT_EQ(SkinPictureRect("imgWindowBottom", window, edge), QRect(19, 170, 362, 30));
  EXPECT_EQ(SkinPictureRect("imgWindowBottomRight", window, edge), QRect(381, 170, 19, 30));
  EXPECT_EQ(SkinPictureRect("imgTitleClose", window, small), QRect(376, 8, 14, 14));
  EXPECT_EQ(SkinPictureRect("imgTitleMaxRestore", window, small), QRect(361, 8, 14, 14));
  EXPECT_EQ(SkinPictureRect("imgTitleMinimize", window, small), QRect(344, 8, 14, 14));
  EXPECT_EQ(SkinPictureRect("imgTitleHelp", window, small), QRect(327, 8, 14, 14));
}

TEST(SkinFrame, AWindowMayLackPictures) {
  QWidget window;
  window.resize(300, 200);
  LayoutSkinFrame(window);
  EXPECT_EQ(window.palette().color(QPalette::Window), QColor(192, 192, 192));
  EXPECT_FALSE(window.mask().contains(QPoint(0, 0)));
  EXPECT_TRUE(window.mask().contains(QPoint(150, 0)));
  EXPECT_TRUE(window.mask().contains(QPoint(299, 100)));
}

TEST(LoadSkin, EverySkinHasEveryPicture) {
  const frmMsgBox box;
  for (const char* skin : {"Blue", "Heather"}) {
    for (const PictureBox* control : box.findChildren<PictureBox*>()) {
      const QString name = control->objectName();
      if (name == "imgTitleMaxRestore") continue;  // shows another one's picture
      const QPixmap picture(QStringLiteral(SKINS_FOLDER "/%1/%2.gif").arg(skin, name));
      EXPECT_FALSE(picture.isNull()) << skin << " " << name.toStdString();
    }
  }
}

TEST(LoadSkin, MissingAndBrokenFilesLeaveTheBuiltInPictures) {
  test::TempFolder folder;
  ASSERT_TRUE(QFile::copy(SKINS_FOLDER "/Blue/imgTitleMaximize.gif",
                          QString::fromStdString((folder / "imgTitleMaximize.gif").string())));
  QFile broken(QString::fromStdString((folder / "imgTitleMain.gif").string()));
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.write("GIF89a but not really");
  broken.close();

  frmMsgBox box;
  const auto picture = [&](const char* name) {
    return Control<PictureBox>(box, name).Picture().toImage();
  };
  const QImage built_in = picture("imgTitleMain");
  ASSERT_FALSE(built_in.isNull());
  LoadSkin(box, folder / "nowhere");
  EXPECT_EQ(picture("imgTitleMain"), built_in);
  LoadSkin(box, folder.Path());
  EXPECT_EQ(picture("imgTitleMain"), built_in);
  EXPECT_EQ(picture("imgTitleMaxRestore"),
            QPixmap(SKINS_FOLDER "/Blue/imgTitleMaximize.gif").toImage())
      << "shows the picture of imgTitleMaximize";
}

TEST(LoadSkin, TheUsersChoiceCountsElseBlue) {
  EXPECT_EQ(CurrentSkin(), "Blue");
  QSettings settings("Dorvane", "Dorvane");
  settings.setValue("Options/Current Skin", "Heather");
  EXPECT_EQ(CurrentSkin(), "Heather");
  settings.remove("Options/Current Skin");
}

TEST(frmMsgBox, LongMessagesWrapAndScrollInside) {
  const QString text = QString("A long message. ").repeated(400) + QString(500, 'x');
  WhenShown([&](QWidget& box) {
    auto& message = Control<MessageText>(box, "lblMessage");
    EXPECT_EQ(message.text(), text);
    EXPECT_LT(box.height(), 400);
    EXPECT_GT(message.verticalScrollBar()->maximum(), 0);
    const QTextLayout& lines = *message.document()->lastBlock().layout();
    EXPECT_LE(lines.lineAt(lines.lineCount() - 1).naturalTextWidth(), message.viewport()->width());
    EXPECT_LT(message.geometry().bottom(), Control(box, "cmdOK").y());
    Click(box, "cmdOK");
  });
  ShowMessage(text.toStdString(), 0, "");
  // The next, short one has its ordinary size again.
  WhenShown([](QWidget& box) {
    EXPECT_LT(box.height(), 200);
    Click(box, "cmdOK");
  });
  ShowMessage("short", 0, "");
}

TEST(frmMsgBox, ItsTextCanBeSelectedAndCopied) {
  WhenShown([](QWidget& box) {
    QTest::keyClick(box.focusWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "row refused:\nDuplicate entry");
    auto& message = Control<MessageText>(box, "lblMessage");
    QTest::mouseDClick(message.viewport(), Qt::LeftButton, {}, QPoint(4, 4));
    QTest::keyClick(&message, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "row");
    QTest::keyClick(&message, Qt::Key_N);
    EXPECT_TRUE(box.isVisible()) << "no question";
    QTest::keyClick(&message, Qt::Key_Return);
  });
  ShowMessage("row refused:\r\nDuplicate entry", 0, "");
}

TEST(frmMsgBox, StandsOverTheWindowAndInsideTheScreen) {
  QWidget window;
  window.resize(300, 200);
  ShowMessagesOver(window);
  window.show();
  const QRect screen = window.screen()->availableGeometry();
  for (const QPoint place : {screen.topLeft(), screen.center(), screen.bottomRight()}) {
    window.move(place);
    QApplication::processEvents();
    WhenShown([&](QWidget& box) {
      EXPECT_TRUE(screen.contains(box.geometry()));
      const QPoint off = box.geometry().center() - window.geometry().center();
      if (place == screen.center()) {
        EXPECT_LT(off.manhattanLength(), 10);
      }
      Click(box, "cmdOK");
    });
    ShowMessage("here", 0, "");
  }
}

TEST(frmMsgBox, ItsTitleBarMovesIt) {
  WhenShown([](QWidget& box) {
    const QPoint before = box.pos();
    auto& title = Control<QWidget>(box, "imgTitleMain");
    const QPoint grip(60, 10);
    QCursor::setPos(title.mapToGlobal(grip));
    QTest::mousePress(&title, Qt::LeftButton, {}, grip);
    QTest::mouseMove(&title, grip + QPoint(40, 25));
    QTest::mouseRelease(&title, Qt::LeftButton, {}, grip);
    EXPECT_NE(box.pos(), before);
    const QPoint moved = box.pos();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::mouseMove(&title, grip + QPoint(5, 5));
    EXPECT_EQ(box.pos(), moved) << "released";
    Click(box, "cmdOK");
  });
  ShowMessage("move me", 0, "");
}

TEST(frmWait, ShowsOnlyWhenTheAnswerTakesLongAndCanNotBeClosed) {
  QWidget window;
  auto& field = MakeChild<QLineEdit>(window);
  window.show();
  field.setFocus();
  auto& wait = *std::make_unique<frmWait>(window).release();
  wait.Begin();
  QTest::qWait(50);
  wait.End();
  QTest::qWait(400);
  EXPECT_FALSE(wait.isVisible()) << "the answer came quickly";

  EXPECT_EQ(wait.windowTitle(), "Connecting......");
  EXPECT_EQ(Control<QLabel>(wait, "lblWait").text(), "Please wait");
  wait.Begin();
  ASSERT_TRUE(QTest::qWaitFor([&] { return wait.isVisible(); }));
  EXPECT_EQ(wait.geometry(), window.rect());
  EXPECT_EQ(window.focusWidget(), &wait);
  EXPECT_FALSE(wait.close());
  QTest::keyClick(&wait, Qt::Key_Escape);
  QElapsedTimer shown;
  shown.start();
  wait.End();
  EXPECT_GT(shown.elapsed(), 300) << "long enough to be seen";
  EXPECT_FALSE(wait.isVisible());
  EXPECT_EQ(window.focusWidget(), &field);
}

TEST(frmWait, StandsBackForAMessage) {
  QWidget window;
  window.show();
  auto& wait = *std::make_unique<frmWait>(window).release();
  wait.Begin();
  ASSERT_TRUE(QTest::qWaitFor([&] { return wait.isVisible(); }));
  bool behind_box = true;
  QTimer::singleShot(100, [&] {
    QWidget* box = QApplication::activeModalWidget();
    behind_box = wait.isVisible();
    Click(*box, "cmdOK");
  });
  ShowMessage("no server", 0, "");
  EXPECT_FALSE(behind_box);
  wait.End();
  EXPECT_FALSE(wait.isVisible());
}

}  // namespace
}  // namespace dorvane
