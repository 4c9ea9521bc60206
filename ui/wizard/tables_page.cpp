#include "ui/wizard/tables_page.h"

#include <QGridLayout>
#include <QLabel>
#include <algorithm>
#include <iterator>
#include <utility>

#include "ui/controls/make_child.h"
#include "ui/wizard/theme.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {
namespace {

constexpr int kMoveButtonWidth = 46;

int LastPosition(const TableList& list) {
  return static_cast<int>(list.names.size()) - 1;
}

// Moves the selected entry of `from` to the end of `to` and makes it current there.
void MoveCurrent(TableList& from, TableList& to) {
  if (from.current < 0) return;
  const auto entry = from.names.begin() + from.current;
  to.names.push_back(std::move(*entry));
  from.names.erase(entry);
  to.current = LastPosition(to);
}

TableList Shown(const NameListView& view) {
  return {view.Names(), view.Current()};
}

void Show(NameListView& view, TableList list) {
  view.SetNames(std::move(list.names), list.current);
}

NameListView& AddList(const char* name, const char* caption, QWidget& parent, QGridLayout& grid,
                      int column) {
  auto& label = MakeChild<QLabel>(parent, caption);
  auto& list = MakeNamed<NameListView>(name, parent);
  label.setBuddy(&list);
  list.setAccessibleName(QString(caption).remove('&').remove(':'));
  grid.addWidget(&label, 0, column);
  grid.addWidget(&list, 1, column);
  return list;
}

}  // namespace

void MoveToSelected(TableLists& lists) {
  MoveCurrent(lists.available, lists.selected);
  lists.available.current = std::min(lists.available.current, LastPosition(lists.available));
}

void MoveBack(TableLists& lists) {
  MoveCurrent(lists.selected, lists.available);
  lists.selected.current = LastPosition(lists.selected);
}

void MoveAllToSelected(TableLists& lists) {
  std::ranges::move(lists.available.names, std::back_inserter(lists.selected.names));
  lists.available = {};
  lists.selected.current = LastPosition(lists.selected);
}

TablesPage::TablesPage(QWidget* parent) : WizardPage(page::kTables, parent) {
  AddLists();
  AddOptions();
}

void TablesPage::AddLists() {
  auto& area = MakeChild<QWidget>(*this);
  Content().addWidget(&area, 1);
  auto& grid = MakeChild<QGridLayout>(area);
  grid.setContentsMargins(0, 0, 0, 0);
  grid.setHorizontalSpacing(theme::kGap);
  grid.setVerticalSpacing(5);
  grid.setColumnStretch(0, 1);
  grid.setColumnStretch(2, 1);
  lstSrcTables_ = &AddList("lstSrcTables", "&Available tables:", area, grid, 0);

  auto& buttons = MakeLayout<QVBoxLayout>(grid, 1, 1);
  buttons.setSpacing(8);
  struct MoveButton {
    const char* name;
    const char* caption;
    const char* spoken;
    void (*operation)(TableLists&);
  };
  // "<<" moves the selected entry only, as "<" does.
  constexpr MoveButton kMoveButtons[] = {
      {"cmdSLR", ">", "Select the table", MoveToSelected},
      {"cmdMLR", ">>", "Select all tables", MoveAllToSelected},
      {"cmdSRL", "<", "Take the table back (<)", MoveBack},
      {"cmdMRL", "<<", "Take the table back (<<)", MoveBack},
  };
  buttons.addStretch();
  for (const MoveButton& entry : kMoveButtons) {
    GradientButton& button = theme::AddButton(entry.name, area, entry.caption, '\0');
    theme::Widen(button, kMoveButtonWidth);
    button.setAccessibleName(entry.spoken);
    buttons.addWidget(&button);
    connect(&button, &QAbstractButton::clicked, this,
            [this, operation = entry.operation] { Move(operation); });
  }
  buttons.addStretch();

  lstDestTables_ = &AddList("lstDestTables", "Selected &tables:", area, grid, 2);
  connect(lstSrcTables_, &QListView::doubleClicked, this, [this] { Move(MoveToSelected); });
  connect(lstDestTables_, &QListView::doubleClicked, this, [this] { Move(MoveBack); });
}

