#pragma once

#include <QString>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "tests/ui/wizard/script.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

struct ScriptPlayer;
using Verb = void (*)(ScriptPlayer& player, const QString& rest);

/// Plays a script on a wizard: the person, the servers, and who looks at the window.
struct ScriptPlayer {
  /// On scripted servers.
  ScriptPlayer() : ScriptPlayer([this] { return std::make_unique<WizardDriver>(script); }) {}
  /// On others.
  explicit ScriptPlayer(std::function<std::unique_ptr<WizardDriver>()> new_driver)
      : make_driver(std::move(new_driver)), driver(make_driver()) {}

  void Play(const WizardScript& wizard_script);

  /// What has been expected too early or in vain when the script is over.
  void ExpectNothingLeft();

  // For the verbs and the events of conversions.
  void Run(const Step& step);
  /// Takes keys from here on. A box that goes gives the focus back in its own time; a platform
  /// without a window manager may have activated the window while the box blocked it.
  void Activate();
  /// Chooses a file in the dialog that a button opens.
  void ChooseFile(const QByteArray& button, const QString& dialog, const QString& file);
  /// Of a script's file, or of the wizard's kLastRun.
  std::filesystem::path PathOf(const QString& file) const;
  /// A new wizard in the place of this one, which may know what this one has kept.
  void AnotherWizard(bool with_last_run);
  /// The next box that was not looked at, "TITLE: text"; "none".
  QString TakeBox();
  /// Steps for while the box of that number is seen.
  void AtBox(int number, const Step& step);
  /// Adds an event to what the next conversions tell.
  void Tell(const std::string& event, const QString& text);

  static constexpr const char* kLastRun = "config";
  std::map<QString, QString> words;        // "{port}": what stands for it
  std::map<std::string, Verb> more_verbs;  // of the scripts of one program
  TempFolder folder;
  Script script;
  std::function<std::unique_ptr<WizardDriver>()> make_driver;
  std::unique_ptr<WizardDriver> driver;
  std::deque<SeenBox> boxes;
  std::multimap<int, Step> at_boxes;
  std::vector<Step> meanwhile;  // of the person, while a conversion waits for it
  std::vector<std::function<void(IConversionListener&)>> events;
  NameList asked_for;  // the tables of the last conversion
};

/// Null when there is no such verb (script_acts.cpp, script_expectations.cpp).
Verb FindAct(const std::string& name);
Verb FindExpectation(const std::string& name);

using Event = void (*)(ScriptPlayer& player, IConversionListener& listener, const QString& text);
/// Null when there is no such event (script_events.cpp).
Event FindEvent(const std::string& name);

/// The pages by their names in scripts: "mssql-source".
int PageOf(const QString& name);
/// A text without its quotes, and with "encrypted(x)" as files keep a password.
QString TextIn(QString text);
/// A name, and what follows it.
std::pair<QByteArray, QString> NameAndText(const QString& rest);
/// "TITLE: text" of a box or a failure.
std::pair<std::string, std::string> TitleAndText(const QString& rest);
/// "..." at an end of what is expected stands for more.
void ExpectText(const QString& shown, const QString& expected);
/// "7 text": a failure of that number.
[[noreturn]] void ThrowRunTimeError(const QString& number_and_text);

}  // namespace dorvane::test
