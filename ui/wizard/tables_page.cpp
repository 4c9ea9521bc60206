#include "ui/wizard/tables_page.h"

#include <QLocale>
#include <QShortcut>
#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "ui/controls/make_child.h"
#include "ui/look/current_look.h"
#include "ui/wizard/table_filter.h"
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

/// A list below a label, whose text is set with the list's count.
NameListView& AddList(const char* name, const char* spoken, QLabel& label, QGridLayout& grid,
                      int column) {
  auto& list = MakeNamed<NameListView>(name, *grid.parentWidget());
  label.setBuddy(&list);
  list.setAccessibleName(spoken);
  grid.addWidget(&label, 1, column);
  grid.addWidget(&list, 2, column);
  return list;
}

QString SizeText(const TableSize& size) {
  const QLocale english(QLocale::English);
  return QString("%1 rows, %2")
      .arg(english.toString(static_cast<qlonglong>(size.rows)),
           english.formattedDataSize(size.bytes, 1, QLocale::DataSizeTraditionalFormat));
}

enum SortKey { kByName, kByRows, kBySize };

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
  AddFilter(area, grid);
  lblAvailable_ = &MakeNamed<QLabel>("lblAvailable", area);
  lblSelected_ = &MakeNamed<QLabel>("lblSelected", area);
  lstSrcTables_ = &AddList("lstSrcTables", "Available tables", *lblAvailable_, grid, 0);
  AddMoveButtons(area, grid);
  lstDestTables_ = &AddList("lstDestTables", "Selected tables", *lblSelected_, grid, 2);
  ShowCounts();
  connect(lstSrcTables_, &QListView::doubleClicked, this, [this] { Move(MoveToSelected); });
  connect(lstDestTables_, &QListView::doubleClicked, this, [this] { Move(MoveBack); });
}

void TablesPage::AddFilter(QWidget& area, QGridLayout& grid) {
  auto& row = MakeLayout<QHBoxLayout>(grid, 0, 0, 1, 3);
  row.setSpacing(theme::kGap);
  auto& label = MakeChild<QLabel>(area, "F&ilter");
  txtTableFilter_ = &MakeNamed<QLineEdit>("txtTableFilter", area);
  txtTableFilter_->setPlaceholderText("Part of a name, or a pattern: ord*, *_20??");
  txtTableFilter_->setToolTip(
      "Shows the available tables with this in their names. * stands for any letters, ? for one; "
      "a comma separates patterns.");
  txtTableFilter_->setAccessibleName("Filter of the available tables");
  txtTableFilter_->setClearButtonEnabled(true);
  label.setBuddy(txtTableFilter_);
  cmdSelectPattern_ = &theme::AddButton("cmdSelectPattern", area, "Select by pattern", 'E');
  cmdSelectPattern_->setToolTip("Select every table that the filter shows");
  cmdSelectPattern_->SetEnabled(false);
  auto& sort_label = MakeChild<QLabel>(area, "Sort b&y");
  cboSortTables_ = &MakeNamed<QComboBox>("cboSortTables", area);
  cboSortTables_->addItems({"Name", "Rows", "Size"});  // by SortKey
  cboSortTables_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  cboSortTables_->setMinimumContentsLength(6);
  cboSortTables_->setToolTip("Sorts the available tables. The largest come first.");
  cboSortTables_->setAccessibleName("Sort by");
  theme::StyleDropDown(*cboSortTables_);
  sort_label.setBuddy(cboSortTables_);
  row.addWidget(&label);
  row.addWidget(txtTableFilter_, 1);
  row.addWidget(cmdSelectPattern_);
  row.addWidget(&sort_label);
  row.addWidget(cboSortTables_);
  connect(txtTableFilter_, &QLineEdit::textChanged, this, [this] { ShowAvailable({}); });
  connect(cmdSelectPattern_, &QAbstractButton::clicked, this, [this] { Move(MoveAllToSelected); });
  connect(cboSortTables_, &QComboBox::activated, this, &TablesPage::Sort);
  auto& down = MakeChild<QShortcut>(*txtTableFilter_, QKeySequence(Qt::Key_Down));
  down.setContext(Qt::WidgetShortcut);
  connect(&down, &QShortcut::activated, this, [this] { lstSrcTables_->setFocus(); });
}

void TablesPage::AddMoveButtons(QWidget& area, QGridLayout& grid) {
  auto& buttons = MakeLayout<QVBoxLayout>(grid, 2, 1);
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
      {"cmdMLR", ">>", "Select all tables that are shown", MoveAllToSelected},
      {"cmdSRL", "<", "Take the table back (<)", MoveBack},
      {"cmdMRL", "<<", "Take the table back (<<)", MoveBack},
  };
  buttons.addStretch();
  for (const MoveButton& entry : kMoveButtons) {
    GradientButton& button = theme::AddButton(entry.name, area, entry.caption, '\0');
    theme::Widen(button, kMoveButtonWidth);
    button.setAccessibleName(entry.spoken);
    button.setToolTip(entry.spoken);
    buttons.addWidget(&button);
    connect(&button, &QAbstractButton::clicked, this,
            [this, operation = entry.operation] { Move(operation); });
  }
  buttons.addStretch();
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
  FollowPalette(*spnTablesAtOnce_, &Look::field);  // of the arrows
  spnTablesAtOnce_->setRange(1, kMostTablesAtOnce);
  spnTablesAtOnce_->setAccessibleName("Tables at once");
  spnTablesAtOnce_->setToolTip("Each of them takes connections of its own to both servers.");
  label.setBuddy(spnTablesAtOnce_);
  auto& verification_label = MakeChild<QLabel>(card, "&Compare afterwards");
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
  available_.clear();
  lstDestTables_->SetNames({}, -1);
  txtTableFilter_->clear();
  cboSortTables_->setCurrentIndex(kByName);
  SetSizes({});
  ShowAvailable({});
}

