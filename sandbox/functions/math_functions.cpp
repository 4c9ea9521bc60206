#include <algorithm>
#include <array>
#include <cmath>

#include "sandbox/functions/scalar_functions.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/decimal.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

using namespace scalar;

TypeInfo ReturnRounded(Types types) {
  return IsInteger(types[0].type) || types[0].type == SqlType::Bit
             ? (types[0].type == SqlType::BigInt ? BigIntType() : IntType())
         : IsText(types[0].type) || types[0].type == SqlType::Real ? FloatType()
                                                                   : types[0];
}

Value Round(Call call) {
  const auto digits = static_cast<int>(std::clamp<std::int64_t>(Integer(call, 1), -38, 38));
  const bool cut = call.values.size() > 2 && Integer(call, 2) != 0;
  const Value value = Convert(call.values[0], call.types[0], call.result);
  if (const auto* real = std::get_if<double>(&value)) {
    const double power = std::pow(10.0, digits);
    return (cut ? std::trunc(*real * power) : std::round(*real * power)) / power;
  }
  DecimalValue number;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) number.unscaled = *integer;
  if (const auto* exact = std::get_if<DecimalValue>(&value)) number = *exact;
  const int drop = number.scale - digits;
  if (drop <= 0) return value;
  if (drop > 38) return Convert(std::int64_t{0}, IntType(), call.result);
  const Int128 power = PowerOfTen(drop);
  const Int128 whole =
      cut ? number.unscaled / power : Rescale({number.unscaled, drop}, 0)->unscaled;
  number.unscaled = whole * power;
  return Convert(number, DecimalType(38, number.scale), call.result);
}

Value Absolute(Call call) {
  Value value = Convert(call.values[0], call.types[0], call.result);
  if (auto* integer = std::get_if<std::int64_t>(&value)) {
    if (*integer == INT64_MIN) Raise(8115, "expression", "bigint");
    *integer = std::abs(*integer);
    return Convert(value, BigIntType(), call.result);
  }
  if (auto* real = std::get_if<double>(&value)) *real = std::fabs(*real);
  if (auto* exact = std::get_if<DecimalValue>(&value); exact && exact->unscaled < 0) {
    exact->unscaled = -exact->unscaled;
  }
  return value;
}

const std::array kFunctions{
    ScalarFunction{"abs", 1, 1, ReturnRounded, Absolute},
    ScalarFunction{"round", 2, 3, ReturnRounded, Round},
};

}  // namespace

std::span<const ScalarFunction> MathFunctions() {
  return kFunctions;
}

}  // namespace sandbox
