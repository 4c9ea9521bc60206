#pragma once

#include <QObject>
#include <QPixmap>
#include <utility>

namespace dorvane {

/// Two pictures for one picture control: 1 normal, 2 highlighted.
class ImageList : public QObject {
 public:
  ImageList(QPixmap normal, QPixmap highlighted, QObject* parent)
      : QObject(parent), normal_(std::move(normal)), highlighted_(std::move(highlighted)) {}

  /// `number` is 1 or 2.
  const QPixmap& Picture(int number) const { return number == 1 ? normal_ : highlighted_; }

 private:
  QPixmap normal_;
  QPixmap highlighted_;
};

}  // namespace dorvane