void TablesPage::AddOptions() {
  Card& card = AddCard();
  auto& layout = MakeChild<QVBoxLayout>(card);
  layout.setContentsMargins(18, 10, 18, 12);
  layout.setSpacing(6);
  auto& caption = MakeChild<QLabel>(card, "Options");
  caption.setFont(theme::CaptionFont(font()));
  layout.addWidget(&caption);
  const auto add = [&](const char* name, const char* text) {
    auto& box = MakeNamed<QCheckBox>(name, card, text);
    layout.addWidget(&box);
    return &box;
  };
  chkConvertDefOnly_ = add("chkConvertDefOnly", "Convert table &definition only");
  chkReplaceSpaceWithUnderscore_ =
      add("chkReplaceSpaceWithUnderscore", "Convert names spaces to &underscore");
  chkConvertRelationShips_ = add("chkConvertRelationShips", "Convert &relationships");
  chkExactTypes_ = add("chkExactTypes", "&Keep every value exactly (modern column types)");
  chkKeepComputed_ = add("chkKeepComputed", "Keep co&mputed columns computed");
  AddRunOptions(card, layout);
  AddSchemas(card);
}

void TablesPage::AddSchemas(Card& card) {
  schemas_ = &MakeChild<QWidget>(card);
  card.layout()->addWidget(schemas_);
  auto& row = MakeChild<QHBoxLayout>(*schemas_);
  row.setContentsMargins(0, 0, 0, 0);
  auto& label = MakeChild<QLabel>(*schemas_, "Tables of other &schemas:");
  cboSchemas_ = &MakeNamed<QComboBox>("cboSchemas", *schemas_);
  // In the order of SchemaPolicy.
  cboSchemas_->addItems(
      {"Schema_Table", "Table, without the schema", "Table, in a database Schema"});
  label.setBuddy(cboSchemas_);
  row.addWidget(&label);
  row.addWidget(cboSchemas_);
  row.addStretch();
  schemas_->hide();
}

void TablesPage::AddRunOptions(Card& card, QBoxLayout& layout) {
  auto& row = MakeLayout<QHBoxLayout>(layout);
  row.setSpacing(theme::kGap);
  auto& label = MakeChild<QLabel>(card, "Tables at &once");
  spnTablesAtOnce_ = &MakeNamed<QSpinBox>("spnTablesAtOnce", card);
  spnTablesAtOnce_->setRange(1, kMostTablesAtOnce);
  spnTablesAtOnce_->setAccessibleName("Tables at once");
  spnTablesAtOnce_->setToolTip("Each of them takes connections of its own to both servers.");
  label.setBuddy(spnTablesAtOnce_);
  auto& verification_label = MakeChild<QLabel>(card, "Com&pare afterwards");
  cboVerification_ = &MakeNamed<QComboBox>("cboVerification", card);
  // In the order of Verification.
  cboVerification_->addItems({"nothing", "number of rows", "every value"});
  verification_label.setBuddy(cboVerification_);
  // Without rows there is nothing to compare.
  connect(chkConvertDefOnly_, &QCheckBox::toggled, cboVerification_, &QWidget::setDisabled);
  row.addWidget(&label);
  row.addWidget(spnTablesAtOnce_);
  row.addSpacing(theme::kGap);
  row.addWidget(&verification_label);
  row.addWidget(cboVerification_);
  row.addStretch();
}

void TablesPage::ClearLists() {
  lstSrcTables_->SetNames({}, -1);
  lstDestTables_->SetNames({}, -1);
}

void TablesPage::SetAvailable(NameList names, bool has_schemas) {
  const auto has_two_parts = [](const std::string& name) { return name.find('.') < name.size(); };
  schemas_->setVisible(has_schemas && std::ranges::any_of(names, has_two_parts));
  const int first = names.empty() ? -1 : 0;
  lstSrcTables_->SetNames(std::move(names), first);
}

void TablesPage::ApplyOptions(IDatabase& src) const {
  src.SetCopyTableContent(!chkConvertDefOnly_->isChecked());
  src.SetReplaceSpaceWithUnderscore(chkReplaceSpaceWithUnderscore_->isChecked());
  src.SetConvertRelationships(chkConvertRelationShips_->isChecked());
  ConversionOptions options = src.Options();
  options.types = chkExactTypes_->isChecked() ? TypeMapping::Exact : TypeMapping::Classic;
  options.computed_columns =
      chkKeepComputed_->isChecked() ? ComputedColumns::Generated : ComputedColumns::Values;
  options.schemas = schemas_->isHidden() ? SchemaPolicy::Prefix
                                         : static_cast<SchemaPolicy>(cboSchemas_->currentIndex());
  options.tables_at_once = spnTablesAtOnce_->value();
  options.verification = chkConvertDefOnly_->isChecked()
                             ? Verification::None
                             : static_cast<Verification>(cboVerification_->currentIndex());
  src.SetOptions(options);
}

void TablesPage::Move(void (*operation)(TableLists& lists)) {
  TableLists lists{Shown(*lstSrcTables_), Shown(*lstDestTables_)};
  operation(lists);
  Show(*lstSrcTables_, std::move(lists.available));
  Show(*lstDestTables_, std::move(lists.selected));
}

}  // namespace dorvane
