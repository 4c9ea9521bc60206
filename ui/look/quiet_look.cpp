#include "ui/look/contrast.h"
#include "ui/look/look.h"

namespace dorvane {

namespace {

/// What everything else is mixed from.
struct Tones {
  QColor window;  // the ground of windows
  QColor base;    // the ground of fields
  QColor text;
  QColor accent;
};

/// The contrast of text and ground that leaves room for what is mixed from them.
constexpr double kAmple = 9;

const Tones kLight = {QColor(245, 246, 248), Qt::white, QColor(29, 35, 48), QColor(38, 98, 201)};
const Tones kDark = {QColor(36, 39, 45), QColor(27, 29, 34), QColor(231, 233, 238),
                     QColor(110, 160, 250)};

/// A grey highlight is a desktop's way to have no accent.
bool IsColorful(const QColor& color) {
  return color.hslSaturation() > 60 && color.lightness() > 40 && color.lightness() < 230;
}

/// Light or dark enough for words and for everything that is mixed from it.
bool IsGround(const QColor& ground, bool is_dark) {
  return Contrast(ground, is_dark ? Qt::white : Qt::black) >= kAmple;
}

Tones MakeTones(bool is_dark, const QPalette& desktop) {
  Tones tones = is_dark ? kDark : kLight;
  const QColor accent = desktop.color(QPalette::Highlight);
  if (IsColorful(accent)) tones.accent = accent;
  const QColor window = desktop.color(QPalette::Window);
  const QColor base = desktop.color(QPalette::Base);
  if (IsGround(window, is_dark) && IsGround(base, is_dark)) {
    tones.window = window;
    tones.base = base;
    const QColor text = desktop.color(QPalette::WindowText);
    const bool is_ample = Contrast(text, window) >= kAmple && Contrast(text, base) >= kAmple;
    tones.text = is_ample ? text : QColor(is_dark ? Qt::white : Qt::black);
  }
  // Seen well on the grounds, it carries words in the grounds' own lightness.
  tones.accent = Readable(tones.accent, {tones.base, is_dark ? Qt::black : Qt::white});
  return tones;
}

QColor OnAccent(const Tones& tones) {
  return Readable(tones.base, {tones.accent});
}

/// `ground` is what words stand on, `base` what fields have.
QPalette MakePalette(const Tones& tones, const QColor& ground) {
  const QColor button = Mix(tones.window, tones.text, 0.06);
  const QColor grey = Mix(tones.text, ground, 0.5);
  QPalette palette(button, ground);
  const auto set = [&palette](QPalette::ColorRole role, const QColor& color,
                              const QColor& disabled) {
    palette.setColor(role, color);
    palette.setColor(QPalette::Disabled, role, disabled);
  };
  set(QPalette::WindowText, tones.text, grey);
  set(QPalette::Base, tones.base, tones.window);
  set(QPalette::AlternateBase, Mix(tones.base, tones.text, 0.04), tones.window);
  set(QPalette::Text, tones.text, grey);
  set(QPalette::ButtonText, Readable(tones.text, {button}), grey);
  set(QPalette::BrightText, tones.text, grey);
  set(QPalette::Highlight, tones.accent, Mix(tones.accent, tones.window, 0.6));
  set(QPalette::HighlightedText, OnAccent(tones), grey);
  const QColor link = Readable(tones.accent, {tones.base, ground});
  set(QPalette::Link, link, grey);
  set(QPalette::LinkVisited, link, grey);
  set(QPalette::PlaceholderText, Readable(Mix(tones.text, tones.base, 0.4), {tones.base}), grey);
  set(QPalette::ToolTipBase, tones.base, tones.base);
  set(QPalette::ToolTipText, tones.text, tones.text);
  return palette;
}

ButtonColors MakeButton(const Tones& tones, bool is_dark) {
  const QColor back = is_dark ? Mix(tones.window, tones.text, 0.1) : tones.base;
  const QColor hover = Mix(back, tones.accent, 0.2);
  return {.back = back,
          .gradient = back,
          .fore = Readable(tones.text, {back}),
          .hover_back = hover,
          .hover_fore = Readable(tones.text, {hover})};
}

SidebarColors MakeSidebar(const Tones& tones) {
  const QColor ground = Mix(tones.window, tones.text, 0.07);
  return {.top = ground,
          .bottom = ground,
          .current_step = Readable(tones.text, {ground}),
          .other_step = Readable(Mix(tones.text, ground, 0.35), {ground}),
          .current_marker = tones.accent,
          .other_marker = Mix(ground, tones.text, 0.2),
          .marker_edge = Mix(ground, tones.text, 0.35),
          .arrows = Mix(tones.text, ground, 0.2)};
}

}  // namespace

Look QuietLook(bool is_dark, const QPalette& desktop) {
  const Tones tones = MakeTones(is_dark, desktop);
  const QColor bar = Mix(tones.window, tones.text, 0.04);
  const QColor edge = Mix(tones.window, tones.text, 0.18);
  const QPalette window = MakePalette(tones, tones.window);
  const ButtonColors button = MakeButton(tones, is_dark);
  return {
      .window = window,
      .page = window,
      .field = MakePalette(tones, tones.base),
      .scroll_bar = window,
      .title = window,
      .navigation = MakePalette(tones, bar),
      .panel = MakePalette(tones, is_dark ? Mix(tones.window, tones.text, 0.1) : tones.window),
      .message = window,
      .message_title = Readable(tones.text, {bar}),
      .closed_field = Mix(tones.window, tones.text, 0.06),
      .card_ground = Mix(tones.window, tones.base, 0.5),
      .card_edge = edge,
      .veil = QColor(0, 0, 0, 90),
      .icon = Mix(tones.text, tones.base, 0.25),
      .sidebar = MakeSidebar(tones),
      .help = {.edge = edge,
               .ground = button.back,
               .sign = button.fore,
               .hover_ground = tones.accent,
               .hover_sign = OnAccent(tones)},
      .frame = {.title_top = bar,
                .title_bottom = bar,
                .edge = edge,
                .button = button.back,
                .close = button.back,
                .sign = button.fore},
      .button = button,
      .dialog_button = button,
  };
}

}  // namespace dorvane
