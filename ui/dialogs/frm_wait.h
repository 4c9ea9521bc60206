#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QLabel;

namespace dorvane {

/// What lies over a window while a server is asked something: it takes all clicks and keys and
/// shows that the program is alive. It is no window of its own, so that the focus of the desktop
/// stays where it is. Quick answers never show it. The user can't close it.
class frmWait : public QWidget {
 public:
  /// Covers `window`, its owner.
  explicit frmWait(QWidget& window);

  /// The question begins: shows the overlay when the answer takes longer than a moment, unless a
  /// dialog is open then.
  void Begin();
  /// The answer is there. Returns at once when the overlay is not shown, else when it has been
  /// shown long enough to be seen; the focus is then where it was.
  void End();

  /// Replaces "Please wait" until the next Begin.
  void SetText(const QString& text);

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget& BuildPanel();
  void Appear();
  void Vanish();

  QWidget& window_;
  QLabel* lblWait_ = nullptr;
  QTimer delay_;
  QElapsedTimer shown_;
  QPointer<QWidget> focus_before_;
  bool waiting_ = false;
};

}  // namespace dorvane
