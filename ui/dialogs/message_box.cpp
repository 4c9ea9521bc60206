#include "ui/dialogs/message_box.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <exception>
#include <memory>

#include "platform/run_time_error.h"
#include "ui/controls/qt_text.h"
#include "ui/dialogs/frm_msg_box.h"

namespace dorvane {
namespace {

// The box stays loaded between messages and goes away before the window system does.
std::unique_ptr<frmMsgBox>& LoadedBox() {
  static std::unique_ptr<frmMsgBox> box = [] {
    qAddPostRoutine([] { LoadedBox().reset(); });
    return std::unique_ptr<frmMsgBox>();
  }();
  return box;
}

int RunBox(MessageBoxKind kind, std::string_view text, std::int32_t style, std::string_view title) {
  auto& box = LoadedBox();
  if (!box) box = std::make_unique<frmMsgBox>();
  if (box->isVisible()) {
    // A running transfer reports while the user is still being asked something.
    return frmMsgBox().Run(kind, ToQString(text), style, ToQString(title));
  }
  const int answer = box->Run(kind, ToQString(text), style, ToQString(title));
  if (box->IsUnloaded()) box.reset();
  return answer;
}

}  // namespace

void ShowMessage(std::string_view text, std::int32_t style, std::string_view title) {
  RunBox(MessageBoxKind::kOk, text, style, title);
}

int AskYesNo(std::string_view text, std::int32_t style, std::string_view title) {
  return RunBox(MessageBoxKind::kYesNo, text, style, title);
}

ErrorSummary CurrentFailure() {
  try {
    throw;
  } catch (const RunTimeError& error) {
    return {error.Number(), error.Description()};
  } catch (const std::exception& error) {
    return {0, error.what()};
  }
}

std::string DescribeUnexpectedFailure() {
  const ErrorSummary failure = CurrentFailure();
  return fmt::format("Unexpected error no. {} _ {}", failure.number, failure.description);
}

}  // namespace dorvane
