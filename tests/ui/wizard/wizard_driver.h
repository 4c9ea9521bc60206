#pragma once

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"
#include "tests/ui/wizard/scripted_endpoint.h"
#include "ui/controls/gradient_button.h"
#include "ui/controls/name_list_view.h"
#include "ui/dialogs/message_text.h"
#include "ui/wizard/frm_wizard.h"

namespace dorvane::test {

/// A message box as it was seen.
struct SeenBox {
  QString title;
  QString text;
  bool operator==(const SeenBox&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const SeenBox& box) {
  return out << box.title.toStdString() << ": " << box.text.toStdString();
}

/// A wizard, on scripted servers as a rule, driven as a person does: by clicks and keys on its
/// controls. Every message box that appears is noted and answered with its OK or Yes button, or
/// with No.
class WizardDriver {
 public:
  explicit WizardDriver(Script& script)
      : WizardDriver([&script](ServerKind kind, IRunHost& host) {
          // Others than the run itself ask in silence.
          if (dynamic_cast<IConversionListener*>(&host)) script.host = &host;
          return std::make_unique<ScriptedEndpoint>(kind, script);
        }) {}

  /// On other endpoints, real ones perhaps.
  explicit WizardDriver(HostedEndpointFactory make_endpoint)
      : wizard_({.make_endpoint = std::move(make_endpoint),
                 .settings_folder = folder_.Path(),
                 .show_help = [this](std::int32_t context) { help_contexts.push_back(context); },
                 .show_schedule = [this](const IDatabase&, const IDatabase&, const NameList& tables,
                                         QWidget*) { scheduled = tables; },
                 .show_tasks = [this](QWidget*) { ++tasks_shown; },
                 .end_process = [this] { ++ended; }}) {
    watcher_.setInterval(5);
    QObject::connect(&watcher_, &QTimer::timeout, [this] { AnswerBox(); });
    watcher_.start();
    QObject::connect(&wizard_, &frmWizard::Closed, [this] { closed = true; });
    wizard_.show();
    wizard_.Load();
  }

  frmWizard& Window() { return wizard_; }
  const std::filesystem::path& Folder() const { return folder_.Path(); }

  template <typename T = QWidget>
  T& Get(const char* name) {
    T* found = wizard_.findChild<T*>(name);
    if (!found) throw std::logic_error(std::string("no control ") + name);
    return *found;
  }

  void Click(const char* name) {
    QWidget& control = Get(name);
    // Options and check boxes react near their left end only.
    const bool is_button = qobject_cast<GradientButton*>(&control) != nullptr;
    const QPoint position = is_button ? control.rect().center() : QPoint(8, control.height() / 2);
    QTest::mouseClick(&control, Qt::LeftButton, {}, position);
    QApplication::processEvents();
  }
  void Next() { Click("cmdNav3"); }
  void Back() { Click("cmdNav2"); }
  /// On to a page; those before it are connected, and every table is chosen.
  void GoTo(int page) {
    static const std::map<int, const char*> kButtons = {
        {page::kMsSqlSource, "cmdSrcConnect"},
        {page::kMySqlDestination, "cmdDestConnect"},
        {page::kMySqlSource, "cmdDir2MysqlConnect"},
        {page::kMsSqlDestination, "cmdDir2MsSqlConnect"},
        {page::kTables, "cmdMLR"}};
    while (wizard_.CurrentPage() != page) {
      const int before = wizard_.CurrentPage();
      if (const auto found = kButtons.find(before); found != kButtons.end()) Click(found->second);
      Next();
      if (wizard_.CurrentPage() == before) throw std::logic_error("the page can't be left");
    }
  }
  void Type(const char* name, const QString& text) {
    auto& field = Get<QLineEdit>(name);
    field.setFocus();
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
  }
  /// Whether the control has the focus while the wizard is the active window.
  bool HasFocus(const char* name) { return wizard_.focusWidget() == &Get(name); }
  QString Text(const char* name) { return Get<QLineEdit>(name).text(); }
  /// What a control shows; a bar shows "3 of 10".
  QString Shown(const char* name) {
    QWidget& control = Get(name);
    if (auto* button = qobject_cast<GradientButton*>(&control)) return button->Caption();
    if (auto* box = qobject_cast<QComboBox*>(&control)) return box->currentText();
    if (auto* text = qobject_cast<QPlainTextEdit*>(&control)) return text->toPlainText();
    if (auto* bar = qobject_cast<QProgressBar*>(&control)) {
      return QString("%1 of %2").arg(bar->value()).arg(bar->maximum());
    }
    return control.property("text").toString();
  }
  QString LabelText(const char* name) { return Get<QLabel>(name).text(); }
  bool IsEnabled(const char* name) {
    QWidget& control = Get(name);
    return control.isEnabledTo(control.parentWidget());
  }
  /// The entries of a list, of a table its first column, as they are shown.
  NameList Names(const char* list) { return Column(list, 0); }
  NameList Column(const char* list, int column) {
    const auto* box = qobject_cast<QComboBox*>(&Get(list));
    const QAbstractItemModel& model = box ? *box->model() : *Get<QAbstractItemView>(list).model();
    NameList texts;
    for (int row = 0; row < model.rowCount(); ++row) {
      texts.push_back(model.index(row, column).data().toString().toStdString());
    }
    return texts;
  }

  /// Boxes seen since the last call.
  std::vector<SeenBox> TakeBoxes() { return std::exchange(boxes_, {}); }

  std::vector<std::int32_t> help_contexts;
  NameList scheduled;
  int tasks_shown = 0;
  std::atomic<int> ended = 0;  // times that the process was to end at once
  bool closed = false;
  bool answer_no = false;
  /// Called for each box before it is answered.
  std::function<void(QWidget& box)> on_box;

 private:
  void AnswerBox() {
    QWidget* box = QApplication::activeModalWidget();
    if (!box || box->objectName() != "frmMsgBox") return;
    auto* no = box->findChild<GradientButton*>("cmdNo");
    boxes_.push_back({box->findChild<QLabel*>("lblTitle")->text(),
                      box->findChild<MessageText*>("lblMessage")->text()});
    if (on_box) on_box(*box);
    auto* button = answer_no && no->isVisible() ? no : box->findChild<GradientButton*>("cmdOK");
    QTest::mouseClick(button, Qt::LeftButton);
  }

  TempFolder folder_;
  std::vector<SeenBox> boxes_;
  QTimer watcher_;
  frmWizard wizard_;
};

}  // namespace dorvane::test
