// How the wizard window is built: step list, title line, pages and navigation bar.
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QShortcut>

#include "ui/controls/default_button.h"
#include "ui/controls/make_child.h"
#include "ui/controls/qt_text.h"
#include "ui/look/current_look.h"
#include "ui/wizard/frm_wizard.h"
#include "ui/wizard/look_menu.h"
#include "ui/wizard/save_report.h"

namespace dorvane {

namespace {

constexpr QSize kWindowSize(900, 640);
constexpr QSize kLogoSize(120, 56);
constexpr QSize kHelpSize(28, 28);
constexpr int kSidebarWidth = 200;  // at least
constexpr int kNavButtonWidth = 96;

QString Indexed(const char* name, std::size_t index) {
  return QString::fromLatin1(name) + QString::number(index);
}

/// The dark panel behind the step list.
class Sidebar : public QWidget {
 public:
  explicit Sidebar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  }

  QSize sizeHint() const override { return QWidget::sizeHint().expandedTo({kSidebarWidth, 0}); }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QLinearGradient shade(0, 0, 0, height());
    shade.setColorAt(0, CurrentLook().sidebar.top);
    shade.setColorAt(1, CurrentLook().sidebar.bottom);
    painter.fillRect(rect(), shade);
  }
};

void SetGround(QWidget& widget, QPalette Look::*palette) {
  FollowPalette(widget, palette);
  widget.setAutoFillBackground(true);
}

}  // namespace

void frmWizard::BuildWindow() {
  auto& grid = MakeChild<QGridLayout>(static_cast<QWidget&>(*this));
  grid.setContentsMargins(0, 0, 0, 0);
  grid.setSpacing(0);
  grid.addWidget(&BuildSidebar(), 0, 0, 3, 1);
  grid.addWidget(&BuildTitleLine(), 0, 1);
  grid.addWidget(&BuildPages(), 1, 1);
  grid.addWidget(&BuildNavigationBar(), 2, 1);
  grid.setRowStretch(1, 1);
  grid.setColumnStretch(1, 1);
  resize(kWindowSize);
  AddDefaultButton();

  auto& help_key = MakeChild<QShortcut>(*this, QKeySequence(Qt::Key_F1));
  connect(&help_key, &QShortcut::activated, this, &frmWizard::ShowHelp);
}

// Enter connects, then goes on; on the last page it transfers, then finishes.
void frmWizard::AddDefaultButton() {
  std::vector<GradientButton*> candidates;
  for (const auto& [index, page] : connection_pages_) candidates.push_back(&page->ConnectButton());
  candidates.push_back(&transfer_page_->TransferButton());
  candidates.push_back(&NavButton(kNext));
  candidates.push_back(&NavButton(kFinish));
  MakeChild<DefaultButton>(static_cast<QWidget&>(*this), std::move(candidates));
}

QWidget& frmWizard::BuildSidebar() {
  auto& sidebar = MakeChild<Sidebar>(static_cast<QWidget&>(*this));
  auto& layout = MakeChild<QGridLayout>(sidebar);
  layout.setContentsMargins(22, 22, 16, 22);
  layout.setHorizontalSpacing(10);
  layout.setVerticalSpacing(16);

  auto& logo = MakeNamed<PictureBox>("Image2", sidebar);
  FollowLook(logo, [&logo](const Look& look) { logo.SetPicture(theme::LogoPicture(look)); });
  logo.setFixedSize(kLogoSize);
  logo.setCursor(Qt::PointingHandCursor);
  logo.setToolTip("Help");
  logo.setAccessibleName("Dorvane, help");
  logo.SetAction();
  connect(&logo, &PictureBox::Clicked, this, [this] { services_.show_help(0); });
  layout.addWidget(&logo, 0, 0, 1, 2);
  layout.setRowMinimumHeight(1, 12);

  for (std::size_t step = 0; step < kStepCount; ++step) {
    auto& marker = MakeChild<theme::StepMarker>(static_cast<QWidget&>(sidebar));
    marker.setObjectName(Indexed("shpCircle", step));
    const QString name = ToQString(StepName(static_cast<std::int16_t>(step)));
    auto& label = MakeChild<QLabel>(sidebar, name);
    label.setObjectName(Indexed("lblleft", step));
    label.setFont(theme::CaptionFont(font()));
    const int row = static_cast<int>(step) + 2;
    layout.addWidget(&marker, row, 0);
    layout.addWidget(&label, row, 1);
    step_markers_[step] = &marker;
    step_labels_[step] = &label;
  }
  layout.setRowStretch(kStepCount + 2, 1);
  layout.setColumnStretch(1, 1);
  return sidebar;
}

QWidget& frmWizard::BuildTitleLine() {
  auto& header = MakeChild<QWidget>(*this);
  SetGround(header, &Look::title);
  auto& layout = MakeChild<QHBoxLayout>(header);
  layout.setContentsMargins(theme::kMargin, 14, theme::kMargin, 14);
  lblTitle_ = &MakeNamed<QLabel>("lblTitle", header);
  lblTitle_->setFont(theme::TitleFont(font()));
  layout.addWidget(lblTitle_);
  return header;
}

