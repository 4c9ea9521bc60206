#include "ui/wizard/messages_pane.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QTime>
#include <algorithm>
#include <memory>
#include <numeric>

#include "endpoint/events.h"
#include "ui/controls/make_child.h"
#include "ui/dialogs/save_text.h"
#include "ui/wizard/theme.h"

namespace dorvane {

namespace {

enum Column { kTime, kTable, kSeverity, kMessage };
constexpr const char* kSeverities[] = {"Error", "Note", "Information"};  // by Severity
constexpr int kLeastHeight = 90;

}  // namespace

MessagesPane::MessagesPane(QWidget* parent)
    : QWidget(parent),
      model_(&MakeChild<QStandardItemModel>(static_cast<QObject&>(*this))),
      shown_(&MakeChild<QSortFilterProxyModel>(static_cast<QObject&>(*this))) {
  model_->setHorizontalHeaderLabels({"Time", "Table", "Severity", "Message"});
  shown_->setSourceModel(model_);
  shown_->setFilterKeyColumn(-1);
  shown_->setFilterCaseSensitivity(Qt::CaseInsensitive);
  auto& layout = MakeChild<QVBoxLayout>(static_cast<QWidget&>(*this));
  layout.setContentsMargins(0, 0, 0, 0);
  layout.setSpacing(5);
  BuildBar();
  BuildTable();
}

void MessagesPane::BuildBar() {
  QWidget& self = *this;
  auto& row = MakeLayout<QHBoxLayout>(static_cast<QVBoxLayout&>(*layout()));
  row.setSpacing(theme::kGap);
  auto& label = MakeChild<QLabel>(self, "M&essages");
  auto& filter = MakeNamed<QLineEdit>("txtMessageFilter", self);
  filter.setPlaceholderText("Part of a message");
  filter.setAccessibleName("Filter of the messages");
  filter.setClearButtonEnabled(true);
  label.setBuddy(&filter);
  auto& copy = theme::AddButton("cmdCopyMessages", self, "Copy", 'C');
  auto& save = theme::AddButton("cmdSaveMessages", self, "Save as text", 'A');
  row.addWidget(&label);
  row.addWidget(&filter, 1);
  row.addWidget(&copy);
  row.addWidget(&save);
  connect(&filter, &QLineEdit::textChanged, shown_, &QSortFilterProxyModel::setFilterFixedString);
  connect(&copy, &QAbstractButton::clicked, this, &MessagesPane::Copy);
  connect(&save, &QAbstractButton::clicked, this, &MessagesPane::SaveAs);
}

void MessagesPane::BuildTable() {
  tblMessages_ = &MakeNamed<QTableView>("tblMessages", static_cast<QWidget&>(*this));
  tblMessages_->setModel(shown_);
  tblMessages_->setAccessibleName("Messages");
  theme::StyleTable(*tblMessages_);
  tblMessages_->setMinimumHeight(kLeastHeight);
  QHeaderView& header = *tblMessages_->horizontalHeader();
  const auto width = [this](const char* text) {
    return fontMetrics().horizontalAdvance(text) + 24;
  };
  header.resizeSection(kTime, width("00:00:00"));
  header.resizeSection(kTable, width("a_table_of_a_shop"));
  header.resizeSection(kSeverity, width("Information"));
  layout()->addWidget(tblMessages_);
  auto& copy = MakeChild<QShortcut>(*tblMessages_, QKeySequence(QKeySequence::Copy));
  copy.setContext(Qt::WidgetShortcut);
  connect(&copy, &QShortcut::activated, this, &MessagesPane::Copy);
}

void MessagesPane::Add(Severity severity, const QString& table, const QString& message) {
  const QString line = QString(message).remove('\r').replace('\n', ' ');
  QList<QStandardItem*> row;
  for (const QString& text : {QTime::currentTime().toString("HH:mm:ss"), table,
                              QString(kSeverities[static_cast<int>(severity)]), line}) {
    row.append(std::make_unique<QStandardItem>(text).release());  // the model owns it
  }
  row[kMessage]->setToolTip(message);
  row[kTable]->setToolTip(table);
  model_->appendRow(row);
  tblMessages_->scrollToBottom();
}

QString MessagesPane::Lines(const QList<int>& rows) const {
  QString text;
  for (const int row : rows) {
    QStringList cells;
    for (int column = 0; column < shown_->columnCount(); ++column) {
      cells << shown_->index(row, column).data().toString();
    }
    text += cells.join('\t') + '\n';
  }
  return text;
}

QString MessagesPane::Text() const {
  QList<int> rows(shown_->rowCount());
  std::iota(rows.begin(), rows.end(), 0);
  return Lines(rows);
}

void MessagesPane::Copy() {
  QList<int> rows;
  for (const QModelIndex& index : tblMessages_->selectionModel()->selectedRows()) {
    rows.append(index.row());
  }
  std::ranges::sort(rows);
  QApplication::clipboard()->setText(rows.isEmpty() ? Text() : Lines(rows));
}

void MessagesPane::SaveAs() {
  SaveTextAs(*this,
             {.name = "cdMessages",
              .title = "Save the messages",
              .proposal = "messages.txt",
              .filters = {"txt (*.txt)"}},
             "messages", Text());
}

}  // namespace dorvane
