#include "ui/controls/user_input.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

namespace dorvane {

void ProcessAllButUserInput() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  ResumeUserInput();
}

void ResumeUserInput() {
  if (auto* dispatcher = QAbstractEventDispatcher::instance()) dispatcher->wakeUp();
}

}  // namespace dorvane
