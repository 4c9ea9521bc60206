#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextTable>
#include <QTreeWidget>
#include <fstream>
#include <memory>

#include "tests/support/temp_folder.h"
#include "tests/ui/contrast.h"
#include "ui/help/html_help_viewer.h"

namespace dorvane {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

HelpWindow* OpenWindow() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* window = qobject_cast<HelpWindow*>(widget); window && window->isVisible()) {
      return window;
    }
  }
  return nullptr;
}

template <typename Control>
Control& Find(const char* name) {
  return *OpenWindow()->findChild<Control*>(name);
}

QTextBrowser& Browser() {
  return Find<QTextBrowser>("HelpTopic");
}

std::string Shown() {
  return Browser().toPlainText().toStdString();
}

/// Clicks into the first link of these words.
void ClickLink(const char* words) {
  QTextCursor cursor(Browser().document());
  do {
    cursor = Browser().document()->find(words, cursor);
  } while (!cursor.isNull() && !cursor.charFormat().isAnchor());
  ASSERT_FALSE(cursor.isNull()) << words;
  cursor.setPosition((cursor.position() + cursor.anchor()) / 2);
  Browser().setTextCursor(cursor);
  Browser().ensureCursorVisible();
  QTest::mouseClick(Browser().viewport(), Qt::LeftButton, {}, Browser().cursorRect().center());
}

std::string Tab() {
  const auto& tabs = Find<QTabWidget>("tabHelp");
  return tabs.tabText(tabs.currentIndex()).toStdString();
}

class HelpViewerTest : public ::testing::Test {
 protected:
  HelpViewerTest() { viewer_->SetHelpFile(HELP_FILE); }

  std::unique_ptr<HTMLHelpViewer> viewer_ = std::make_unique<HTMLHelpViewer>();
};

TEST_F(HelpViewerTest, OpensEachContextInOneWindow) {
  const std::pair<int, const char*> topics[] = {{0, "Step 1"},
                                                {1, "Step 2 - MS SQL"},
                                                {5, "Step 2 - MySQL"},
                                                {8, "Step 5 - Transfer, MySQL"}};
  HelpWindow* window = nullptr;
  for (const auto& [context, start] : topics) {
    viewer_->ShowContext(context);
    if (window == nullptr) window = OpenWindow();
    EXPECT_EQ(OpenWindow(), window);
    EXPECT_THAT(Shown(), StartsWith(start));
  }
  viewer_->ShowContext(77);
  EXPECT_THAT(Shown(), HasSubstr("77"));
  viewer_->Show();
  EXPECT_THAT(Shown(), StartsWith("Welcome to Dorvane"));
}

TEST_F(HelpViewerTest, OpensTheTabsAndFindsTopics) {
  viewer_->ShowIndex();
  EXPECT_EQ(Tab(), "Index");
  QTest::keyClicks(&Find<QLineEdit>("txtIndex"), "KERB");
  auto& index = Find<QListWidget>("lstIndex");
  const auto items = index.findItems("Kerberos", Qt::MatchExactly);
  ASSERT_EQ(items.size(), 1);
  EXPECT_FALSE(items.front()->isHidden());
  EXPECT_TRUE(index.findItems("merge", Qt::MatchExactly).front()->isHidden());
  index.setCurrentItem(items.front());
  EXPECT_THAT(Shown(), HasSubstr("kinit"));

  viewer_->ShowSearch();
  EXPECT_EQ(Tab(), "Search");
  QTest::keyClicks(&Find<QLineEdit>("txtQuery"), "exit status");
  QTest::keyClick(&Find<QLineEdit>("txtQuery"), Qt::Key_Return);
  auto& hits = Find<QListWidget>("lstHits");
  ASSERT_GT(hits.count(), 0);
  hits.setCurrentRow(0);
  EXPECT_THAT(Shown(), StartsWith("The log of scheduled runs"));

  viewer_->ShowContents();
  EXPECT_EQ(Tab(), "Contents");
  auto& contents = Find<QTreeWidget>("lstContents");
  contents.setCurrentItem(
      contents.findItems("Merge or overwrite", Qt::MatchExactly | Qt::MatchRecursive).front());
  EXPECT_THAT(Shown(), StartsWith("Merge or overwrite"));
}

