#include "ui/wizard/outcomes_view.h"

#include <fmt/format.h>

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QLocale>
#include <QSortFilterProxyModel>
#include <algorithm>
#include <unordered_map>

#include "ui/controls/make_child.h"
#include "ui/wizard/theme.h"

namespace dorvane {

namespace {

enum Column { kName, kRows, kSeconds, kState, kColumns };
constexpr const char* kHeaders[kColumns] = {"Table", "Rows", "Seconds", "State"};
constexpr int kGap = 10;  // between columns
constexpr std::size_t kNamesToTell = 3;
constexpr std::size_t kMessagesInTooltip = 12;

int Alignment(int column) {
  return int(Qt::AlignVCenter | (column == kName ? Qt::AlignLeft : Qt::AlignRight));
}

QString RowsText(const TableOutcome& table) {
  if (!table.announced) return {};
  const QLocale english(QLocale::English);
  const QString rows = english.toString(static_cast<qlonglong>(table.rows));
  if (table.rows > *table.announced) return rows;
  return rows + " of " + english.toString(static_cast<qlonglong>(*table.announced));
}

}  // namespace

class OutcomesModel : public QAbstractTableModel {
 public:
  explicit OutcomesModel(QObject* parent) : QAbstractTableModel(parent) {}

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(tables_.size());
  }
  int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : kColumns;
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole) return Alignment(section);
    return role == Qt::DisplayRole ? kHeaders[section] : QVariant();
  }

  QVariant data(const QModelIndex& index, int role) const override {
    const TableOutcome& table = tables_[static_cast<std::size_t>(index.row())];
    switch (role) {
      case Qt::DisplayRole:
        return Text(table, index.column());
      case Qt::UserRole:
        return SortValue(table, index.column());
      case Qt::ToolTipRole:
        return ToolTip(table);
      case Qt::TextAlignmentRole:
        return Alignment(index.column());
      default:
        return {};
    }
  }

  void Keep(bool (*stays)(const TableOutcome& table)) {
    beginResetModel();
    std::erase_if(tables_, [stays](const TableOutcome& table) { return !stays(table); });
    std::unordered_map<std::string, Told> told;
    for (const TableOutcome& table : tables_) told[table.name] = std::move(told_[table.name]);
    told_ = std::move(told);
    endResetModel();
  }

  void Add(const std::vector<TableOutcome>& outcomes) {
    if (outcomes.empty()) return;
    beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(outcomes.size()) - 1);
    tables_.insert(tables_.end(), outcomes.begin(), outcomes.end());
    endInsertRows();
  }

  void Tell(Severity severity, const std::string& table, const std::string& message) {
    Told& told = told_[table];
    told.messages.push_back(message);
    if (severity != Severity::Error || std::exchange(told.has_errors, true)) return;
    // Most tables that something is told of are the last ones.
    const auto found =
        std::ranges::find(tables_.rbegin(), tables_.rend(), table, &TableOutcome::name);
    if (found == tables_.rend()) return;
    const QModelIndex state = index(static_cast<int>(tables_.rend() - found) - 1, kState);
    emit dataChanged(state, state);
  }

  bool HasErrors(const TableOutcome& table) const {
    const auto told = told_.find(table.name);
    return told != told_.end() && told->second.has_errors;
  }
  const std::vector<TableOutcome>& Tables() const { return tables_; }

 private:
  struct Told {
    std::vector<std::string> messages;
    bool has_errors = false;
  };

  QString StateText(const TableOutcome& table) const {
    switch (table.state) {
      case TableState::Done:
        return HasErrors(table) ? "Done, with errors" : "Done";
      case TableState::Failed:
        return "Failed";
      case TableState::LeftOut:
        break;
    }
    return "Left out";
  }

  QString Text(const TableOutcome& table, int column) const {
    switch (column) {
      case kName:
        return QString::fromStdString(table.name);
      case kRows:
        return RowsText(table);
      case kSeconds:
        return QString::number(table.took.count(), 'f', 1);
      default:
        return StateText(table);
    }
  }

  QVariant SortValue(const TableOutcome& table, int column) const {
    if (column == kRows) return static_cast<qlonglong>(table.announced ? table.rows : -1);
    if (column == kSeconds) return table.took.count();
    return Text(table, column);
  }

  QString ToolTip(const TableOutcome& table) const {
    QStringList lines(QString::fromStdString(table.name));
    const auto told = told_.find(table.name);
    if (told == told_.end()) return lines.first();
    const std::vector<std::string>& messages = told->second.messages;
    for (std::size_t i = 0; i < std::min(messages.size(), kMessagesInTooltip); ++i) {
      lines << QString::fromStdString(messages[i]);
    }
    if (messages.size() > kMessagesInTooltip) lines << "...";
    return lines.join('\n');
  }

  std::vector<TableOutcome> tables_;
  std::unordered_map<std::string, Told> told_;
};

