// What conversions tell in scripts: "tell rows Orders 3".
#include <gtest/gtest.h>

#include <QThread>

#include "tests/ui/wizard/script_player.h"

namespace dorvane::test {

namespace {

using Player = ScriptPlayer;
using Listener = IConversionListener;

template <void (IConversionListener::*event)(std::string_view)>
void OfTable(Player&, Listener& listener, const QString& table) {
  (listener.*event)(table.toStdString());
}

template <void (IRunHost::*event)(std::string_view)>
void ToHost(Player& player, Listener&, const QString& text) {
  (player.script.host->*event)(text.toStdString());
}

struct Count {
  std::string table;
  int rows, announced;
};
/// "Orders 3 of 10", or "Orders 3" for all of three.
Count CountOf(const QString& text) {
  const auto [table, count] = NameAndText(text);
  return {table.toStdString(), count.section(' ', 0, 0).toInt(), count.section(' ', -1).toInt()};
}

void Start(Player&, Listener& listener, const QString& text) {
  listener.ConversionStarted(text.section(' ', 0, 0).toShort(), text.contains("relationships"));
}

void Rows(Player&, Listener& listener, const QString& text) {
  const auto [table, rows, announced] = CountOf(text);
  listener.TableContentTransferStarted(table, announced);
  for (int row = 0; row < rows; ++row) listener.TableRecordConverted();
}

void Compare(Player& player, Listener&, const QString& text) {
  const auto [table, rows, announced] = CountOf(text);
  player.script.host->TableComparisonStarted(table, announced);
  player.script.host->ShowRowsCompared(rows);
}

void LeaveTable(Player& player, Listener&, const QString& table) {
  player.script.host->TableStepEnded(table.toStdString(), std::chrono::seconds(1));
}

void Error(Player&, Listener& listener, const QString& text) {
  const auto [title, told] = TitleAndText(text);
  listener.ErrorOccured(told, message_style::kError, title);
}

void Refuse(Player& player, Listener&, const QString& text) {
  const auto [title, told] = TitleAndText(text);
  player.script.host->ConnectionFailed({told, "log", title});
}

void Await(const std::function<bool()>& reached) {
  for (int i = 0; i < 2'000 && !reached(); ++i) QThread::msleep(5);
  EXPECT_TRUE(reached());
}

/// The person's turn while the servers go on.
void Meanwhile(Player& player, Listener&, const QString&) {
  QMetaObject::invokeMethod(&player.driver->Window(), [&player] {
    for (const Step& step : std::exchange(player.meanwhile, {})) player.Run(step);
  });
}

const std::map<std::string, Event> kEvents = {
    {"start", Start},  // "2", "2 with relationships"
    {"table", OfTable<&Listener::TableConversionStarted>},
    {"rows", Rows},
    {"done", OfTable<&Listener::TableConversionSuccessed>},
    {"failed", OfTable<&Listener::TableConversionFailed>},
    {"relationships", OfTable<&Listener::TableRelationsConversionStarted>},
    {"begin", ToHost<&IRunHost::TableStepStarted>},
    {"leave", LeaveTable},
    {"comparison",
     [](Player& p, Listener&, const QString&) { p.script.host->ComparisonStarted(); }},
    {"compare", Compare},
    {"error", Error},
    {"note", ToHost<&IRunHost::Inform>},
    {"refuse", Refuse},
    {"throw", [](Player&, Listener&, const QString& text) { ThrowRunTimeError(text); }},
    {"wait", [](Player&, Listener&, const QString& text) { QThread::msleep(text.toULong()); }},
    {"meanwhile", Meanwhile},
    {"until-stopped", [](Player& p, Listener&,
                         const QString&) { Await([&] { return p.script.host->IsStopping(); }); }},
    {"until-ended",
     [](Player& p, Listener&, const QString&) { Await([&] { return p.driver->ended > 0; }); }},
    {"end", [](Player&, Listener& listener, const QString&) { listener.ConversionEnded(); }},
};

}  // namespace

Event FindEvent(const std::string& name) {
  const auto found = kEvents.find(name);
  return found == kEvents.end() ? nullptr : found->second;
}

}  // namespace dorvane::test
