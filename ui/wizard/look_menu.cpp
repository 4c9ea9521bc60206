#include "ui/wizard/look_menu.h"

#include <QActionGroup>
#include <QMenu>

#include "job/program_folder.h"
#include "ui/controls/make_child.h"
#include "ui/look/current_look.h"
#include "ui/look/skins.h"
#include "ui/wizard/theme.h"

namespace dorvane {

namespace {

/// Fills the menu with what there is now, the user's skin marked.
void Fill(QMenu& menu) {
  menu.clear();
  auto& group = MakeChild<QActionGroup>(static_cast<QObject&>(menu));
  for (const Skin& skin : Skins(ProgramFolder() / "Skinz")) {
    QAction& entry = *menu.addAction(skin.caption);
    entry.setCheckable(true);
    entry.setChecked(skin.name == CurrentSkin());
    group.addAction(&entry);
    QObject::connect(&entry, &QAction::triggered, &menu, [name = skin.name] { ChooseSkin(name); });
  }
}

}  // namespace

GradientButton& AddLookButton(QWidget& bar) {
  GradientButton& button = theme::AddButton("cmdLook", bar, "Look", '\0');
  button.setToolTip("The colours of the windows");
  auto& menu = MakeNamed<QMenu>("mnuLook", static_cast<QWidget&>(button));
  FollowPalette(menu, &Look::field);
  QObject::connect(&button, &QAbstractButton::clicked, &menu, [&button, &menu] {
    Fill(menu);
    const QPoint above(0, -menu.sizeHint().height());
    menu.popup(button.mapToGlobal(above));
  });
  return button;
}

}  // namespace dorvane
