#include "ui/wizard/connection_history.h"

#include <QAbstractItemView>
#include <QAbstractListModel>
#include <QAbstractProxyModel>
#include <QAction>
#include <QCompleter>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSettings>
#include <algorithm>
#include <memory>
#include <utility>

#include "ui/controls/make_child.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr std::size_t kMostConnections = 12;
constexpr int kIconSize = 32;  // shown at half of it

QString KeyOf(ServerKind kind) {
  return kind == ServerKind::MsSql ? "Connections/MsSql" : "Connections/MySql";
}

QString TextOf(const EarlierConnection& connection) {
  QString text = connection.host + ", port " + connection.port;
  if (!connection.user.isEmpty()) text += ", " + connection.user;
  return text;
}

class ConnectionsModel : public QAbstractListModel {
 public:
  ConnectionsModel(ServerKind kind, QObject* parent) : QAbstractListModel(parent), kind_(kind) {}

  void Read() {
    beginResetModel();
    connections_ = EarlierConnections(kind_);
    endResetModel();
  }
  const EarlierConnection& At(int row) const { return connections_[static_cast<std::size_t>(row)]; }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(connections_.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role == Qt::EditRole) return At(index.row()).host;
    return role == Qt::DisplayRole ? TextOf(At(index.row())) : QVariant();
  }

 private:
  ServerKind kind_;
  std::vector<EarlierConnection> connections_;
};

/// The keys of a host field: Down offers the earlier connections, and Enter takes one of them
/// instead of pressing the window's default button. Filters the field and the open list.
class HostKeys : public QObject {
 public:
  HostKeys(QCompleter& completer, std::function<void()> offer)
      : QObject(&completer), completer_(completer), offer_(std::move(offer)) {}

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    const bool is_override = event->type() == QEvent::ShortcutOverride;
    if (!is_override && event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool is_open = completer_.popup()->isVisible();
    if (is_override && is_open && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
      event->accept();
      return true;
    }
    if (is_override || is_open || key != Qt::Key_Down) return false;
    offer_();
    return true;
  }

 private:
  QCompleter& completer_;
  std::function<void()> offer_;
};

template <typename Paint>
QIcon Icon(const Paint& paint) {
  QPixmap picture(kIconSize, kIconSize);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(CurrentLook().icon, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  paint(painter);
  return picture;
}

QIcon ArrowIcon() {
  return Icon([](QPainter& painter) {
    painter.drawPolyline(QPolygonF({{9, 13}, {16, 20}, {23, 13}}));
  });
}

QIcon EyeIcon(bool is_crossed) {
  return Icon([is_crossed](QPainter& painter) {
    QPainterPath lids;
    lids.moveTo(3, 16);
    lids.quadTo(16, 1, 29, 16);
    lids.quadTo(16, 31, 3, 16);
    painter.drawPath(lids);
    painter.setBrush(CurrentLook().icon);
    painter.drawEllipse(QPointF(16, 16), 3.5, 3.5);
    if (is_crossed) painter.drawLine(6, 27, 26, 5);
  });
}

}  // namespace

std::vector<EarlierConnection> EarlierConnections(ServerKind kind) {
  std::vector<EarlierConnection> connections;
  const QSettings settings("Dorvane", "Dorvane");
  for (const QString& line : settings.value(KeyOf(kind)).toStringList()) {
    const QStringList fields = line.split('\t');
    if (fields.size() == 3) connections.push_back({fields[0], fields[1], fields[2]});
  }
  return connections;
}

void RememberConnection(ServerKind kind, const EarlierConnection& connection) {
  std::vector<EarlierConnection> connections = EarlierConnections(kind);
  std::erase(connections, connection);
  connections.insert(connections.begin(), connection);
  connections.resize(std::min(connections.size(), kMostConnections));
  QStringList lines;
  for (const EarlierConnection& each : connections) {
    lines << QStringList{each.host, each.port, each.user}.join('\t');
  }
  QSettings("Dorvane", "Dorvane").setValue(KeyOf(kind), lines);
}

void OfferEarlierConnections(QLineEdit& host, ServerKind kind,
                             std::function<void(const EarlierConnection&)> chosen) {
  auto& model = MakeChild<ConnectionsModel>(static_cast<QObject&>(host), kind);
  auto& completer = MakeChild<QCompleter>(static_cast<QObject&>(host));
  completer.setModel(&model);
  completer.setCaseSensitivity(Qt::CaseInsensitive);
  FollowPalette(*completer.popup(), &Look::field);
  completer.popup()->setObjectName(host.objectName() + "Earlier");
  completer.popup()->setAccessibleName("Earlier connections");
  host.setCompleter(&completer);
  const auto offer_all = [&host, &model, &completer] {
    if (host.isReadOnly()) return;
    model.Read();
    completer.setCompletionPrefix({});
    completer.complete();
  };
  auto& show = *host.addAction(QIcon(), QLineEdit::TrailingPosition);
  FollowLook(host, [&show](const Look&) { show.setIcon(ArrowIcon()); });
  show.setText("Earlier connections");
  show.setToolTip("Earlier connections");
  QObject::connect(&show, &QAction::triggered, &host, offer_all);
  auto& keys = *std::make_unique<HostKeys>(completer, offer_all).release();  // the completer's
  host.installEventFilter(&keys);
  completer.popup()->installEventFilter(&keys);
  QObject::connect(&host, &QLineEdit::textEdited, &model, [&model, &host] {
    // Once a time of typing is enough.
    if (host.text().size() == 1) model.Read();
  });
  QObject::connect(&completer, qOverload<const QModelIndex&>(&QCompleter::activated), &host,
                   [&completer, &model, chosen = std::move(chosen)](const QModelIndex& index) {
                     auto* shown = static_cast<QAbstractProxyModel*>(completer.completionModel());
                     chosen(model.At(shown->mapToSource(index).row()));
                   });
}

void AddPasswordEye(QLineEdit& password) {
  auto& eye = *password.addAction(QIcon(), QLineEdit::TrailingPosition);
  eye.setObjectName(password.objectName() + "Eye");
  eye.setCheckable(true);
  eye.setText("Show the password");
  eye.setToolTip("Show the password");
  FollowLook(password, [&eye](const Look&) { eye.setIcon(EyeIcon(eye.isChecked())); });
  QObject::connect(&eye, &QAction::toggled, &password, [&password, &eye](bool is_shown) {
    password.setEchoMode(is_shown ? QLineEdit::Normal : QLineEdit::Password);
    eye.setIcon(EyeIcon(is_shown));
  });
}

}  // namespace dorvane
