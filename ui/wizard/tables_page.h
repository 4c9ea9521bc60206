#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <unordered_map>

#include "endpoint/database.h"
#include "ui/controls/gradient_button.h"
#include "ui/controls/name_list_view.h"
#include "ui/wizard/wizard_page.h"

namespace dorvane {

/// A list as the user sees it: its names in order and the position of the selected one, or -1.
struct TableList {
  NameList names;
  int current = -1;
  bool operator==(const TableList&) const = default;
};

/// The two lists of the table page. A name is only ever moved, to the end of the other list.
struct TableLists {
  TableList available;
  TableList selected;
};

/// Moves the selected available table; its place is taken by the next one, or by the last.
void MoveToSelected(TableLists& lists);
/// Moves the selected entry of the selected list back; the last one left becomes current.
void MoveBack(TableLists& lists);
/// Moves every available table; the last one becomes current.
void MoveAllToSelected(TableLists& lists);

/// Page 5: which tables are converted, and how.
class TablesPage : public WizardPage {
 public:
  explicit TablesPage(QWidget* parent);

  void ClearLists();
  /// Fills the available list; the first entry becomes current. `has_schemas`: the names may be of
  /// several schemas.
  void SetAvailable(NameList names, bool has_schemas);
  /// Shows the options, and selects these tables as soon as the source has listed its own.
  void Fill(const ConversionOptions& options, NameList wanted);
  /// Shows the sizes beside the tables' names.
  void SetSizes(const std::vector<TableSize>& sizes);
  const NameList& Selected() const { return lstDestTables_->Names(); }
  /// Writes the options into the source endpoint.
  void ApplyOptions(IDatabase& src) const;

 private:
  void AddFilter(QWidget& area, QGridLayout& grid);
  void AddLists();
  void AddMoveButtons(QWidget& area, QGridLayout& grid);
  void AddOptions();
  void AddSchemas(Card& card);
  void AddRunOptions(Card& card, QBoxLayout& layout);
  /// Carries out one of the moving operations on what the two lists show.
  void Move(void (*operation)(TableLists& lists));
  /// Shows the available tables that the filter lets through; `current` is the selected one.
  void ShowAvailable(const std::string& current);
  void ShowCounts();
  void Sort();

  NameList wanted_;     // to be selected, in this order
  NameList available_;  // those that the filter hides among them
  std::unordered_map<std::string, std::size_t> positions_;  // in the server's list
  std::unordered_map<std::string, TableSize> sizes_;
  QLineEdit* txtTableFilter_;
  GradientButton* cmdSelectPattern_;
  QComboBox* cboSortTables_;
  QLabel* lblAvailable_;
  QLabel* lblSelected_;
  NameListView* lstSrcTables_;
  NameListView* lstDestTables_;
  QCheckBox* chkConvertDefOnly_;
  QCheckBox* chkReplaceSpaceWithUnderscore_;
  QCheckBox* chkConvertRelationShips_;
  QCheckBox* chkExactTypes_;
  QCheckBox* chkKeepComputed_;
  QWidget* schemas_;  // label and box, shown where there are several schemas
  QComboBox* cboSchemas_;
  QSpinBox* spnTablesAtOnce_;
  QComboBox* cboVerification_;
};

}  // namespace dorvane
