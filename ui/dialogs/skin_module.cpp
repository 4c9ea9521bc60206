#include "ui/dialogs/skin_module.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainterPath>
#include <QWindow>
#include <algorithm>
#include <array>
#include <optional>

#include "job/program_folder.h"
#include "ui/controls/make_child.h"
#include "ui/controls/picture_box.h"
#include "ui/controls/user_input.h"
#include "ui/look/current_look.h"
#include "ui/look/skins.h"

namespace dorvane {

namespace {

constexpr int kCornerRadius = 12;

// A coordinate that may follow the window's size: factor * size + offset.
struct Coordinate {
  int factor;
  int offset;
  int In(int window_size) const { return factor * window_size + offset; }
};
constexpr std::optional<Coordinate> kDesignSize;

struct FramePicture {
  const char* name;
  Coordinate top, left;
  std::optional<Coordinate> width, height;
};

constexpr Coordinate At(int offset) {
  return {0, offset};
}
constexpr Coordinate FromEnd(int offset) {
  return {1, -offset};
}

// In the order in which they are placed.
constexpr std::array kFrame = {
    FramePicture{"imgTitleLeft", At(0), At(0), kDesignSize, kDesignSize},
    FramePicture{"imgTitleRight", At(0), FromEnd(19), kDesignSize, kDesignSize},
    FramePicture{"imgTitleMain", At(0), At(19), FromEnd(19), kDesignSize},
    FramePicture{"imgWindowLeft", At(30), At(0), kDesignSize, FromEnd(60)},
    FramePicture{"imgWindowBottomLeft", FromEnd(30), At(0), kDesignSize, kDesignSize},
    FramePicture{"imgWindowBottom", FromEnd(30), At(19), FromEnd(38), kDesignSize},
    FramePicture{"imgWindowBottomRight", FromEnd(30), FromEnd(19), kDesignSize, kDesignSize},
    FramePicture{"imgWindowRight", At(30), FromEnd(19), kDesignSize, FromEnd(38)},
    FramePicture{"imgTitleClose", At(8), FromEnd(24), kDesignSize, kDesignSize},
    FramePicture{"imgTitleMaxRestore", At(8), FromEnd(39), kDesignSize, kDesignSize},
    FramePicture{"imgTitleMinimize", At(8), FromEnd(56), kDesignSize, kDesignSize},
    FramePicture{"imgTitleHelp", At(8), FromEnd(73), kDesignSize, kDesignSize},
};

void CopyPicture(QWidget& frm, const char* from, const char* to) {
  const auto* source = frm.findChild<PictureBox*>(from);
  auto* target = frm.findChild<PictureBox*>(to);
  if (source && target) target->SetPicture(source->Picture());
}

// Moves a window by hand where the window system does not do it.
class ManualDrag : public QObject {
 public:
  explicit ManualDrag(QWidget* frm) : QObject(frm), frm_(frm), grip_(QCursor::pos() - frm->pos()) {
    qApp->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::MouseMove) {
      const QPoint mouse = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
      frm_->move(mouse - grip_);
    } else if (event->type() == QEvent::MouseButtonRelease) {
      deleteLater();
    }
    return false;
  }

 private:
  QWidget* frm_;
  QPoint grip_;
};

}  // namespace

void LoadSkin(QWidget& frm) {
  LoadSkin(frm, ProgramFolder() / "Skinz" / CurrentSkin().toStdString());
}

void LoadSkin(QWidget& frm, const std::filesystem::path& skin_folder) {
  for (PictureBox* box : frm.findChildren<PictureBox*>()) {
    const QString name = box->objectName();
    if (!name.contains("img", Qt::CaseInsensitive)) continue;
    const std::filesystem::path file = skin_folder / (name.toStdString() + ".gif");
    QPixmap picture;
    if (picture.load(QString::fromStdString(file.string()))) box->SetPicture(picture);
  }
  CopyPicture(frm, "imgTitleMaximize", "imgTitleMaxRestore");
  ProcessAllButUserInput();
}

QRect SkinPictureRect(std::string_view name, QSize window, QSize designed) {
  const auto found = std::ranges::find(kFrame, name, &FramePicture::name);
  if (found == kFrame.end()) return {{}, designed};
  const int width = found->width ? found->width->In(window.width()) : designed.width();
  const int height = found->height ? found->height->In(window.height()) : designed.height();
  return {found->left.In(window.width()), found->top.In(window.height()), width, height};
}

void LayoutSkinFrame(QWidget& frm) {
  const QSize window = frm.size();
  frm.setPalette(CurrentLook().message);
  if (const auto* title = frm.findChild<QLabel*>("lblTitle")) frm.setWindowTitle(title->text());
  RoundWindowCorners(frm);
  for (const FramePicture& picture : kFrame) {
    auto* box = frm.findChild<PictureBox*>(picture.name);
    if (box) box->setGeometry(SkinPictureRect(picture.name, window, box->size()));
  }
}

void RoundWindowCorners(QWidget& frm) {
  QPainterPath outline;
  outline.addRoundedRect(frm.rect(), kCornerRadius, kCornerRadius);
  frm.setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

void DragWindow(QWidget& frm) {
  if (frm.isMaximized()) return;
  QWindow* window = frm.windowHandle();
  if (window && window->startSystemMove()) return;
  MakeChild<ManualDrag>(frm);
}

void SetTopMost(QWidget& frm, bool top_most) {
  if (frm.windowFlags().testFlag(Qt::WindowStaysOnTopHint) == top_most) return;
  const bool visible = frm.isVisible();
  frm.setWindowFlag(Qt::WindowStaysOnTopHint, top_most);
  // Changing a window's flags hides it.
  if (visible) frm.show();
}

}  // namespace dorvane
