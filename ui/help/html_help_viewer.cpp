#include "ui/help/html_help_viewer.h"

#include <memory>

namespace dorvane {

void HTMLHelpViewer::Unload() {
  delete window_.data();
}

HelpWindow& HTMLHelpViewer::Window() {
  if (!window_) {
    window_ = std::make_unique<HelpWindow>(help_file_).release();
    window_->setAttribute(Qt::WA_DeleteOnClose);
  }
  window_->show();
  window_->raise();
  window_->activateWindow();
  return *window_;
}

}  // namespace dorvane
