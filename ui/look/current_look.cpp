#include "ui/look/current_look.h"

#include <utility>

#include "ui/look/look_source.h"
#include "ui/look/skins.h"

namespace dorvane {

const Look& CurrentLook() {
  return LookSource::Instance().Current();
}

void ChooseSkin(const QString& name) {
  KeepSkin(name);
  LookSource::Instance().Renew();
}

void FollowLook(QWidget& widget, std::function<void(const Look&)> dress) {
  dress(CurrentLook());
  QObject::connect(&LookSource::Instance(), &LookSource::Changed, &widget,
                   [dress = std::move(dress)] { dress(CurrentLook()); });
}

void FollowPalette(QWidget& widget, QPalette Look::*palette) {
  FollowLook(widget, [&widget, palette](const Look& look) { widget.setPalette(look.*palette); });
}

}  // namespace dorvane
