#pragma once

#include <QDir>
#include <QPainter>
#include <QPixmap>
#include <vector>

namespace dorvane::test {

/// Puts pictures side by side, to be looked at together: "NAME-1.png" and so on in a folder.
class ContactSheets {
 public:
  ContactSheets(const QDir& folder, QString name) : folder_(folder), name_(std::move(name)) {}

  void Add(const QPixmap& picture, const QString& caption) {
    pictures_.push_back(
        {picture.scaled(kTile, Qt::KeepAspectRatio, Qt::SmoothTransformation), caption});
    if (pictures_.size() == kColumns * kRows) Save();
  }
  /// Writes what is left over.
  ~ContactSheets() {
    if (!pictures_.empty()) Save();
  }

 private:
  struct Tile {
    QPixmap picture;
    QString caption;
  };
  static constexpr QSize kTile{640, 456};
  static constexpr int kCaption = 24;
  static constexpr std::size_t kColumns = 3;
  static constexpr std::size_t kRows = 3;

  void Save() {
    const int height = kTile.height() + kCaption;
    QPixmap sheet(kTile.width() * static_cast<int>(kColumns), height * static_cast<int>(kRows));
    sheet.fill(QColor(120, 120, 120));
    QPainter painter(&sheet);
    for (std::size_t index = 0; index < pictures_.size(); ++index) {
      const QPoint place(static_cast<int>(index % kColumns) * kTile.width(),
                         static_cast<int>(index / kColumns) * height);
      QPixmap picture = pictures_[index].picture;
      picture.setDevicePixelRatio(1);
      painter.drawText(QRect(place, QSize(kTile.width(), kCaption)), Qt::AlignCenter,
                       pictures_[index].caption);
      painter.drawPixmap(place + QPoint(2, kCaption), picture);
    }
    sheet.save(folder_.filePath(QString("%1-%2.png").arg(name_).arg(++sheets_)));
    pictures_.clear();
  }

  QDir folder_;
  QString name_;
  std::vector<Tile> pictures_;
  int sheets_ = 0;
};

}  // namespace dorvane::test
