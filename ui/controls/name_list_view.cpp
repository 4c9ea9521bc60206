#include "ui/controls/name_list_view.h"

#include <QAbstractListModel>
#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>

#include "ui/controls/make_child.h"

namespace dorvane {

namespace {

constexpr int kEntryMargin = 4;  // left and right of an entry's text

}  // namespace

class NameListModel : public QAbstractListModel {
 public:
  explicit NameListModel(QObject* parent) : QAbstractListModel(parent) {}

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(names_.size());
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    return QString::fromStdString(names_[static_cast<std::size_t>(index.row())]);
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
};

NameListView::NameListView(QWidget* parent)
    : QListView(parent), model_(&MakeChild<NameListModel>(static_cast<QObject&>(*this))) {
  setModel(model_);
  setUniformItemSizes(true);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setTextElideMode(Qt::ElideMiddle);
  setSpacing(1);
  // Scroll bars keep the light look of the list on any ground around it.
  QPalette light;
  light.setColor(QPalette::Window, QColor(232, 235, 242));
  light.setColor(QPalette::Button, QColor(214, 220, 232));
  light.setColor(QPalette::WindowText, QColor(24, 34, 62));
  for (QScrollBar* bar : {verticalScrollBar(), horizontalScrollBar()}) bar->setPalette(light);
}

const std::vector<std::string>& NameListView::Names() const {
  return model_->Names();
}

int NameListView::Current() const {
  // The view itself gives an entry the focus without selecting it.
  const QModelIndex index = currentIndex();
  return selectionModel()->isSelected(index) ? index.row() : -1;
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
  const int room = visualRect(index).width() - 2 * kEntryMargin;
  const bool is_cut = fontMetrics().horizontalAdvance(name) > room;
  QToolTip::showText(help->globalPos(), is_cut ? name : QString(), viewport());
  return true;
}

}  // namespace dorvane
