// What scripts expect of the window, its boxes, its endpoints and its files.
#include <gtest/gtest.h>

#include <QClipboard>
#include <algorithm>
#include <set>

#include "tests/support/process.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/script_player.h"
#include "tests/ui/wizard/tab_order.h"

namespace dorvane::test {

namespace {

using Player = ScriptPlayer;

void ExpectNames(const NameList& names, const QString& expected) {
  QStringList texts;
  for (const std::string& name : names) texts << QString::fromStdString(name);
  EXPECT_EQ(texts.join(" | "), TextIn(expected));
}

// ---- what an endpoint has been given

QString Shown(const std::string& text) {
  return QString::fromStdString(text);
}
QString Shown(bool yes) {
  return yes ? "yes" : "no";
}
QString Shown(std::integral auto number) {
  return QString::number(number);
}
QString Shown(ado::Encryption encryption) {
  return QStringList{"offered", "required", "verified"}[static_cast<int>(encryption)];
}
QString Shown(TypeMapping types) {
  return types == TypeMapping::Exact ? "exact" : "classic";
}
QString Shown(ComputedColumns columns) {
  return columns == ComputedColumns::Generated ? "generated" : "values";
}
QString Shown(Verification verification) {
  return QStringList{"none", "counts", "values"}[static_cast<int>(verification)];
}

using Settings = ado::ConnectionSettings;
using Options = ConversionOptions;

template <auto member>
QString Setting(const IDatabase& endpoint) {
  return Shown(endpoint.Settings().*member);
}
template <auto member>
QString Option(const IDatabase& endpoint) {
  return Shown(endpoint.Options().*member);
}

const std::map<QString, QString (*)(const IDatabase&)> kFields = {
    {"kind",
     [](const IDatabase& e) {
       return QString(e.Kind() == ServerKind::MySql ? "MySQL" : "MS SQL");
     }},
    {"server", Setting<&Settings::server>},
    {"port", Setting<&Settings::port>},
    {"user", Setting<&Settings::user_id>},
    {"password", Setting<&Settings::password>},
    {"database", Setting<&Settings::database>},
    {"windows-login", Setting<&Settings::integrated_security>},
    {"encryption", Setting<&Settings::encryption>},
    {"ca-file", Setting<&Settings::ca_file>},
    {"mode", Option<&Options::convert_mode>},
    {"rows", Option<&Options::copy_table_content>},
    {"underscores", Option<&Options::replace_space_with_underscore>},
    {"relationships", Option<&Options::convert_relationships>},
    {"types", Option<&Options::types>},
    {"computed-columns", Option<&Options::computed_columns>},
    {"verification", Option<&Options::verification>},
};

void ExpectField(const IDatabase& endpoint, const QString& rest) {
  const auto [field, value] = NameAndText(rest);
  EXPECT_EQ(kFields.at(field)(endpoint), TextIn(value));
}

// ---- what is expected

template <bool (*is)(Player& player, const QByteArray& name), bool expected>
void Each(Player& player, const QString& names) {
  for (const QString& name : names.split(' ')) {
    EXPECT_EQ(is(player, name.toUtf8()), expected) << name.toStdString();
  }
}

bool IsEnabled(Player& player, const QByteArray& name) {
  return player.driver->IsEnabled(name);
}
bool IsShown(Player& player, const QByteArray& name) {
  return player.driver->Get(name).isVisible();
}
bool IsChecked(Player& player, const QByteArray& name) {
  return player.driver->Get<QAbstractButton>(name).isChecked();
}
bool IsDefault(Player& player, const QByteArray& name) {
  player.Activate();
  return player.driver->Get<GradientButton>(name).IsDefault();
}
bool HasFocus(Player& player, const QByteArray& name) {
  player.Activate();
  return player.driver->HasFocus(name);
}

void Text(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  ExpectText(player.driver->Shown(name).replace('\n', "\\n"), TextIn(text));
}

void List(Player& player, const QString& rest) {
  const auto [name, entries] = NameAndText(rest);
  ExpectNames(player.driver->Names(name), entries);
}

void Column(Player& player, const QString& rest) {
  const auto [name, column] = NameAndText(rest);
  const auto [number, entries] = NameAndText(column);
  ExpectNames(player.driver->Column(name, number.toInt()), entries);
}

/// A column in any order; what is expected stands in the order of the alphabet.
void Entries(Player& player, const QString& rest) {
  const auto [name, column] = NameAndText(rest);
  const auto [number, entries] = NameAndText(column);
  NameList shown = player.driver->Column(name, number.toInt());
  std::ranges::sort(shown);
  ExpectNames(shown, entries);
}

void Current(Player& player, const QString& rest) {
  const auto [name, entry] = NameAndText(rest);
  const auto& list = player.driver->Get<NameListView>(name);
  ExpectNames({list.Names().at(static_cast<std::size_t>(list.Current()))}, entry);
}

/// The tip of a list's first entry.
void Tip(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  const QModelIndex first = player.driver->Get<QAbstractItemView>(name).model()->index(0, 0);
  EXPECT_EQ(first.data(Qt::ToolTipRole).toString().replace('\n', "\\n"), text);
}

void Helped(Player& player, const QString& contexts) {
  QStringList seen;
  for (const std::int32_t context : player.driver->help_contexts) seen << QString::number(context);
  EXPECT_EQ(seen.join(' '), contexts);
}

/// The lines of the file that keeps what the run used; without quotes a part of them.
void Kept(Player& player, const QString& lines) {
  const QString file =
      QString::fromLatin1(ReadFile(player.PathOf(ScriptPlayer::kLastRun))).replace("\r\n", " | ");
  EXPECT_TRUE(lines.startsWith('"') ? file == TextIn(lines) : file.contains(lines))
      << file.toStdString();
}

void NotKept(Player& player, const QString& text) {
  EXPECT_EQ(ReadFile(player.PathOf(ScriptPlayer::kLastRun)).find(text.toStdString()),
            std::string::npos);
}

/// A text in a file that was saved.
void File(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  const std::string file = ReadFile(player.PathOf(name));
  EXPECT_NE(file.find(text.toStdString()), std::string::npos) << file;
}

/// Two settings files that differ in their log only, which is their last line.
void SameSettings(Player& player, const QString& files) {
  const auto without_log = [&](const QString& file) {
    const std::string text = ReadFile(player.PathOf(file));
    return text.substr(0, text.rfind('/'));
  };
  EXPECT_EQ(without_log(files.section(' ', 0, 0)), without_log(files.section(' ', 1)));
}

/// The step of the list at the left that is marked, alone of all.
void Marked(Player& player, const QString& step) {
  for (int i = 0; i < kStepCount; ++i) {
    const QByteArray index = QByteArray::number(i);
    const bool is_it = step.toUtf8() == index;
    EXPECT_EQ(player.driver->Get<theme::StepMarker>("shpCircle" + index).FillColor(),
              is_it ? QColor(255, 0, 0) : QColor(71, 102, 171));
    EXPECT_EQ(player.driver->Get<QLabel>("lblleft" + index).palette().windowText().color(),
              is_it ? QColor(255, 255, 255) : QColor(128, 128, 128));
  }
}

void Ground(Player& player, const QString& rest) {
  const auto [name, color] = NameAndText(rest);
  EXPECT_EQ(player.driver->Get(name).palette().color(QPalette::Base), QColor(color));
}

/// The controls that Tab reaches from the one with the focus on, on a page whose access keys are
/// all different.
void Tab(Player& player, const QString& names) {
  EXPECT_EQ(TabOrder(player.driver->Window()).join(' '), names);
  const std::vector<QChar> keys = AccessKeys(player.driver->Window());
  EXPECT_EQ(std::set<QChar>(keys.begin(), keys.end()).size(), keys.size())
      << "an access key stands for two controls";
}

/// The messages pane, copied from it, without the times.
void Messages(Player& player, const QString& expected) {
  player.driver->Click("cmdCopyMessages");
  QStringList lines = QApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
  for (QString& line : lines) line = line.section('\t', 1).replace('\t', ", ");
  ExpectText(lines.join(" | "), expected);
}

void BoxFocus(Player&, const QString& name) {
  EXPECT_EQ(QApplication::activeModalWidget()->focusWidget()->objectName(), name);
}

void Open(Player& player, const QString&) {
  EXPECT_FALSE(player.driver->closed);
  EXPECT_TRUE(player.driver->Window().isVisible());
}

const std::map<std::string, Verb> kExpectations = {
    {"page",
     [](Player& p, const QString& name) {
       EXPECT_EQ(p.driver->Window().CurrentPage(), PageOf(name));
     }},
    {"window",
     [](Player& p, const QString& title) { EXPECT_EQ(p.driver->Window().windowTitle(), title); }},
    {"enabled", Each<IsEnabled, true>},
    {"disabled", Each<IsEnabled, false>},
    {"shown", Each<IsShown, true>},
    {"hidden", Each<IsShown, false>},
    {"checked", Each<IsChecked, true>},
    {"unchecked", Each<IsChecked, false>},
    {"default", Each<IsDefault, true>},
    {"has-focus", Each<HasFocus, true>},
    {"text", Text},
    {"list", List},
    {"column", Column},
    {"entries", Entries},
    {"current", Current},
    {"tip", Tip},
    {"box", [](Player& p, const QString& box) { ExpectText(p.TakeBox(), box); }},
    {"box-focus", BoxFocus},
    {"source",
     [](Player& p, const QString& rest) { ExpectField(*p.driver->Window().Session().src, rest); }},
    {"destination",
     [](Player& p, const QString& rest) { ExpectField(*p.driver->Window().Session().dest, rest); }},
    {"created", [](Player& p, const QString& names) { ExpectNames(p.script.created, names); }},
    {"scheduled", [](Player& p, const QString& names) { ExpectNames(p.driver->scheduled, names); }},
    {"chosen",
     [](Player& p, const QString& names) {
       ExpectNames(p.driver->Window().Session().tables, names);
     }},
    {"asked-for", [](Player& p, const QString& names) { ExpectNames(p.asked_for, names); }},
    {"tasks-shown",
     [](Player& p, const QString& times) { EXPECT_EQ(p.driver->tasks_shown, times.toInt()); }},
    {"helped", Helped},
    {"ended", [](Player& p, const QString& times) { EXPECT_EQ(p.driver->ended, times.toInt()); }},
    {"closed", [](Player& p, const QString&) { EXPECT_TRUE(p.driver->closed); }},
    {"open", Open},
    {"kept", Kept},
    {"not-kept", NotKept},
    {"file", File},
    {"same-settings", SameSettings},
    {"marked", Marked},
    {"ground", Ground},
    {"tab", Tab},
    {"messages", Messages},
};

}  // namespace

void ExpectText(const QString& shown, const QString& expected) {
  constexpr const char* kMore = "...";
  if (shown == expected) return;
  QString part = expected;
  const bool is_end = part.startsWith(kMore), is_start = part.endsWith(kMore);
  if (is_end) part.remove(0, 3);
  if (is_start) part.chop(3);
  const bool matches = is_end && is_start ? shown.contains(part)
                       : is_end           ? shown.endsWith(part)
                                          : is_start && shown.startsWith(part);
  EXPECT_TRUE(matches) << shown.toStdString();
}

Verb FindExpectation(const std::string& name) {
  const auto found = kExpectations.find(name);
  return found == kExpectations.end() ? nullptr : found->second;
}

}  // namespace dorvane::test
