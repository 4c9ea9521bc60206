#include "ui/help/help_window.h"

#include <QLineEdit>
#include <QListWidget>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QUrl>
#include <QVBoxLayout>

#include "platform/run_time_error.h"
#include "ui/controls/make_child.h"
#include "ui/help/help_browser.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr QSize kWindowSize(900, 620);
constexpr int kNavigationWidth = 280;
constexpr int kTopicRole = Qt::UserRole;

void AddEntries(QTreeWidgetItem& parent, const std::vector<help::SiteMapEntry>& entries) {
  for (const help::SiteMapEntry& entry : entries) {
    auto& item = *std::make_unique<QTreeWidgetItem>(&parent).release();
    item.setText(0, QString::fromStdString(entry.name));
    item.setData(0, kTopicRole, QString::fromStdString(entry.topic));
    AddEntries(item, entry.children);
  }
}

void AddTopic(QListWidget& list, const std::string& name, const std::string& topic) {
  auto& item = *std::make_unique<QListWidgetItem>(QString::fromStdString(name), &list).release();
  item.setData(kTopicRole, QString::fromStdString(topic));
}

}  // namespace

HelpWindow::HelpWindow(const std::filesystem::path& help_file, QWidget* parent)
    : QWidget(parent, Qt::Window) {
  setObjectName("HelpWindow");
  setWindowTitle("Dorvane Help");
  setAttribute(Qt::WA_QuitOnClose, false);
  resize(kWindowSize);
  FollowPalette(*this, &Look::window);
  Build();
  try {
    book_ = std::make_unique<help::HelpBook>(help_file);
  } catch (const RunTimeError& error) {
    browser_->ShowText(QString::fromStdString(error.Description()));
    return;
  }
  browser_->SetBook(book_.get());
  AddEntries(*contents_->invisibleRootItem(), book_->Contents());
  contents_->expandAll();
  for (const help::SiteMapEntry& entry : book_->Index()) AddTopic(*index_, entry.name, entry.topic);
  ShowDefaultTopic();
}

HelpWindow::~HelpWindow() {
  browser_->SetBook(nullptr);
}

void HelpWindow::Build() {
  auto& layout = MakeChild<QVBoxLayout>(*static_cast<QWidget*>(this));
  auto& bar = MakeChild<QToolBar>(*static_cast<QWidget*>(this));
  auto& splitter = MakeChild<QSplitter>(*static_cast<QWidget*>(this));
  layout.setContentsMargins(0, 0, 0, 0);
  layout.addWidget(&bar);
  layout.addWidget(&splitter, 1);

  tabs_ = &MakeNamed<QTabWidget>("tabHelp", splitter);
  browser_ = &MakeNamed<HelpBrowser>("HelpTopic", splitter);
  tabs_->addTab(&BuildContents(), "Contents");
  tabs_->addTab(&BuildIndex(), "Index");
  tabs_->addTab(&BuildSearch(), "Search");
  splitter.setSizes({kNavigationWidth, kWindowSize.width() - kNavigationWidth});
  splitter.setStretchFactor(1, 1);

  QAction& back = *bar.addAction("Back", browser_, &QTextBrowser::backward);
  QAction& forward = *bar.addAction("Forward", browser_, &QTextBrowser::forward);
  bar.addAction("Home", this, &HelpWindow::ShowDefaultTopic);
  back.setShortcut(QKeySequence::Back);
  forward.setShortcut(QKeySequence::Forward);
  back.setEnabled(false);
  forward.setEnabled(false);
  connect(browser_, &QTextBrowser::backwardAvailable, &back, &QAction::setEnabled);
  connect(browser_, &QTextBrowser::forwardAvailable, &forward, &QAction::setEnabled);
  connect(browser_, &QTextBrowser::sourceChanged, this, &HelpWindow::FollowTopic);

  auto& escape = MakeChild<QShortcut>(*this, QKeySequence(Qt::Key_Escape));
  connect(&escape, &QShortcut::activated, this, &QWidget::close);
}

