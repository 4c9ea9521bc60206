#include "ui/wizard/desktop_link.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace dorvane {

namespace {

constexpr const char* kDesktopEntry = "dorvane";
constexpr int kTimeOfTheDesktop = -1;  // how long a notification is shown

void Send(const QDBusMessage& message) {
  // Asked for a bus that nobody has named, the library would start one.
  if (!qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return;
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (bus.isConnected()) bus.send(message);
}

}  // namespace

void DesktopLink::ShowPercent(std::optional<int> percent) {
  QDBusMessage update = QDBusMessage::createSignal("/com/canonical/unity/launcherentry/dorvane",
                                                   "com.canonical.Unity.LauncherEntry", "Update");
  update << QStringLiteral("application://%1.desktop").arg(kDesktopEntry)
         << QVariantMap{{"progress", percent.value_or(0) / 100.0},
                        {"progress-visible", percent.has_value()}};
  Send(update);
}

void DesktopLink::Notify(const QString& title, const QString& text) {
  constexpr const char* kName = "org.freedesktop.Notifications";
  QDBusMessage call =
      QDBusMessage::createMethodCall(kName, "/org/freedesktop/Notifications", kName, "Notify");
  call << QStringLiteral("Dorvane") << 0u << kDesktopEntry << title << text << QStringList()
       << QVariantMap{{"desktop-entry", kDesktopEntry}} << kTimeOfTheDesktop;
  Send(call);
}

}  // namespace dorvane
