#include "ui/schedule/dialog_button.h"

#include "ui/controls/make_child.h"

namespace dorvane {

namespace {

constexpr int kMinimumWidth = 84;

}  // namespace

GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption,
                                char access_key) {
  auto& button = MakeNamed<GradientButton>(name, dialog);
  button.SetCaption(caption);
  button.SetAccessKey(access_key);
  button.setMinimumWidth(kMinimumWidth);
  button.SetButtonStyle(static_cast<int>(ButtonStyle::kSoft));
  button.SetGradientMode(static_cast<int>(GradientMode::kToBottom));
  button.SetBackColor(QColor(238, 241, 247));
  button.SetGradientColor(QColor(196, 206, 224));
  return button;
}

}  // namespace dorvane