TEST_F(HelpViewerTest, FollowsLinksInsideTheHelpAndGoesBack) {
  viewer_->Show();
  ClickLink("Choose the direction");
  EXPECT_THAT(Shown(), StartsWith("Step 1"));
  ClickLink("the types");
  EXPECT_THAT(Shown(), StartsWith("Column types, MS SQL to MySQL"));
  ClickLink("the messages");
  EXPECT_THAT(Shown(), StartsWith("Messages"));
  EXPECT_GT(Browser().verticalScrollBar()->value(), 0) << "at the place that the link names";
  Browser().setSource(QUrl("file:///etc/passwd"));
  EXPECT_THAT(Shown(), StartsWith("Messages")) << "links lead nowhere else";
  Browser().backward();
  EXPECT_THAT(Shown(), StartsWith("Column types"));
  // Headings have the colour of the style sheet inside the help file.
  QTextCursor heading(Browser().document());
  heading.movePosition(QTextCursor::NextCharacter);
  EXPECT_EQ(heading.charFormat().foreground().color().name().toStdString(), "#1c4f8c");
}

TEST_F(HelpViewerTest, ContentsFollowTheShownTopic) {
  const auto current = [] {
    const auto* entry = Find<QTreeWidget>("lstContents").currentItem();
    return entry ? entry->text(0).toStdString() : "none";
  };
  viewer_->ShowContext(3);
  EXPECT_EQ(current(), "Selecting the tables");
  EXPECT_EQ(Find<QTreeWidget>("lstContents").currentItem()->parent()->text(0).toStdString(),
            "MS SQL to MySQL");
  ClickLink("the types");
  EXPECT_EQ(current(), "Column types");
  ClickLink("the messages");
  EXPECT_EQ(current(), "Converting") << "the entry of the link's place";
  Browser().backward();
  EXPECT_EQ(current(), "Column types");
  viewer_->ShowContext(77);
  EXPECT_EQ(current(), "none");
  viewer_->ShowContext(3);
  EXPECT_THAT(Shown(), StartsWith("Step 4"));
}

TEST_F(HelpViewerTest, EscapeClosesTheWindowWhereverTheFocusIs) {
  viewer_->ShowSearch();
  ASSERT_TRUE(QTest::qWaitForWindowActive(OpenWindow()));
  QTest::keyClick(&Find<QLineEdit>("txtQuery"), Qt::Key_Escape);
  EXPECT_EQ(OpenWindow(), nullptr);
}

TEST_F(HelpViewerTest, EveryWordCanBeReadInEveryPalette) {
  const QPalette usual = QApplication::palette();
  for (const QPalette& palette : {usual, test::DarkPalette()}) {
    // Now and then while the window is open.
    QApplication::setPalette(palette);
    QApplication::processEvents();
    for (const int context : {0, 1, 4, 8}) {
      viewer_->ShowContext(context);
      const QTextDocument& topic = *Browser().document();
      const QColor ground = Browser().grab().toImage().pixelColor(3, 3);
      EXPECT_EQ(ground.lightness() < 128, palette.color(QPalette::Base).lightness() < 128);
      for (QTextBlock block = topic.begin(); block != topic.end(); block = block.next()) {
        const QTextTable* table = QTextCursor(block).currentTable();
        const QBrush cell =
            table ? table->cellAt(block.position()).format().background() : QBrush();
        const QColor behind = cell.style() == Qt::NoBrush ? ground : cell.color();
        for (auto part = block.begin(); !part.atEnd(); ++part) {
          const QString words = part.fragment().text().trimmed();
          const QColor ink = part.fragment().charFormat().foreground().color();
          if (words.isEmpty()) continue;
          EXPECT_GE(test::Contrast(ink, behind), test::kReadable) << words.toStdString();
        }
      }
    }
  }
  QApplication::setPalette(usual);
}

TEST_F(HelpViewerTest, SaysThatTheFileIsDamaged) {
  const test::TempFolder folder;
  std::ofstream(folder / "Help.chm", std::ios::binary) << "ITSF and nothing else";
  viewer_->SetHelpFile(folder / "Help.chm");
  viewer_->ShowContext(3);
  EXPECT_THAT(Shown(), HasSubstr("is damaged"));
}

TEST_F(HelpViewerTest, SaysThatTheFileIsMissing) {
  const test::TempFolder folder;
  viewer_->SetHelpFile(folder / "Help.chm");
  viewer_->ShowContext(3);
  ASSERT_NE(OpenWindow(), nullptr);
  EXPECT_EQ(Shown(), "The help file " + (folder / "Help.chm").string() + " is missing.");
  viewer_->ShowContents();
  viewer_->ShowIndex();
  viewer_->Show();
  EXPECT_THAT(Shown(), HasSubstr("is missing"));
}

TEST_F(HelpViewerTest, ClosesWithTheProgramAndReopens) {
  viewer_->Show();
  OpenWindow()->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(OpenWindow(), nullptr);
  viewer_->Unload();
  viewer_->Show();
  EXPECT_NE(OpenWindow(), nullptr);
  viewer_.reset();
  EXPECT_EQ(OpenWindow(), nullptr);
}

}  // namespace
}  // namespace dorvane
