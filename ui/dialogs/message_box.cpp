#include "ui/dialogs/message_box.h"

#include <fmt/format.h>

#include <QApplication>
#include <QPointer>
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

QPointer<QWidget>& Owner() {
  static QPointer<QWidget> owner;
  return owner;
}

struct Message {
  MessageBoxKind kind;
  std::string_view text;
  std::int32_t style;
  std::string_view title;
  int default_answer = kAnswerYes;
  std::string_view offer = {};
};

struct Answer {
  int button;
  bool is_offer_taken;
};

Answer Run(frmMsgBox& box, const Message& message) {
  QWidget* const dialog = QApplication::activeModalWidget();
  QWidget* const main = Owner() ? Owner().data() : QApplication::activeWindow();
  box.StandOver(dialog ? dialog : main);
  box.SetOffer(ToQString(message.offer));
  const int button = box.Run(message.kind, ToQString(message.text), message.style,
                             ToQString(message.title), message.default_answer);
  return {button, box.IsOfferTaken()};
}

Answer RunBox(const Message& message) {
  auto& box = LoadedBox();
  if (!box) box = std::make_unique<frmMsgBox>();
  if (box->isVisible()) {
    // A running transfer reports while the user is still being asked something.
    frmMsgBox another;
    return Run(another, message);
  }
  const Answer answer = Run(*box, message);
  if (box->IsUnloaded()) box.reset();
  return answer;
}

}  // namespace

void ShowMessagesOver(QWidget& window) {
  Owner() = &window;
}

void ShowMessage(std::string_view text, std::int32_t style, std::string_view title) {
  RunBox({MessageBoxKind::Ok, text, style, title});
}

bool ShowMessageOffering(std::string_view text, std::int32_t style, std::string_view title,
                         std::string_view offer) {
  return RunBox({MessageBoxKind::Ok, text, style, title, kAnswerYes, offer}).is_offer_taken;
}

int AskYesNo(std::string_view text, std::int32_t style, std::string_view title,
             int default_answer) {
  return RunBox({MessageBoxKind::YesNo, text, style, title, default_answer}).button;
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
