#pragma once

#include <QString>
#include <QWidget>

class QLineEdit;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTableView;

namespace dorvane {

enum class Severity { Error, Note, Information };

/// What a run has told: a table of time, table, severity and message, which can be filtered, copied
/// and saved as text. Stays quick with tens of thousands of messages.
class MessagesPane : public QWidget {
 public:
  explicit MessagesPane(QWidget* parent);

  /// Adds a message of this moment and brings it into view. `table` is empty where a message
  /// belongs to none.
  void Add(Severity severity, const QString& table, const QString& message);
  /// The shown messages, one a line, with tabs between the columns.
  QString Text() const;

 private:
  void BuildTable();
  void BuildBar();
  void Copy();
  void SaveAs();
  /// A line for each of these rows of what is shown.
  QString Lines(const QList<int>& rows) const;

  QStandardItemModel* model_;
  QSortFilterProxyModel* shown_;
  QTableView* tblMessages_;
};

}  // namespace dorvane
