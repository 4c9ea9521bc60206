#include "ui/look/contrast.h"
#include "ui/look/look.h"

namespace dorvane {

namespace {

constexpr QRgb kPage = qRgb(71, 102, 171);
constexpr QRgb kWords = qRgb(24, 34, 62);
constexpr QRgb kDisabledWords = qRgb(110, 116, 130);
constexpr QRgb kField = qRgb(255, 255, 255);
constexpr QRgb kClosedField = qRgb(224, 224, 224);
constexpr QRgb kTitle = qRgb(244, 246, 250);
// Amber stands out from the page: selected entries, and the frame of the field with the focus.
constexpr QRgb kAmber = qRgb(255, 190, 70);

struct RoleColors {
  QPalette::ColorRole role;
  QRgb color, disabled;
};

constexpr RoleColors kPageColors[] = {
    {QPalette::Window, kPage, kPage},
    {QPalette::WindowText, qRgb(255, 255, 255), qRgb(164, 184, 228)},
    {QPalette::Base, kField, kClosedField},
    {QPalette::AlternateBase, qRgb(240, 243, 250), kClosedField},
    {QPalette::Text, kWords, kDisabledWords},
    {QPalette::Button, qRgb(238, 241, 247), kClosedField},
    {QPalette::ButtonText, kWords, kDisabledWords},
    {QPalette::Highlight, kAmber, qRgb(190, 196, 208)},
    {QPalette::HighlightedText, kWords, kDisabledWords},
    {QPalette::PlaceholderText, qRgb(96, 102, 116), kDisabledWords},
    {QPalette::ToolTipBase, qRgb(255, 252, 230), qRgb(255, 252, 230)},
    {QPalette::ToolTipText, kWords, kWords},
};

QPalette PagePalette() {
  QPalette palette;
  for (const RoleColors& each : kPageColors) {
    palette.setColor(each.role, QColor(each.color));
    palette.setColor(QPalette::Disabled, each.role, QColor(each.disabled));
  }
  return palette;
}

QPalette OnGround(QPalette palette, QRgb ground) {
  palette.setColor(QPalette::Window, QColor(ground));
  palette.setColor(QPalette::WindowText, QColor(kWords));
  return palette;
}

QPalette ScrollBarPalette() {
  QPalette palette = OnGround({}, qRgb(232, 235, 242));
  palette.setColor(QPalette::Button, QColor(214, 220, 232));
  return palette;
}

QPalette PanelPalette() {
  QPalette palette = OnGround({}, kTitle);
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Highlight, QColor(kPage));
  return palette;
}

QPalette MessagePalette() {
  QPalette palette = OnGround({}, qRgb(192, 192, 192));
  palette.setColor(QPalette::Button, QColor(214, 220, 232));  // of the scroll bar
  palette.setColor(QPalette::WindowText, QColor(16, 20, 32));
  palette.setColor(QPalette::Text, QColor(16, 20, 32));
  palette.setColor(QPalette::Highlight, QColor(kPage));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  return palette;
}

/// The desktop's own, with selected words that can be read.
QPalette WindowPalette(const QPalette& desktop) {
  const QColor ground =
      Readable(desktop.color(QPalette::Highlight), {desktop.color(QPalette::HighlightedText)});
  QPalette palette;
  palette.setColor(QPalette::Highlight, ground);
  return palette;
}

}  // namespace

Look ClassicLook(const QPalette& desktop) {
  return {
      .window = WindowPalette(desktop),
      .page = PagePalette(),
      .field = OnGround(PagePalette(), kField),
      .scroll_bar = ScrollBarPalette(),
      .title = OnGround({}, kTitle),
      .navigation = OnGround({}, qRgb(222, 227, 238)),
      .panel = PanelPalette(),
      .message = MessagePalette(),
      .message_title = Qt::white,
      .closed_field = kClosedField,
      .card_ground = QColor(255, 255, 255, 22),
      .card_edge = QColor(255, 255, 255, 70),
      .veil = QColor(13, 19, 40, 110),
      .icon = kWords,
      // Dark behind the step list, so that its grey words can be read.
      .sidebar = {.top = qRgb(9, 13, 28),
                  .bottom = qRgb(15, 22, 44),
                  .current_step = Qt::white,
                  .other_step = qRgb(128, 128, 128),
                  .current_marker = qRgb(255, 0, 0),
                  .other_marker = kPage,
                  .marker_edge = QColor(255, 255, 255, 150),
                  .arrows = Qt::white},
      .help = {.edge = kWords,
               .ground = kPage,
               .sign = Qt::white,
               .hover_ground = kAmber,
               .hover_sign = kWords},
      .frame = {.title_top = QColor(92, 110, 140),
                .title_bottom = QColor(58, 72, 98),
                .edge = QColor(46, 58, 80),
                .button = QColor(92, 110, 140),
                .close = QColor(190, 70, 64),
                .sign = Qt::white},
      .button = {.back = QColor(252, 253, 255),
                 .gradient = QColor(196, 207, 228),
                 .fore = kWords,
                 .hover_back = QColor(255, 226, 160),
                 .hover_fore = QColor(110, 44, 0)},
      .dialog_button = {.back = QColor(238, 241, 247),
                        .gradient = QColor(196, 206, 224),
                        .fore = QColor(22, 32, 60),
                        .hover_back = Qt::white,
                        .hover_fore = QColor(160, 30, 20)},
  };
}

}  // namespace dorvane
