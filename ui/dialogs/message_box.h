#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "endpoint/events.h"

namespace dorvane {

/// Results of AskYesNo.
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

/// Shows `text` with the icon of `style` (a value of message_style) and an OK button, and returns
/// when the user has closed the box. A blank title shows "Dorvane". Texts are UTF-8. To be called
/// in the user-interface thread.
void ShowMessage(std::string_view text, std::int32_t style, std::string_view title);

/// The same with Yes and No; returns kAnswerYes or kAnswerNo.
int AskYesNo(std::string_view text, std::int32_t style, std::string_view title);

/// Number and description of a failure; 0 for one that carries no number.
struct FailureFacts {
  std::int32_t number = 0;
  std::string description;
};

/// Of the exception being handled; to be called in a catch clause.
FailureFacts CurrentFailure();

/// "Unexpected error no. " + number + " _ " + description, of the exception being handled.
std::string DescribeUnexpectedFailure();

}  // namespace dorvane
