#pragma once

#include <QCheckBox>
#include <QLabel>

#include "endpoint/database.h"
#include "ui/controls/name_list_view.h"
#include "ui/wizard/table_lists.h"
#include "ui/wizard/wizard_page.h"

namespace dorvane {

/// Page 5: which tables are converted, and how.
class TablesPage : public WizardPage {
 public:
  explicit TablesPage(QWidget* parent);

  void ClearLists();
  /// Fills the available list; the first entry becomes current.
  void SetAvailable(NameList names);
  const NameList& Selected() const { return lstDestTables_->Names(); }
  /// Writes the three options into the source endpoint.
  void ApplyOptions(IDatabase& src) const;

 private:
  void AddLists();
  void AddOptions();
  /// Carries out one of the moving operations on what the two lists show.
  void Move(void (*operation)(TableLists& lists));

  NameListView* lstSrcTables_;
  NameListView* lstDestTables_;
  QCheckBox* chkConvertDefOnly_;
  QCheckBox* chkReplaceSpaceWithUnderscore_;
  QCheckBox* chkConvertRelationShips_;
};

}  // namespace dorvane
