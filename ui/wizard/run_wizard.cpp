#include "ui/wizard/run_wizard.h"

#include <QApplication>
#include <QIcon>
#include <cstdlib>
#include <memory>

#include "job/endpoints.h"
#include "job/program_folder.h"
#include "ui/controls/window_style.h"
#include "ui/dialogs/message_box.h"
#include "ui/help/html_help_viewer.h"
#include "ui/schedule/frm_schedule.h"
#include "ui/schedule/task_list_dialog.h"
#include "ui/wizard/frm_wizard.h"

namespace dorvane {

namespace {

Messages DialogMessages() {
  return {.show = ShowMessage, .ask = [](std::string_view question) {
            return AskYesNo(question, message_style::kQuestion, "") == kAnswerYes;
          }};
}

void ShowSchedule(const IDatabase& src, const IDatabase& dest, const NameList& tables,
                  QWidget* parent) {
  const ScheduleServices services{.program_folder = ProgramFolder(),
                                  .settings_folder = SettingsFolder(),
                                  .messages = DialogMessages()};
  frmSchedule(src, dest, tables, services, parent).exec();
}

void ShowTasks(QWidget* parent) {
  TaskListDialog(scheduler::MakeTaskScheduler(), DialogMessages(), parent).exec();
}

/// The application on its display. Qt ends the program where there is none, with a core dump; this
/// way `no_display` does.
std::unique_ptr<QApplication> OpenDisplay(int& argc, char** argv, NoDisplay no_display) {
  static NoDisplay end_program = nullptr;
  static QtMessageHandler usual_handler = nullptr;
  end_program = no_display;
  usual_handler = qInstallMessageHandler(
      [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (type == QtFatalMsg) end_program();
        usual_handler(type, context, text);
      });
  auto app = std::make_unique<QApplication>(argc, argv);
  qInstallMessageHandler(nullptr);
  return app;
}

QIcon ProgramIcon() {
  QIcon icon;
  for (const int size : {48, 128, 256}) icon.addFile(QString(":/icons/dorvane-%1.png").arg(size));
  return icon;
}

}  // namespace

int RunWizard(int argc, char** argv, const std::string& settings_file, NoDisplay no_display) {
  const auto app = OpenDisplay(argc, argv, no_display);
  QApplication::setApplicationName("Dorvane");
  QApplication::setWindowIcon(ProgramIcon());
  // Desktops that take a window's icon from its desktop entry find it by this name.
  QGuiApplication::setDesktopFileName("dorvane");
  QApplication::setStyle(std::make_unique<WindowStyle>().release());
  // A message box may come and go while no other window is open yet.
  QApplication::setQuitOnLastWindowClosed(false);

  HTMLHelpViewer help;
  help.SetHelpFile(ProgramFolder() / "Help.chm");
  frmWizard wizard({
      .make_endpoint = MakeEndpoint,
      .settings_folder = SettingsFolder(),
      .show_help = [&help](std::int32_t context) { help.ShowContext(context); },
      .show_schedule = ShowSchedule,
      .show_tasks = ShowTasks,
      .end_process = [] { std::_Exit(0); },
  });
  QObject::connect(&wizard, &frmWizard::Closed, [] { QCoreApplication::exit(0); });
  wizard.show();
  wizard.Load();
  if (!settings_file.empty()) wizard.OpenSettings(settings_file);
  return QApplication::exec();
}

}  // namespace dorvane
