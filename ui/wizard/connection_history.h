#pragma once

#include <QLineEdit>
#include <QString>
#include <functional>
#include <vector>

#include "platform/ado/connection_settings.h"

namespace dorvane {

/// A server that somebody has connected to. Passwords are kept nowhere.
struct EarlierConnection {
  QString host;
  QString port;
  QString user;
  bool operator==(const EarlierConnection&) const = default;
};

/// The user's last connections to servers of a kind, the newest first.
std::vector<EarlierConnection> EarlierConnections(ServerKind kind);
void RememberConnection(ServerKind kind, const EarlierConnection& connection);

/// Offers the earlier connections in a host field: as one types, with the Down key and with a
/// button in the field. `chosen` gets the one that is picked.
void OfferEarlierConnections(QLineEdit& host, ServerKind kind,
                             std::function<void(const EarlierConnection&)> chosen);

/// A button in a password field that shows the password while it is pressed in.
void AddPasswordEye(QLineEdit& password);

}  // namespace dorvane
