// What the person does in scripts, and what the servers answer.
#include <gtest/gtest.h>

#include <QDropEvent>
#include <QMimeData>
#include <algorithm>
#include <fstream>

#include "tests/ui/wizard/script_player.h"

namespace dorvane::test {

namespace {

using Player = ScriptPlayer;

NameList NamesIn(const QString& text) {
  NameList names;
  if (text.isEmpty()) return names;
  for (const QString& name : text.split(" | ")) names.push_back(name.toStdString());
  return names;
}

// ---- the person

void Click(Player& player, const QString& names) {
  for (const QString& name : names.split(' ')) player.driver->Click(name.toUtf8());
}

void Type(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  player.driver->Type(name, TextIn(text));
}

/// Into a field that may be closed to the person.
void Set(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  player.driver->Get<QLineEdit>(name).setText(TextIn(text));
}

void Choose(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  player.driver->Get<QComboBox>(name).setCurrentText(text);
}

/// A key goes to what has the focus, or to a control that is named.
void Press(Player& player, const QString& rest) {
  const auto [keys, name] = NameAndText(rest);
  const QKeyCombination key = QKeySequence(QString(keys))[0];
  QWidget* control = name.isEmpty() ? nullptr : &player.driver->Get(name.toUtf8());
  if (!control) {
    player.Activate();
    control = player.driver->Window().focusWidget();
  }
  QTest::keyClick(control ? control : &player.driver->Window(), key.key(), key.keyboardModifiers());
  QApplication::processEvents();
}

void DoubleClick(Player& player, const QString& rest) {
  const auto [name, row] = NameAndText(rest);
  auto& list = player.driver->Get<NameListView>(name);
  const QPoint place = list.visualRect(list.model()->index(row.toInt(), 0)).center();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
}

/// The window as it is with these lines in the file of the last run.
void LastRun(Player& player, const QString& lines) {
  std::ofstream file(player.PathOf(ScriptPlayer::kLastRun), std::ios::binary);
  for (const QString& line : lines.split(" | ")) {
    file << TextIn(line).toLatin1().toStdString() << "\r\n";
  }
  file.close();
  player.driver->Window().Load();
}

/// Lines into a file of the script's.
void Write(Player& player, const QString& rest) {
  const auto [file, lines] = NameAndText(rest);
  std::ofstream out(player.PathOf(file));
  for (const QString& line : lines.split(" | ")) out << line.toStdString() << "\r\n";
}

/// True when the window takes the file, dropped on it as a file manager does.
bool IsTaken(Player& player, const QString& file) {
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(player.PathOf(file).string()))});
  QWidget& window = player.driver->Window();
  QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
  enter.ignore();
  QApplication::sendEvent(&window, &enter);
  if (!enter.isAccepted()) return false;
  QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &drop);
  QApplication::processEvents();
  return true;
}

/// An entry of a list by its name.
void SelectEntry(Player& player, const QString& rest) {
  const auto [name, entry] = NameAndText(rest);
  auto& list = player.driver->Get<NameListView>(name);
  const auto found = std::ranges::find(list.Names(), entry.toStdString());
  const int row = static_cast<int>(found - list.Names().begin());
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                    list.visualRect(list.model()->index(row, 0)).center());
}

void Save(Player& player, const QString& rest) {
  const QStringList words = rest.split(' ');
  player.ChooseFile(words[0].toUtf8(), words[1], words[2]);
}

void StepOf(const QString& text, const std::function<void(const Step&)>& use) {
  const auto [verb, rest] = NameAndText(text);
  use({0, verb.toStdString(), rest.toStdString()});
}

void AtBox(Player& player, const QString& rest) {
  const auto [number, step] = NameAndText(rest);
  StepOf(step, [&, at = number.toInt()](const Step& each) { player.AtBox(at, each); });
}

void Meanwhile(Player& player, const QString& rest) {
  StepOf(rest, [&](const Step& step) { player.meanwhile.push_back(step); });
}

// ---- the servers

/// "throw 7 text", "break text", "refuse TITLE: text", or else `answer`.
template <typename Answer>
std::function<Answer()> AnswerOf(Player& player, const QString& rest, Answer answer) {
  const auto [kind, text] = NameAndText(rest);
  if (kind == "throw") return [text]() -> Answer { ThrowRunTimeError(text); };
  if (kind == "break") return [text]() -> Answer { throw std::runtime_error(text.toStdString()); };
  if (kind != "refuse") return [answer] { return answer; };
  return [&player, text]() -> Answer {
    const auto [title, told] = TitleAndText(text);
    player.script.host->ConnectionFailed({told, "log", title});
    return {};
  };
}

std::function<std::optional<NameList>()> NamesOf(Player& player, const QString& rest) {
  return AnswerOf<std::optional<NameList>>(
      player, rest, rest == "none" ? std::nullopt : std::optional(NamesIn(rest)));
}

void Creation(Player& player, const QString& rest) {
  player.script.create = [answer = AnswerOf(player, rest, rest == "succeeds")](const std::string&) {
    return answer();
  };
}

void Tell(Player& player, const QString& rest) {
  const auto [event, text] = NameAndText(rest);
  if (event == "anew") return player.events.clear();
  player.Tell(event.toStdString(), text);
}

const std::map<std::string, Verb> kActs = {
    {"next", [](Player& p, const QString&) { p.driver->Next(); }},
    {"back", [](Player& p, const QString&) { p.driver->Back(); }},
    {"go-to", [](Player& p, const QString& page) { p.driver->GoTo(PageOf(page)); }},
    {"click", Click},
    {"double-click", DoubleClick},
    {"type", Type},
    {"set", Set},
    {"select", SelectEntry},
    {"choose", Choose},
    {"press", Press},
    {"focus", [](Player& p, const QString& name) { p.driver->Get(name.toUtf8()).setFocus(); }},
    {"refuse", [](Player& p, const QString&) { p.driver->answer_no = true; }},
    {"agree", [](Player& p, const QString&) { p.driver->answer_no = false; }},
    {"save", Save},
    {"write", Write},
    {"drop", [](Player& p, const QString& file) { EXPECT_TRUE(IsTaken(p, file)); }},
    {"drop-in-vain", [](Player& p, const QString& file) { EXPECT_FALSE(IsTaken(p, file)); }},
    {"another-wizard",
     [](Player& p, const QString& how) { p.AnotherWizard(how == "with last run"); }},
    {"close", [](Player& p, const QString&) { p.driver->Window().close(); }},
    {"last-run", LastRun},
    {"lose-folder",
     [](Player& p, const QString&) { std::filesystem::remove_all(p.driver->Folder()); }},
    {"at-box", AtBox},         // "2 text lblStatus Done": while the second box is seen
    {"meanwhile", Meanwhile},  // when a conversion says "meanwhile"
    {"databases", [](Player& p, const QString& rest) { p.script.databases = NamesOf(p, rest); }},
    {"tables", [](Player& p, const QString& rest) { p.script.tables = NamesOf(p, rest); }},
    {"creation", Creation},
    {"tell", Tell},
};

}  // namespace

Verb FindAct(const std::string& name) {
  const auto found = kActs.find(name);
  return found == kActs.end() ? nullptr : found->second;
}

}  // namespace dorvane::test
