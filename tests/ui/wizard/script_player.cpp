#include "tests/ui/wizard/script_player.h"

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QRegularExpression>
#include <fstream>

#include "job/encryptor.h"
#include "tests/support/process.h"

namespace dorvane::test {

int PageOf(const QString& name) {
  static const std::map<QString, int> kPages = {{"direction", page::kDirection},
                                                {"mssql-source", page::kMsSqlSource},
                                                {"mysql-destination", page::kMySqlDestination},
                                                {"mysql-source", page::kMySqlSource},
                                                {"mssql-destination", page::kMsSqlDestination},
                                                {"tables", page::kTables},
                                                {"transfer", page::kTransfer},
                                                {"preview", page::kPreview}};
  return kPages.at(name);
}

QString TextIn(QString text) {
  if (text.size() > 1 && text.startsWith('"') && text.endsWith('"')) {
    text = text.mid(1, text.size() - 2);
  }
  static const QRegularExpression secret(R"(encrypted\((.*?)\))");
  const auto found = secret.match(text);
  if (!found.hasMatch()) return text;
  const std::string password = Encryptor().Encrypt(found.captured(1).toStdString());
  return text.replace(found.captured(), QString::fromLatin1(password));
}

std::pair<QByteArray, QString> NameAndText(const QString& rest) {
  return {rest.section(' ', 0, 0).toUtf8(), rest.section(' ', 1)};
}

std::pair<std::string, std::string> TitleAndText(const QString& rest) {
  return {rest.section(": ", 0, 0).toStdString(), rest.section(": ", 1).toStdString()};
}

void ThrowRunTimeError(const QString& number_and_text) {
  const auto [number, text] = NameAndText(number_and_text);
  throw RunTimeError(number.toInt(), "script", text.toStdString());
}

void ScriptPlayer::Play(const WizardScript& wizard_script) {
  for (const Step& step : wizard_script.steps) {
    SCOPED_TRACE(wizard_script.file.filename().string() + ":" + std::to_string(step.line));
    Run(step);
  }
  ExpectNothingLeft();
}

void ScriptPlayer::ExpectNothingLeft() {
  EXPECT_EQ(TakeBox(), "none");
  EXPECT_TRUE(at_boxes.empty()) << "a box did not come";
  EXPECT_TRUE(meanwhile.empty()) << "the person had no turn";
}

void ScriptPlayer::Run(const Step& step) {
  SCOPED_TRACE(step.verb + " " + step.rest);
  const auto more = more_verbs.find(step.verb);
  Verb verb = more == more_verbs.end() ? FindAct(step.verb) : more->second;
  if (!verb) verb = FindExpectation(step.verb);
  ASSERT_NE(verb, nullptr) << "no such verb";
  QString rest = QString::fromStdString(step.rest);
  for (const auto& [word, meaning] : words) rest.replace(word, meaning);
  verb(*this, rest);
}

void ScriptPlayer::Activate() {
  EXPECT_TRUE(QTest::qWaitFor([this] {
    QApplication::setActiveWindow(&driver->Window());
    driver->Window().activateWindow();
    return driver->Window().isActiveWindow() && !QApplication::activeModalWidget() &&
           QGuiApplication::focusWindow() == driver->Window().windowHandle();
  }));
}

void ScriptPlayer::ChooseFile(const QByteArray& button, const QString& dialog,
                              const QString& file) {
  QTimer::singleShot(0, &driver->Window(), [&] {
    auto* chooser = driver->Window().findChild<QFileDialog*>(dialog);
    chooser->selectFile(QString::fromStdString(PathOf(file).string()));
    QMetaObject::invokeMethod(chooser, "accept");
  });
  driver->Click(button);
}

std::filesystem::path ScriptPlayer::PathOf(const QString& file) const {
  return (file == kLastRun ? driver->Folder() : folder.Path()) / file.toStdString();
}

void ScriptPlayer::AnotherWizard(bool with_last_run) {
  const std::string last_run = ReadFile(PathOf(kLastRun));
  driver = make_driver();
  if (!with_last_run) return;
  std::ofstream(PathOf(kLastRun), std::ios::binary) << last_run;
  driver->Window().Load();
}

QString ScriptPlayer::TakeBox() {
  for (const SeenBox& box : driver->TakeBoxes()) boxes.push_back(box);
  if (boxes.empty()) return "none";
  const SeenBox box = boxes.front();
  boxes.pop_front();
  return box.title + ": " + QString(box.text).replace("\r\n", "\\n");
}

void ScriptPlayer::AtBox(int number, const Step& step) {
  at_boxes.emplace(number, step);
  driver->on_box = [this, seen = 0](QWidget&) mutable {
    const auto [first, last] = at_boxes.equal_range(++seen);
    for (auto at = first; at != last; ++at) Run(at->second);
    at_boxes.erase(first, last);
  };
}

void ScriptPlayer::Tell(const std::string& name, const QString& text) {
  const Event event = FindEvent(name);
  ASSERT_NE(event, nullptr) << "no such event";
  events.push_back([=, this](IConversionListener& listener) { event(*this, listener, text); });
  script.transfer = [this, told = events](IConversionListener& listener, const NameList& tables) {
    asked_for = tables;
    for (const auto& each : told) each(listener);
  };
}

}  // namespace dorvane::test
