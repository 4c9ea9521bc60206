#pragma once

#include <QString>
#include <filesystem>
#include <vector>

namespace dorvane {

/// The skins that are part of the program. Any other name is a folder of pictures for message boxes
/// in the classic look.
inline const QString kClassicSkin = QStringLiteral("Blue");
inline const QString kLightSkin = QStringLiteral("Light");
inline const QString kDarkSkin = QStringLiteral("Dark");

struct Skin {
  QString name;
  QString caption;  // with the mark of its access key
};

/// What the user may choose from: the program's skins, and those whose folders lie in `folder`.
std::vector<Skin> Skins(const std::filesystem::path& folder);

/// The skin that the user has chosen (setting "Current Skin" of section "Options"), else "Blue".
QString CurrentSkin();
/// Keeps the choice for this user.
void KeepSkin(const QString& name);

}  // namespace dorvane
