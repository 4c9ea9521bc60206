#pragma once

#include <QObject>

#include "ui/look/look.h"

namespace dorvane {

/// Holds the look of the application, whose child it is.
class LookSource : public QObject {
  Q_OBJECT

 public:
  explicit LookSource(QObject* parent);

  static LookSource& Instance();

  const Look& Current() const { return look_; }
  /// Makes the look anew from the kept skin.
  void Renew();

 signals:
  void Changed();

 protected:
  /// Watches the application for the desktop's palette.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  Look look_;
};

}  // namespace dorvane
