#include "ui/look/skins.h"

#include <QDir>
#include <QSettings>

namespace dorvane {

namespace {

constexpr const char* kSetting = "Options/Current Skin";

}  // namespace

std::vector<Skin> Skins(const std::filesystem::path& folder) {
  std::vector<Skin> skins = {
      {kClassicSkin, "&Classic"}, {kLightSkin, "&Light"}, {kDarkSkin, "&Dark"}};
  const QDir pictures(QString::fromStdString(folder.string()));
  for (const QString& name : pictures.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
    const bool is_known = name == kClassicSkin || name == kLightSkin || name == kDarkSkin;
    if (!is_known) skins.push_back({name, "Classic, " + name});
  }
  return skins;
}

QString CurrentSkin() {
  return QSettings("Dorvane", "Dorvane").value(kSetting, kClassicSkin).toString();
}

void KeepSkin(const QString& name) {
  QSettings("Dorvane", "Dorvane").setValue(kSetting, name);
}

}  // namespace dorvane