QWidget& frmWizard::BuildPages() {
  pages_ = &MakeChild<QStackedWidget>(*this);
  direction_page_ = &MakeChild<DirectionPage>(static_cast<QWidget&>(*pages_));
  pages_->addWidget(direction_page_);
  for (std::int16_t index = page::kMsSqlSource; index <= page::kMsSqlDestination; ++index) {
    ConnectionPage*& connection_page = connection_pages_[index];
    connection_page =
        &MakeChild<ConnectionPage>(static_cast<QWidget&>(*pages_), index, session_, server_caller_);
    pages_->addWidget(connection_page);
    connect(&connection_page->ConnectButton(), &QAbstractButton::clicked, this,
            [this, connection_page] { FocusNextAfterConnecting(*connection_page); });
  }
  tables_page_ = &MakeChild<TablesPage>(static_cast<QWidget&>(*pages_));
  pages_->addWidget(tables_page_);
  transfer_page_ = &MakeChild<TransferPage>(static_cast<QWidget&>(*pages_));
  pages_->addWidget(transfer_page_);
  preview_page_ = &MakeChild<PreviewPage>(static_cast<QWidget&>(*pages_));
  pages_->addWidget(preview_page_);
  for (int index = 1; index < pages_->count(); ++index) pages_->widget(index)->setEnabled(false);

  connect(direction_page_, &DirectionPage::Chosen, this, &frmWizard::ChooseDirection);
  connect(transfer_page_, &TransferPage::TransferRequested, this, [this] {
    recorder_.Begin("Conversion", *session_.src, *session_.dest, session_.tables);
    Transfer(session_.tables);
  });
  connect(transfer_page_, &TransferPage::PreviewRequested, this, &frmWizard::ShowPreview);
  connect(transfer_page_, &TransferPage::RestRequested, this, [this] {
    recorder_.Continue(report_, transfer_page_->Waiting());
    Transfer(transfer_page_->Waiting());
  });
  connect(transfer_page_, &TransferPage::ReportRequested, this,
          [this] { AskAndSaveReport(report_, this); });
  connect(transfer_page_, &TransferPage::StopRequested, this, [this] { run_.Stop(false); });
  connect(transfer_page_, &TransferPage::ScheduleRequested, this, [this] {
    services_.show_schedule(*session_.src, *session_.dest, session_.tables, this);
  });
  connect(transfer_page_, &TransferPage::SaveRequested, this, &frmWizard::SaveSettings);
  connect(transfer_page_, &TransferPage::TasksRequested, this,
          [this] { services_.show_tasks(this); });
  return *pages_;
}

void frmWizard::AddHelpPicture(PictureBox& bar, QHBoxLayout& layout) {
  auto& images = MakeNamed<theme::ImageList>("imglstImages", static_cast<QObject&>(bar));
  imgHelp_ = &MakeNamed<PictureBox>("imgHelp", static_cast<QWidget&>(bar));
  imgHelp_->setFixedSize(kHelpSize);
  FollowLook(*imgHelp_, [this, &images](const Look& look) {
    images.SetPictures(theme::HelpPicture(look, false), theme::HelpPicture(look, true));
    imgHelp_->SetPicture(images.Picture(1));
  });
  imgHelp_->setToolTip("F1");
  imgHelp_->setAccessibleName("Help");
  imgHelp_->SetAction();
  layout.addWidget(imgHelp_);
  connect(imgHelp_, &PictureBox::Clicked, this, &frmWizard::ShowHelp);
  connect(imgHelp_, &PictureBox::MouseMoved, this,
          [this, &images] { imgHelp_->SetPicture(images.Picture(2)); });
  const auto rest = [this, &images] { imgHelp_->SetPicture(images.Picture(1)); };
  connect(&bar, &PictureBox::MouseMoved, this, rest);
  connect(imgHelp_, &PictureBox::MouseLeft, this, rest);
}

QWidget& frmWizard::BuildNavigationBar() {
  auto& bar = MakeNamed<PictureBox>("picNav", *this);
  SetGround(bar, &Look::navigation);
  auto& layout = MakeChild<QHBoxLayout>(bar);
  layout.setContentsMargins(theme::kMargin, 12, theme::kMargin, 12);
  layout.setSpacing(theme::kGap);

  AddHelpPicture(bar, layout);
  layout.addStretch();

  struct NavEntry {
    Nav index;
    const char* caption;
    char access_key;
    void (*action)(frmWizard& wizard);
  };
  constexpr NavEntry kEntries[] = {
      {kCancel, "Cancel", 'l', [](frmWizard& w) { w.Cancel(); }},
      {kBack, "<< Back", 'B',
       [](frmWizard& w) { w.ShowStep(PreviousPage(w.direction_page_->Source(), w.mnCurStep_)); }},
      {kNext, "Next >>", 'N',
       [](frmWizard& w) { w.ShowStep(NextPage(w.direction_page_->Source(), w.mnCurStep_)); }},
      {kFinish, "Finish", 'F', [](frmWizard& w) { w.Finish(); }},
  };
  for (const NavEntry& entry : kEntries) {
    const auto index = static_cast<std::size_t>(entry.index);
    const QString name = Indexed("cmdNav", index);
    GradientButton& button =
        theme::AddButton(name.toLatin1().constData(), bar, entry.caption, entry.access_key);
    theme::Widen(button, kNavButtonWidth);
    layout.addWidget(&button);
    connect(&button, &QAbstractButton::clicked, this,
            [this, action = entry.action] { action(*this); });
    nav_buttons_[index] = &button;
  }
  // Last in the tab order.
  layout.insertWidget(1, &AddLookButton(bar));
  return bar;
}

}  // namespace dorvane
