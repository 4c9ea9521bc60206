// Saves pictures of every window into a folder, for looking at: take_screenshots FOLDER SKINS
// HELP_FILE. QT_SCALE_FACTOR=2 gives them at 200 %. With SKIN and PALETTE (light, dark) behind
// these the windows are shown in that skin on such a desktop, and the pictures are put on a few
// sheets.
#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QSettings>
#include <QTimer>
#include <functional>
#include <semaphore>
#include <thread>

#include "platform/scheduler/cron_scheduler.h"
#include "tests/platform/scheduler/file_crontab.h"
#include "tests/ui/contrast.h"
#include "tests/ui/wizard/scripted_endpoint.h"
#include "tests/ui/wizard/wizard_driver.h"
#include "tools/contact_sheet.h"
#include "ui/controls/window_style.h"
#include "ui/dialogs/frm_msg_box.h"
#include "ui/dialogs/message_box.h"
#include "ui/dialogs/skin_module.h"
#include "ui/help/help_window.h"
#include "ui/look/current_look.h"
#include "ui/look/skins.h"
#include "ui/schedule/frm_schedule.h"
#include "ui/schedule/task_settings_dialog.h"

namespace dorvane::test {

namespace {

class Camera {
 public:
  /// Puts every picture on the sheets instead when there are any.
  explicit Camera(const QString& folder, ContactSheets* sheets = nullptr)
      : folder_(folder), sheets_(sheets) {
    folder_.mkpath(".");
  }

  void Take(QWidget& window, const QString& name) {
    QApplication::processEvents();
    QPixmap picture = window.grab();
    if (!window.mask().isEmpty()) CutOut(picture, window.mask());
    if (sheets_) return sheets_->Add(picture, name);
    picture.save(folder_.filePath(name + ".png"));
  }

 private:
  /// Leaves what lies outside a window's shape transparent, as a desktop shows it.
  static void CutOut(QPixmap& picture, const QRegion& shape) {
    QPixmap cut(picture.size());
    cut.setDevicePixelRatio(picture.devicePixelRatio());
    cut.fill(Qt::transparent);
    QPainter painter(&cut);
    painter.setClipRegion(shape);
    painter.drawPixmap(0, 0, picture);
    painter.end();
    picture = cut;
  }

