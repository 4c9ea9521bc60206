#include "ui/controls/soft_button.h"

#include "ui/controls/make_child.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr int kDialogButtonWidth = 84;  // at least

void SetColors(GradientButton& button, const ButtonColors& colors) {
  button.SetBackColor(colors.back);
  button.SetGradientColor(colors.gradient);
  button.SetForeColor(colors.fore);
  button.SetHoverBackColor(colors.hover_back);
  button.SetHoverForeColor(colors.hover_fore);
}

}  // namespace

GradientButton& AddSoftButton(const char* name, QWidget& parent, const QString& caption,
                              char access_key, ButtonColors Look::*colors) {
  auto& button = MakeNamed<GradientButton>(name, parent);
  button.SetCaption(caption);
  if (access_key != '\0') button.SetAccessKey(access_key);
  button.SetButtonStyle(static_cast<int>(ButtonStyle::Soft));
  button.SetGradientMode(static_cast<int>(GradientMode::ToBottom));
  FollowLook(button, [&button, colors](const Look& look) { SetColors(button, look.*colors); });
  return button;
}

GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption,
                                char access_key) {
  GradientButton& button = AddSoftButton(name, dialog, caption, access_key, &Look::dialog_button);
  button.setMinimumWidth(kDialogButtonWidth);
  return button;
}

}  // namespace dorvane
