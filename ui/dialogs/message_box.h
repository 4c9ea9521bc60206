#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "endpoint/events.h"
#include "platform/run_time_error.h"

class QWidget;

namespace dorvane {

/// Results of AskYesNo.
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

/// The window that message boxes stand over, unless a dialog is open. It may go away.
void ShowMessagesOver(QWidget& window);

/// Shows `text` with the icon of `style` (a value of message_style) and an OK button, and returns
/// when the user has closed the box. A blank title shows "Dorvane". Texts are UTF-8. To be called
/// in the user-interface thread.
void ShowMessage(std::string_view text, std::int32_t style, std::string_view title);

/// The same with a check box of that caption; true when it was ticked.
bool ShowMessageOffering(std::string_view text, std::int32_t style, std::string_view title,
                         std::string_view offer);

/// The same with Yes and No; returns kAnswerYes or kAnswerNo. Enter gives `default_answer`.
int AskYesNo(std::string_view text, std::int32_t style, std::string_view title,
             int default_answer = kAnswerYes);

/// Of the exception being handled, number 0 when it has none; to be called in a catch clause.
ErrorSummary CurrentFailure();

/// "Unexpected error no. " + number + " _ " + description, of the exception being handled.
std::string DescribeUnexpectedFailure();

}  // namespace dorvane