  QDir folder_;
  ContactSheets* sheets_;
};

const std::string kLongName =
    "a_table_that_carries_every_word_of_its_meaning_in_its_name_as_some_generated_schemas_do_"
    "up_to_the_limit_of_128_characters_______";

/// Enough of them to scroll.
NameList Tables() {
  NameList names = {"Departments", "Employees", "Countries", "Warehouses",
                    "Products",    "Stocks",    "Shipments", "Couriers",
                    "Customers",   "Invoices",  "Suppliers", "Order Details"};
  for (int year = 1999; year <= 2026; ++year) names.push_back("Orders " + std::to_string(year));
  return names;
}

std::vector<TableSize> Sizes() {
  std::vector<TableSize> sizes;
  std::int64_t rows = 27;
  for (const std::string& name : Tables()) {
    sizes.push_back({name, rows, rows * 86 + 16'384});
    rows = rows * 7 % 400'000;
  }
  return sizes;
}

/// A transfer that stops in the middle of a table's rows until it has been looked at.
class HeldTransfer {
 public:
  void operator()(IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(static_cast<std::int16_t>(tables.size()), true);
    listener.TableConversionStarted(tables[0]);
    listener.TableConversionSuccessed(tables[0]);
    listener.TableConversionStarted(tables[1]);
    listener.TableContentTransferStarted(tables[1], 120'000);
    for (int row = 0; row < 53'456; ++row) {
      if (row % 2'000 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
      listener.TableRecordConverted();
    }
    reached_.release();
    go_on_.acquire();
    for (std::size_t table = 1; table < tables.size(); ++table) {
      listener.TableConversionSuccessed(tables[table]);
    }
    for (const std::string& table : tables) listener.TableRelationsConversionStarted(table);
    listener.ConversionEnded();
  }

  /// Calls `look` in this thread while the transfer waits.
  void WhenReached(std::function<void()> look) {
    timer_.callOnTimeout([this, look = std::move(look)] {
      if (!reached_.try_acquire()) return;
      timer_.stop();
      // The rows are on the window within this time.
      QTest::qWait(100);
      look();
      go_on_.release();
    });
    timer_.start(20);
  }

 private:
  std::binary_semaphore reached_{0};
  std::binary_semaphore go_on_{0};
  QTimer timer_;
};

struct Direction {
  const char *option, *source_connect, *existing, *destination_connect;
};
constexpr Direction kFromMsSql{"optMsSqlToMySql", "cmdSrcConnect", "optExistingDb",
                               "cmdDestConnect"};
constexpr Direction kFromMySql{"optMySqlToMsSql", "cmdDir2MysqlConnect", "opnDir2MsSqlExistingDb",
                               "cmdDir2MsSqlConnect"};

void FillPreview(PreviewPage& page) {
  page.Begin();
  page.Append(
      "-- What a run would do: 1 table from MS SQL Server sqlhost/Company to MySQL dbhost/company. "
      "Nothing was changed.\n\n-- Table Couriers\n-- Couriers is there with 3 rows\n"
      "-- Note: Table Couriers: the 3 rows of Couriers on the destination are dropped\n"
      "Drop Table If Exists `Couriers`;\nCreate Table `Couriers`(`CourierId` INT NOT NULL);\n"
      "-- 4 rows are copied");
  page.End("Something would be lost or changed: see the lines with \"Lost:\" and \"Note:\".");
}

/// Every page of one direction, the last one during and after a transfer.
void TakeWizard(Camera& camera, const Direction& direction, QString prefix,
                const std::function<void(WizardDriver&, Script&)>& prepare) {
  Script script;
  script.tables = Tables;
  script.sizes = Sizes;
  WizardDriver driver(script);
  prepare(driver, script);
  const auto take = [&](const char* name) { camera.Take(driver.Window(), prefix + name); };
  driver.on_box = [&](QWidget& box) { camera.Take(box, prefix + "box-summary"); };
  driver.Click(direction.option);
  take("direction");
  driver.Next();
  take("source");
  script.databases = [databases = script.databases] {
    std::this_thread::sleep_for(std::chrono::milliseconds(900));
    return databases();
  };
  QTimer::singleShot(600, [&] { take("wait"); });
  driver.Click(direction.source_connect);
  take("source-connected");
  driver.Next();
  take("destination");
  driver.Click(direction.existing);
  driver.Click(direction.destination_connect);
  take("destination-connected");
  driver.Next();
  QTest::qWait(100);  // the sizes are there
  for (int count = 0; count < 3; ++count) driver.Click("cmdSLR");
  take("tables");
  driver.Next();
  take("ready");
  script.transfer = [](IConversionListener& listener, const NameList&) {
    listener.ConversionEnded();
  };
  driver.Click("cmdPreview");
  FillPreview(*driver.Window().findChild<PreviewPage*>());
  take("preview");
  driver.Back();
  HeldTransfer transfer;
  transfer.WhenReached([&] { take("transfer"); });
  script.transfer = [&](IConversionListener& listener, const NameList& tables) {
    script.host->Inform("Table " + tables[0] +
                        ": 3 of 107 rows were there already and were left out");
    script.host->Inform("Table " + tables[1] + ": 12 dates before 1753-01-01 were raised to it");
    transfer(listener, tables);
  };
  driver.Click("cmdTransferTables");
  take("finished");
}

void LeaveAsItIs(WizardDriver&, Script&) {}

void MakeSmall(WizardDriver& driver, Script&) {
  driver.Window().resize(1, 1);
}

void GiveLongNames(WizardDriver& driver, Script& script) {
  for (const std::string page : {"Dir2Mysql", "Dir2MsSql"}) {
    driver.Get<QComboBox>(("cmb" + page + "Encryption").c_str()).setCurrentText("Verified");
    driver.Get<QLineEdit>(("txt" + page + "CaFile").c_str()).setText("/etc/ssl/our-own.pem");
  }
  script.databases = [] { return NameList{kLongName, "x"}; };
  script.tables = [] { return NameList{kLongName + "1", kLongName + "2", kLongName + "3", "x"}; };
}

void TakeSchedule(Camera& camera) {
  const TempFolder folder;
  const auto crontab = scheduler::MakeFileCrontab(folder.Path());
  ScheduleServices services;
  services.make_scheduler = [&] { return std::make_unique<scheduler::CronScheduler>(crontab); };
  services.program_folder = "/usr/lib/dorvane";
  services.settings_folder = folder.Path();
  services.messages = {.show = ShowMessage, .ask = [](std::string_view) { return true; }};
  PlainEndpoint src(ServerKind::MsSql);
  PlainEndpoint dest(ServerKind::MySql);
  frmSchedule dialog(src, dest, Tables(), services);
  dialog.show();
  dialog.findChild<QLineEdit*>("txtTaskName")->setText("Company nightly");
  dialog.findChild<QLineEdit*>("txtLogFile")->setText("company.txt");
  camera.Take(dialog, "schedule");
  dialog.findChild<GradientButton*>("cmdSchedule")->click();
  camera.Take(*dialog.findChild<TaskSettingsDialog*>(), "schedule-settings");
}

void TakeBox(Camera& camera, const QString& name, MessageBoxKind kind, const QString& text,
             std::int32_t style, const std::filesystem::path& skin) {
  frmMsgBox box;
  QTimer::singleShot(50, &box, [&] {
    LoadSkin(box, skin);
    camera.Take(box, name);
    box.done(0);
  });
  box.Run(kind, text, style, "MS SQL Server", kAnswerYes);
}

const QString kFailed =
    "MS SQL Server can not be found at that server. Make sure that you entered the correct host "
    "name";

/// Everything but the wizard, in the skin that is chosen.
void TakeDialogs(Camera& camera, const std::filesystem::path& skin, const QString& help_file) {
  QString long_text = kFailed + "\n\n" + QString(90, 'x') + "\n";
  for (int i = 0; i < 20; ++i) long_text += kFailed + "\n";
  TakeBox(camera, "box-long", MessageBoxKind::Ok, long_text, message_style::kInformation, skin);
  TakeBox(camera, "box-warning", MessageBoxKind::Ok, "Please click connect to database button",
          message_style::kPlain, skin);
  TakeSchedule(camera);
  HelpWindow help(help_file.toStdString());
  help.show();
  help.ShowContext(3);
  camera.Take(help, "help");
}

void TakeBoxes(Camera& camera, const QString& suffix, const std::filesystem::path& skin) {
  TakeBox(camera, "box-error" + suffix, MessageBoxKind::Ok, kFailed, message_style::kError, skin);
  TakeBox(camera, "box-question" + suffix, MessageBoxKind::YesNo, "Are you sure you want to exit?",
          message_style::kQuestion, skin);
}

void TakeEverything(const QString& folder, const std::filesystem::path& skins,
                    const QString& help_file) {
  Camera camera(folder);
  TakeWizard(camera, kFromMsSql, "mssql-", LeaveAsItIs);
  TakeWizard(camera, kFromMySql, "mysql-", LeaveAsItIs);
  TakeWizard(camera, kFromMsSql, "small-", MakeSmall);
  TakeWizard(camera, kFromMySql, "long-", GiveLongNames);
  for (const char* skin : {"Blue", "Heather", "none"}) {
    TakeBoxes(camera, QStringLiteral("-") + skin, skins / skin);
  }
  TakeDialogs(camera, skins / "Blue", help_file);
  for (const QString& skin : {kLightSkin, kDarkSkin}) {
    ChooseSkin(skin);
    TakeWizard(camera, kFromMsSql, skin.toLower() + "-", LeaveAsItIs);
  }
}

void TakeSheets(const QString& folder, const std::filesystem::path& skins, const QString& help_file,
                const QString& skin, const QString& palette) {
  if (palette == "dark") QApplication::setPalette(DarkPalette());
  QApplication::processEvents();
  ChooseSkin(skin);
  const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", "1");
  ContactSheets sheets(folder, QStringList{skin, palette, scale}.join('-'));
  Camera camera(folder, &sheets);
  TakeWizard(camera, kFromMsSql, "mssql-", LeaveAsItIs);
  TakeWizard(camera, kFromMySql, "mysql-", LeaveAsItIs);
  TakeBoxes(camera, "", skins / skin.toStdString());
  TakeDialogs(camera, skins / skin.toStdString(), help_file);
}

}  // namespace
}  // namespace dorvane::test

int main(int argc, char** argv) {
  using namespace dorvane;
  using namespace dorvane::test;
  // The user's own settings stay out of the pictures.
  const TempFolder settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     QString::fromStdString(settings.Path().string()));
  QApplication app(argc, argv);
  QApplication::setStyle(std::make_unique<WindowStyle>().release());
  if (argc == 4) {
    TakeEverything(argv[1], argv[2], argv[3]);
  } else if (argc == 6) {
    TakeSheets(argv[1], argv[2], argv[3], argv[4], argv[5]);
  } else {
    return 2;
  }
  return 0;
}
