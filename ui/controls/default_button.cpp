#include "ui/controls/default_button.h"

#include <QApplication>
#include <QEvent>
#include <QShortcut>
#include <algorithm>

#include "ui/controls/make_child.h"

namespace dorvane {

DefaultButton::DefaultButton(std::vector<GradientButton*> candidates, QWidget* window)
    : QObject(window), window_(window), candidates_(std::move(candidates)) {
  for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
    auto& shortcut = MakeChild<QShortcut>(*window, QKeySequence(key));
    // A key held down does not run through the pages.
    shortcut.setAutoRepeat(false);
    connect(&shortcut, &QShortcut::activated, this, [this] {
      if (GradientButton* button = Find()) button->click();
    });
  }
  for (GradientButton* button : candidates_) button->installEventFilter(this);
  connect(qApp, &QApplication::focusChanged, this, [this] { Mark(); });
  Mark();
}

bool DefaultButton::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  const bool changes =
      type == QEvent::EnabledChange || type == QEvent::Show || type == QEvent::Hide;
  if (changes) Mark();
  return QObject::eventFilter(watched, event);
}

GradientButton* DefaultButton::Find() const {
  if (auto* focused = qobject_cast<GradientButton*>(window_->focusWidget())) return focused;
  const auto found = std::ranges::find_if(candidates_, [](const GradientButton* button) {
    return button->isVisible() && button->isEnabled();
  });
  return found == candidates_.end() ? nullptr : *found;
}

void DefaultButton::Mark() {
  GradientButton* button = Find();
  if (button == marked_) return;
  if (marked_) marked_->SetDefault(false);
  if (button) button->SetDefault(true);
  marked_ = button;
}

}  // namespace dorvane
