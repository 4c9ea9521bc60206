#include "ui/look/look_source.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <memory>

#include "ui/look/skins.h"

namespace dorvane {

namespace {

Look MakeLook() {
  const QString skin = CurrentSkin();
  const QPalette desktop = QApplication::palette();
  const bool is_quiet = skin == kLightSkin || skin == kDarkSkin;
  return is_quiet ? QuietLook(skin == kDarkSkin, desktop) : ClassicLook(desktop);
}

}  // namespace

LookSource::LookSource(QObject* parent) : QObject(parent), look_(MakeLook()) {
  qApp->installEventFilter(this);
}

LookSource& LookSource::Instance() {
  static QPointer<LookSource> instance;
  if (!instance) instance = std::make_unique<LookSource>(qApp).release();
  return *instance;
}

void LookSource::Renew() {
  look_ = MakeLook();
  emit Changed();
}

bool LookSource::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) Renew();
  return false;
}

}  // namespace dorvane
