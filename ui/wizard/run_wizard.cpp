#include "ui/wizard/run_wizard.h"

#include <QApplication>
#include <QDesktopServices>
#include <QIcon>
#include <QUrl>
#include <memory>

#include "job/endpoints.h"
#include "job/program_folder.h"
#include "ui/controls/window_style.h"
#include "ui/dialogs/message_box.h"
#include "ui/help/html_help_viewer.h"
#include "ui/schedule/frm_schedule.h"
#include "ui/wizard/frm_wizard.h"

namespace dorvane {
namespace {

void ShowSchedule(const IDatabase& src, const IDatabase& dest, const NameList& tables,
                  QWidget* parent) {
  const ScheduleServices services{.program_folder = ProgramFolder(),
                                  .settings_folder = SettingsFolder(),
                                  .show_message = ShowMessage};
  frmSchedule(src, dest, tables, services, parent).exec();
}

QIcon ProgramIcon() {
  QIcon icon;
  for (const int size : {48, 128, 256}) icon.addFile(QString(":/icons/dorvane-%1.png").arg(size));
  return icon;
}

}  // namespace

int RunWizard(int argc, char** argv) {
  QApplication app(argc, argv);
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
      .open_address =
          [](const std::string& address) {
            QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
          },
  });
  QObject::connect(&wizard, &frmWizard::Closed, [] { QCoreApplication::exit(0); });
  wizard.show();
  wizard.Load();
  return QApplication::exec();
}

}  // namespace dorvane