OutcomesView::OutcomesView(QWidget* parent)
    : QTableView(parent), model_(&MakeChild<OutcomesModel>(static_cast<QObject&>(*this))) {
  auto& sorted = MakeChild<QSortFilterProxyModel>(static_cast<QObject&>(*this));
  sorted.setSourceModel(model_);
  sorted.setSortRole(Qt::UserRole);
  sorted.setSortCaseSensitivity(Qt::CaseInsensitive);
  setModel(&sorted);
  theme::StyleTable(*this);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setTextElideMode(Qt::ElideMiddle);
  QHeaderView& header = *horizontalHeader();
  header.setStretchLastSection(false);
  header.setResizeContentsPrecision(0);  // by what shows: of thousands each would be asked
  header.setSectionResizeMode(kName, QHeaderView::Stretch);
  header.setMinimumSectionSize(fontMetrics().horizontalAdvance("a_tab"));
  for (const int column : {kRows, kSeconds, kState}) header.resizeSection(column, 0);
  WidenColumns();
  // In the order in which they end until a header is clicked; the third click brings it back.
  header.setSortIndicatorClearable(true);
  header.setSortIndicator(-1, Qt::AscendingOrder);
  setSortingEnabled(true);
}

void OutcomesView::Clear() {
  model_->Keep([](const TableOutcome&) { return false; });
}

void OutcomesView::ForgetUnconverted() {
  model_->Keep([](const TableOutcome& table) { return table.state == TableState::Done; });
}

void OutcomesView::WidenColumns() {
  QHeaderView& header = *horizontalHeader();
  for (const int column : {kRows, kSeconds, kState}) {
    const int needed = kGap + std::max(header.sectionSizeHint(column), sizeHintForColumn(column));
    if (needed > header.sectionSize(column)) header.resizeSection(column, needed);
  }
}

void OutcomesView::Add(const std::vector<TableOutcome>& outcomes) {
  model_->Add(outcomes);
  WidenColumns();
  if (horizontalHeader()->sortIndicatorSection() < 0) scrollToBottom();
}

void OutcomesView::Tell(Severity severity, const std::string& table, const std::string& message) {
  if (!table.empty()) model_->Tell(severity, table, message);
}

std::size_t OutcomesView::ConvertedCount() const {
  return static_cast<std::size_t>(
      std::ranges::count(model_->Tables(), TableState::Done, &TableOutcome::state));
}

std::string OutcomesView::Failures() const {
  const auto tell = [this](const char* what, const auto& is_one) {
    std::string names;
    std::size_t count = 0;
    for (const TableOutcome& table : model_->Tables()) {
      if (!is_one(table)) continue;
      if (++count <= kNamesToTell) names += (count == 1 ? "" : ", ") + table.name;
    }
    if (count == 0) return std::string();
    return fmt::format("{} {}: {}{}", count, what, names, count > kNamesToTell ? ", ..." : "");
  };
  const std::string parts[] = {
      tell("failed", [](const TableOutcome& table) { return table.state == TableState::Failed; }),
      tell("with errors",
           [this](const TableOutcome& table) {
             return table.state == TableState::Done && model_->HasErrors(table);
           }),
      tell("left out",
           [](const TableOutcome& table) { return table.state == TableState::LeftOut; })};
  std::string text;
  for (const std::string& part : parts) {
    if (!part.empty()) text += (text.empty() ? "" : "; ") + part;
  }
  return text;
}

}  // namespace dorvane
