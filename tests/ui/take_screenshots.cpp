// Saves pictures of every window into a folder, for looking at: take_screenshots FOLDER SKINS
// HELP_FILE. QT_SCALE_FACTOR=2 gives them at 200 %.
#include <QApplication>
#include <QDir>
#include <QTimer>

#include "tests/ui/scripted_endpoint.h"
#include "tests/ui/wizard_driver.h"
#include "ui/dialogs/frm_msg_box.h"
#include "ui/dialogs/frm_wait.h"
#include "ui/dialogs/message_box.h"
#include "ui/dialogs/skin_module.h"
#include "ui/help/help_window.h"

namespace dorvane::test {
namespace {

class Camera {
 public:
  explicit Camera(const QString& folder) : folder_(folder) { folder_.mkpath("."); }

  void Take(QWidget& window, const QString& name) {
    QApplication::processEvents();
    window.grab().save(folder_.filePath(name + ".png"));
  }

 private:
  QDir folder_;
};

/// Enough of them to scroll.
NameList Tables() {
  NameList names = {"Departments", "Employees", "Countries", "Warehouses",
                    "Products",    "Stocks",    "Shipments", "Couriers",
                    "Customers",   "Invoices",  "Suppliers", "Order Details"};
  for (int year = 1999; year <= 2026; ++year) names.push_back("Orders " + std::to_string(year));
  return names;
}

/// Stops in the middle of a table's rows.
void TransferHalf(IConversionListener& listener, const NameList& tables) {
  listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), true);
  listener.TableConversionStarted(tables[0]);
  listener.TableConversionSuccessed(tables[0]);
  listener.TableConversionStarted(tables[1]);
  listener.TableContentTransferStarted(tables[1], 500'000);
  for (int i = 0; i < 123'456; ++i) listener.TableRecordConverted();
  listener.TableRelationsConversionStarted(tables[0]);
  listener.TableContentTransferStarted(tables[1], 500'000);
  for (int i = 0; i < 123'456; ++i) listener.TableRecordConverted();
}

void TransferAll(IConversionListener& listener, const NameList& tables) {
  listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), false);
  for (const std::string& table : tables) {
    listener.TableConversionStarted(table);
    listener.TableContentTransferStarted(table, 5'000);
    for (int i = 0; i < 5'000; ++i) listener.TableRecordConverted();
    listener.TableConversionSuccessed(table);
  }
  listener.ConversionEnded();
}

/// Every page of one direction; the last after `transfer`, under the name `end`.
void TakeWizard(Camera& camera, bool from_ms_sql,
                void (*transfer)(IConversionListener&, const NameList&), const QString& end) {
  Script script;
  script.tables = Tables;
  script.transfer = transfer;
  WizardDriver driver(script);
  const QString direction = from_ms_sql ? "mssql" : "mysql";
  driver.Window().show();
  driver.Click(from_ms_sql ? "optMsSqlToMySql" : "optMySqlToMsSql");
  if (from_ms_sql) camera.Take(driver.Window(), "page0");
  driver.Next();
  camera.Take(driver.Window(), direction + "-source");
  driver.Click(from_ms_sql ? "cmdSrcConnect" : "cmdDir2MysqlConnect");
  camera.Take(driver.Window(), direction + "-source-connected");
  driver.Next();
  camera.Take(driver.Window(), direction + "-destination");
  driver.Click(from_ms_sql ? "optExistingDb" : "opnDir2MsSqlExistingDb");
  driver.Click(from_ms_sql ? "cmdDestConnect" : "cmdDir2MsSqlConnect");
  camera.Take(driver.Window(), direction + "-destination-connected");
  driver.Next();
  driver.Click("cmdSLR");
  driver.Click("cmdSLR");
  driver.Click("cmdSLR");
  camera.Take(driver.Window(), direction + "-tables");
  driver.Next();
  camera.Take(driver.Window(), direction + "-ready");
  driver.Click("cmdTransferTables");
  camera.Take(driver.Window(), direction + "-" + end);
}

void TakeBox(Camera& camera, const QString& name, MessageBoxKind kind, const QString& text,
             std::int32_t style, const std::filesystem::path& skin) {
  frmMsgBox box;
  QTimer::singleShot(50, &box, [&] {
    LoadSkin(box, skin);
    camera.Take(box, name);
    box.done(0);
  });
  box.Run(kind, text, style, "MS SQL Server");
}

}  // namespace
}  // namespace dorvane::test

int main(int argc, char** argv) {
  using namespace dorvane;
  using namespace dorvane::test;
  QApplication app(argc, argv);
  if (argc != 4) return 2;
  Camera camera(argv[1]);
  const std::filesystem::path skins = argv[2];
  QApplication::setStyle("Fusion");

  TakeWizard(camera, true, TransferHalf, "transfer");
  TakeWizard(camera, false, TransferHalf, "transfer");
  TakeWizard(camera, true, TransferAll, "finished");
  const QString failed =
      "MS SQL Server can not be found at that server. Make sure that you entered the correct host "
      "name";
  for (const char* skin : {"Blue", "Heather", "none"}) {
    const QString suffix = QStringLiteral("-") + skin;
    TakeBox(camera, "box-error" + suffix, MessageBoxKind::kOk, failed, message_style::kError,
            skins / skin);
    TakeBox(camera, "box-question" + suffix, MessageBoxKind::kYesNo,
            "Are you sure you want to exit?", message_style::kQuestion, skins / skin);
  }
  QString long_text = failed + "\n\n" + QString(90, 'x') + "\n";
  for (int i = 0; i < 20; ++i) long_text += failed + "\n";
  TakeBox(camera, "box-long", MessageBoxKind::kOk, long_text, message_style::kInformation,
          skins / "Blue");
  TakeBox(camera, "box-warning", MessageBoxKind::kOk, "Please click connect to database button",
          message_style::kPlain, skins / "Blue");
  frmWait wait;
  wait.show();
  camera.Take(wait, "wait");
  HelpWindow help(argv[3]);
  help.show();
  help.ShowContext(3);
  camera.Take(help, "help");
  return 0;
}
