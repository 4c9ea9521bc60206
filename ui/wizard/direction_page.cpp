#include "ui/wizard/direction_page.h"

#include <QLabel>
#include <QStyle>

#include "ui/controls/make_child.h"
#include "ui/controls/option_group.h"
#include "ui/wizard/theme.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {

DirectionPage::DirectionPage(QWidget* parent) : WizardPage(page::kDirection, parent) {
  optMsSqlToMySql_ =
      &AddOption("optMsSqlToMySql", "&MS SQL to MySQL",
                 "I have a MS SQL database and I want to convert it to MySQL", ServerKind::MsSql);
  optMySqlToMsSql_ =
      &AddOption("optMySqlToMsSql", "M&ySQL to  MS SQL",
                 "I have a MySQL database and I want to convert it to MS SQL.", ServerKind::MySql);
  // Each option stands in a card of its own; the two exclude each other in this group.
  auto& group = MakeChild<OptionGroup>(static_cast<QObject&>(*this));
  group.addButton(optMsSqlToMySql_);
  group.addButton(optMySqlToMsSql_);
  Content().addStretch();
}

QRadioButton& DirectionPage::AddOption(const char* name, const char* caption,
                                       const char* explanation, ServerKind source) {
  Card& card = AddCard();
  auto& layout = MakeChild<QVBoxLayout>(card);
  layout.setContentsMargins(18, 16, 18, 16);
  layout.setSpacing(6);
  auto& option = MakeNamed<QRadioButton>(name, card, caption);
  option.setFont(theme::CaptionFont(font()));
  option.setAccessibleDescription(explanation);
  layout.addWidget(&option);
  auto& text = MakeChild<QLabel>(card, explanation);
  text.setWordWrap(true);
  // Below the option's words, not below its mark.
  text.setIndent(style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, &option) +
                 style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, &option));
  layout.addWidget(&text);
  connect(&option, &QRadioButton::clicked, this, [this, source] { emit Chosen(source); });
  return option;
}

void DirectionPage::Choose(ServerKind source) {
  (source == ServerKind::MsSql ? optMsSqlToMySql_ : optMySqlToMsSql_)->setChecked(true);
  emit Chosen(source);
}

ServerKind DirectionPage::Source() const {
  return optMsSqlToMySql_->isChecked() ? ServerKind::MsSql : ServerKind::MySql;
}

}  // namespace dorvane
