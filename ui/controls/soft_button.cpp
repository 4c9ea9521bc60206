#include "ui/controls/soft_button.h"

#include "ui/controls/make_child.h"

namespace dorvane {

namespace {

constexpr SoftButtonColors kDialogColors = {.back = qRgb(238, 241, 247),
                                            .gradient = qRgb(196, 206, 224),
                                            .fore = qRgb(22, 32, 60),
                                            .hover_back = qRgb(255, 255, 255),
                                            .hover_fore = qRgb(160, 30, 20)};
constexpr int kDialogButtonWidth = 84;  // at least

}  // namespace

GradientButton& AddSoftButton(const char* name, QWidget& parent, const QString& caption,
                              char access_key, const SoftButtonColors& colors) {
  auto& button = MakeNamed<GradientButton>(name, parent);
  button.SetCaption(caption);
  if (access_key != '\0') button.SetAccessKey(access_key);
  button.SetButtonStyle(static_cast<int>(ButtonStyle::Soft));
  button.SetGradientMode(static_cast<int>(GradientMode::ToBottom));
  button.SetBackColor(colors.back);
  button.SetGradientColor(colors.gradient);
  button.SetForeColor(colors.fore);
  button.SetHoverBackColor(colors.hover_back);
  button.SetHoverForeColor(colors.hover_fore);
  return button;
}

GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption,
                                char access_key) {
  GradientButton& button = AddSoftButton(name, dialog, caption, access_key, kDialogColors);
  button.setMinimumWidth(kDialogButtonWidth);
  return button;
}

}  // namespace dorvane
