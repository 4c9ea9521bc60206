#pragma once

#include <QTableView>
#include <cstddef>
#include <string>
#include <vector>

#include "ui/wizard/messages_pane.h"
#include "ui/wizard/table_outcome.h"

namespace dorvane {

class OutcomesModel;

/// What became of each table: name, rows, seconds and state, the newest in view, sorted by a
/// column whose header is clicked. What was told of a table is its tooltip. Stays quick with tens
/// of thousands of tables.
class OutcomesView : public QTableView {
 public:
  explicit OutcomesView(QWidget* parent);

  /// Forgets all tables.
  void Clear();
  /// Forgets the tables that were not converted, which are now tried again.
  void ForgetUnconverted();
  void Add(const std::vector<TableOutcome>& outcomes);
  /// Something is told of a table, which may be over. An error marks it.
  void Tell(Severity severity, const std::string& table, const std::string& message);

  std::size_t ConvertedCount() const;
  /// "2 failed: Orders, Prices; 1 with errors: Stocks", some of the names at least; empty where
  /// all went well.
  std::string Failures() const;

 private:
  /// So that the rows in view can be read.
  void WidenColumns();

  OutcomesModel* model_;
};

}  // namespace dorvane