void TablesPage::SetAvailable(NameList names, bool has_schemas) {
  const auto has_two_parts = [](const std::string& name) { return name.find('.') < name.size(); };
  schemas_->setVisible(has_schemas && std::ranges::any_of(names, has_two_parts));
  available_ = std::move(names);
  positions_.clear();
  for (const std::string& name : available_) positions_.emplace(name, positions_.size());
  NameList selected;
  for (const std::string& name : std::exchange(wanted_, {})) {
    if (std::erase(available_, name) > 0) selected.push_back(name);
  }
  lstDestTables_->SetNames(selected, static_cast<int>(selected.size()) - 1);
  ShowAvailable({});
}

void TablesPage::Fill(const ConversionOptions& options, NameList wanted) {
  chkConvertDefOnly_->setChecked(!options.copy_table_content);
  chkReplaceSpaceWithUnderscore_->setChecked(options.replace_space_with_underscore);
  chkConvertRelationShips_->setChecked(options.convert_relationships);
  chkExactTypes_->setChecked(options.types == TypeMapping::Exact);
  cboSchemas_->setCurrentIndex(static_cast<int>(options.schemas));
  spnTablesAtOnce_->setValue(options.tables_at_once);
  wanted_ = std::move(wanted);
}

void TablesPage::SetSizes(const std::vector<TableSize>& sizes) {
  sizes_.clear();
  std::unordered_map<std::string, QString> details;
  for (const TableSize& size : sizes) {
    sizes_[size.name] = size;
    details[size.name] = SizeText(size);
  }
  lstDestTables_->SetDetails(details);
  lstSrcTables_->SetDetails(std::move(details));
  if (cboSortTables_->currentIndex() != kByName) Sort();
}

void TablesPage::Sort() {
  const int key = cboSortTables_->currentIndex();
  const auto rank = [&](const std::string& name) {
    const auto size = sizes_.find(name);
    const TableSize known = size != sizes_.end() ? size->second : TableSize{name, -1, -1};
    const std::int64_t largest_first = key == kByName   ? 0
                                       : key == kByRows ? -known.rows
                                                        : -known.bytes;
    return std::pair(largest_first, positions_[name]);
  };
  const int current = lstSrcTables_->Current();
  const std::string name =
      current < 0 ? "" : lstSrcTables_->Names()[static_cast<std::size_t>(current)];
  std::ranges::sort(available_, {}, rank);
  ShowAvailable(name);
}

void TablesPage::ShowAvailable(const std::string& current) {
  const TableFilter filter(txtTableFilter_->text());
  NameList shown = filter.Of(available_);
  const auto found = std::ranges::find(shown, current);
  const auto place = found == shown.end() ? 0 : static_cast<int>(found - shown.begin());
  lstSrcTables_->SetNames(shown, shown.empty() ? -1 : place);
  cmdSelectPattern_->SetEnabled(!filter.IsEmpty() && !shown.empty());
  ShowCounts();
}

void TablesPage::ShowCounts() {
  const std::size_t shown = lstSrcTables_->Names().size();
  const QString all = QString::number(available_.size());
  lblAvailable_->setText(shown == available_.size()
                             ? QString("&Available tables (%1):").arg(all)
                             : QString("&Available tables (%1 of %2):").arg(shown).arg(all));
  lblSelected_->setText(QString("Selected &tables (%1):").arg(lstDestTables_->Names().size()));
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
  const NameList& shown = lstSrcTables_->Names();
  const std::unordered_set<std::string> before(shown.begin(), shown.end());
  TableLists lists{Shown(*lstSrcTables_), Shown(*lstDestTables_)};
  operation(lists);
  const NameList& names = lists.available.names;
  const std::unordered_set<std::string> after(names.begin(), names.end());
  std::erase_if(available_, [&](const std::string& name) {
    return before.contains(name) && !after.contains(name);
  });
  std::ranges::copy_if(names, std::back_inserter(available_),
                       [&](const std::string& name) { return !before.contains(name); });
  // The filter may hide what was moved back.
  TableList visible{TableFilter(txtTableFilter_->text()).Of(names), lists.available.current};
  visible.current = std::min(visible.current, LastPosition(visible));
  Show(*lstSrcTables_, std::move(visible));
  Show(*lstDestTables_, std::move(lists.selected));
  ShowCounts();
}

}  // namespace dorvane
