#include "ui/controls/name_list_view.h"

#include <QAbstractListModel>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>

#include "ui/controls/make_child.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr int kEntryMargin = 4;  // left and right of an entry's text
constexpr int kDetailRole = Qt::UserRole;

/// How wide the detail of an entry is, with the gap before it; 0 where it would leave too little
/// to its name.
int DetailWidth(const QString& detail, const QFontMetrics& metrics, int entry_width) {
  if (detail.isEmpty()) return 0;
  const int width = metrics.horizontalAdvance(detail) + 3 * kEntryMargin;
  return width <= entry_width * 2 / 3 ? width : 0;
}

class DetailDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const QString detail = index.data(kDetailRole).toString();
    const int width = DetailWidth(detail, option.fontMetrics, option.rect.width());
    if (width == 0) return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem entry = option;
    initStyleOption(&entry, index);
    const int room = option.rect.width() - width - 2 * kEntryMargin;
    entry.text = option.fontMetrics.elidedText(entry.text, Qt::ElideMiddle, room);
    QStyle& style = *option.widget->style();
    style.drawControl(QStyle::CE_ItemViewItem, &entry, painter, option.widget);
    const bool is_selected = (option.state & QStyle::State_Selected) != 0;
    style.drawItemText(painter, option.rect.adjusted(0, 0, -kEntryMargin, 0),
                       Qt::AlignRight | Qt::AlignVCenter, option.palette,
                       (option.state & QStyle::State_Enabled) != 0, detail,
                       is_selected ? QPalette::HighlightedText : QPalette::PlaceholderText);
  }
};

}  // namespace

class NameListModel : public QAbstractListModel {
 public:
  explicit NameListModel(QObject* parent) : QAbstractListModel(parent) {}

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(names_.size());
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid()) return {};
    const std::string& name = names_[static_cast<std::size_t>(index.row())];
    const QString text = QString::fromStdString(name);
    if (role == Qt::DisplayRole) return text;
    const auto detail = details_.find(name);
    if (role == Qt::AccessibleTextRole) {
      return detail == details_.end() ? text : text + ", " + detail->second;
    }
    return role == kDetailRole && detail != details_.end() ? detail->second : QVariant();
  }

  void SetDetails(std::unordered_map<std::string, QString> details) {
    details_ = std::move(details);
    if (!names_.empty()) emit dataChanged(index(0), index(rowCount() - 1));
  }

  const std::vector<std::string>& Names() const { return names_; }

  void Reset(std::vector<std::string> names) {
    beginResetModel();
    names_ = std::move(names);
    endResetModel();
  }

  void Append(std::string name) {
    beginInsertRows({}, rowCount(), rowCount());
    names_.push_back(std::move(name));
    endInsertRows();
  }

  void RemoveFirst(std::string_view name) {
    const auto found = std::ranges::find(names_, name);
    if (found == names_.end()) return;
    const int row = static_cast<int>(found - names_.begin());
    beginRemoveRows({}, row, row);
    names_.erase(found);
    endRemoveRows();
  }

 private:
  std::vector<std::string> names_;
  std::unordered_map<std::string, QString> details_;
};

NameListView::NameListView(QWidget* parent)
    : QListView(parent), model_(&MakeChild<NameListModel>(static_cast<QObject&>(*this))) {
  setModel(model_);
  setItemDelegate(&MakeChild<DetailDelegate>(static_cast<QObject&>(*this)));
  setUniformItemSizes(true);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setTextElideMode(Qt::ElideMiddle);
  setSpacing(1);
  // Scroll bars keep the look of the list on any ground around it.
  for (QScrollBar* bar : {verticalScrollBar(), horizontalScrollBar()}) {
    FollowPalette(*bar, &Look::scroll_bar);
  }
}

const std::vector<std::string>& NameListView::Names() const {
  return model_->Names();
}

int NameListView::Current() const {
  // The view itself gives an entry the focus without selecting it.
  const QModelIndex index = currentIndex();
  return selectionModel()->isSelected(index) ? index.row() : -1;
}

void NameListView::SetDetails(std::unordered_map<std::string, QString> details) {
  model_->SetDetails(std::move(details));
}

void NameListView::SetNames(std::vector<std::string> names, int current) {
  const int scrolled = verticalScrollBar()->value();
  model_->Reset(std::move(names));
  doItemsLayout();
  verticalScrollBar()->setValue(scrolled);
  SetCurrent(current);
}

void NameListView::SetCurrent(int position) {
  const QModelIndex index = position < 0 ? QModelIndex() : model_->index(position);
  setCurrentIndex(index);
  if (index.isValid()) scrollTo(index);
}

void NameListView::Append(std::string name) {
  model_->Append(std::move(name));
}

void NameListView::RemoveFirst(std::string_view name) {
  model_->RemoveFirst(name);
}

bool NameListView::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QListView::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const QModelIndex index = indexAt(help->pos());
  const QString name = index.data().toString();
  const int width = visualRect(index).width();
  const QString detail = index.data(kDetailRole).toString();
  const int room = width - 2 * kEntryMargin - DetailWidth(detail, fontMetrics(), width);
  const bool is_cut = fontMetrics().horizontalAdvance(name) > room;
  QToolTip::showText(help->globalPos(), is_cut ? name : QString(), viewport());
  return true;
}

}  // namespace dorvane
