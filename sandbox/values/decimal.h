#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sandbox/values/types.h"

namespace sandbox {

/// 10^exponent for 0 to 38.
Int128 PowerOfTen(int exponent);
/// The number with another scale, rounded half away from zero; nothing when 38 digits are too few.
std::optional<DecimalValue> Rescale(const DecimalValue& number, int scale);
/// True when the number has no more than `precision` digits.
bool FitsPrecision(const DecimalValue& number, int precision);
std::string DecimalText(const DecimalValue& number);
/// Digits with sign, point and (if `exponent`) an exponent; nothing when the text is no number.
std::optional<DecimalValue> ParseDecimal(std::string_view text);
std::optional<DecimalValue> DecimalFromDouble(double number, int scale);
double ToDouble(const DecimalValue& number);
/// left OP right with exactly `scale` digits behind the point; nothing on overflow. The divisor of
/// '/' and '%' is not zero.
std::optional<DecimalValue> Calculate(char op, const DecimalValue& left, const DecimalValue& right,
                                      int scale);

}  // namespace sandbox
