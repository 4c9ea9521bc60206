#pragma once

#include <QPixmap>
#include <QString>

namespace dorvane {

/// A frame picture that a skinned window has where its skin lacks it, in the colours of the look,
/// of `size` logical pixels and sharp up to a scale factor of 2. An unknown name gives an empty
/// picture.
QPixmap BuiltInPicture(const QString& name, QSize size);

}  // namespace dorvane