QWidget& HelpWindow::BuildContents() {
  contents_ = &MakeNamed<QTreeWidget>("lstContents", *static_cast<QWidget*>(this));
  contents_->setHeaderHidden(true);
  connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    const QString topic = item != nullptr ? item->data(0, kTopicRole).toString() : QString();
    if (!topic.isEmpty()) browser_->ShowTopic(topic.toStdString());
  });
  return *contents_;
}

QWidget& HelpWindow::BuildIndex() {
  index_tab_ = &MakeChild<QWidget>(*static_cast<QWidget*>(this));
  auto& layout = MakeChild<QVBoxLayout>(*index_tab_);
  index_filter_ = &MakeNamed<QLineEdit>("txtIndex", *index_tab_);
  index_filter_->setPlaceholderText("Part of the keyword");
  index_ = &MakeNamed<QListWidget>("lstIndex", *index_tab_);
  layout.addWidget(index_filter_);
  layout.addWidget(index_);
  connect(index_filter_, &QLineEdit::textChanged, this, &HelpWindow::FilterIndex);
  connect(index_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
    if (item != nullptr) browser_->ShowTopic(item->data(kTopicRole).toString().toStdString());
  });
  return *index_tab_;
}

QWidget& HelpWindow::BuildSearch() {
  search_tab_ = &MakeChild<QWidget>(*static_cast<QWidget*>(this));
  auto& layout = MakeChild<QVBoxLayout>(*search_tab_);
  query_ = &MakeNamed<QLineEdit>("txtQuery", *search_tab_);
  query_->setPlaceholderText("Words to find, then Enter");
  hits_ = &MakeNamed<QListWidget>("lstHits", *search_tab_);
  layout.addWidget(query_);
  layout.addWidget(hits_);
  connect(query_, &QLineEdit::returnPressed, this, &HelpWindow::Search);
  connect(hits_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
    const QString topic = item != nullptr ? item->data(kTopicRole).toString() : QString();
    if (!topic.isEmpty()) browser_->ShowTopic(topic.toStdString());
  });
  return *search_tab_;
}

void HelpWindow::FollowTopic(const QUrl& shown) {
  const QString page = shown.path().mid(1);
  const QString place = shown.hasFragment() ? page + '#' + shown.fragment() : page;
  QTreeWidgetItem* entry = nullptr;
  for (QTreeWidgetItemIterator each(contents_); *each != nullptr; ++each) {
    const QString topic = (*each)->data(0, kTopicRole).toString();
    if (topic == place) entry = *each;
    if (topic == page && !entry) entry = *each;
  }
  // It is shown already.
  const QSignalBlocker blocker(contents_);
  contents_->setCurrentItem(entry);
  if (entry) contents_->scrollToItem(entry);
}

void HelpWindow::ShowTab(QWidget& tab) {
  tabs_->setCurrentWidget(&tab);
}

void HelpWindow::ShowContents() {
  ShowTab(*contents_);
}

void HelpWindow::ShowIndex() {
  ShowTab(*index_tab_);
  index_filter_->setFocus();
}

void HelpWindow::ShowSearch() {
  ShowTab(*search_tab_);
  query_->setFocus();
}

void HelpWindow::ShowDefaultTopic() {
  if (book_) browser_->ShowTopic(book_->DefaultTopic());
}

void HelpWindow::ShowContext(std::int32_t context) {
  if (!book_) return;
  if (const auto topic = book_->TopicOfContext(context)) {
    browser_->ShowTopic(*topic);
  } else {
    contents_->setCurrentItem(nullptr);
    browser_->ShowText(QString("There is no help topic of number %1.").arg(context));
  }
}

void HelpWindow::FilterIndex(const QString& text) {
  for (int row = 0; row < index_->count(); ++row) {
    QListWidgetItem& item = *index_->item(row);
    item.setHidden(!item.text().contains(text, Qt::CaseInsensitive));
  }
}

void HelpWindow::Search() {
  hits_->clear();
  if (!book_) return;
  for (const help::Topic& topic : book_->Search(query_->text().toStdString())) {
    AddTopic(*hits_, topic.title, topic.path);
  }
  if (hits_->count() == 0) AddTopic(*hits_, "Nothing found", "");
}

}  // namespace dorvane
