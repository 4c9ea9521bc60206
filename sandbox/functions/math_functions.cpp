#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "sandbox/functions/scalar_functions.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/decimal.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

using namespace scalar;

TypeInfo ReturnFloat(Types) {
  return FloatType();
}

TypeInfo ReturnRounded(Types types) {
  return IsInteger(types[0].type) || types[0].type == SqlType::Bit
             ? (types[0].type == SqlType::BigInt ? BigIntType() : IntType())
         : IsText(types[0].type) || types[0].type == SqlType::Real ? FloatType()
                                                                   : types[0];
}

TypeInfo ReturnAbove(Types types) {
  const TypeInfo type = ReturnRounded(types);
  return IsExact(type.type) && !IsMoney(type.type) ? TypeInfo{type.type, 0, type.precision, 0}
                                                   : type;
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

Value Above(Call call, bool ceiling) {
  const Value value = call.values[0];
  if (const auto* exact = std::get_if<DecimalValue>(&value)) {
    const Int128 power = PowerOfTen(exact->scale);
    Int128 whole = exact->unscaled / power;
    const Int128 rest = exact->unscaled % power;
    if (ceiling && rest > 0) ++whole;
    if (!ceiling && rest < 0) --whole;
    return Convert(DecimalValue{whole, 0}, DecimalType(38, 0), call.result);
  }
  if (std::holds_alternative<std::int64_t>(value)) return value;
  const double real = Real(call, 0);
  return ceiling ? std::ceil(real) : std::floor(real);
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

Value Sign(Call call) {
  const double number = Real(call, 0);
  const std::int64_t sign = number > 0 ? 1 : number < 0 ? -1 : 0;
  return Convert(sign, IntType(), call.result);
}

Value IsNumericText(Call call) {
  if (IsNumber(call.types[0].type)) return std::int64_t{1};
  try {
    Convert(Text(call, 0), kLongText, FloatType());
    return std::int64_t{TrimRight(Text(call, 0)).empty() ? 0 : 1};
  } catch (const SqlError&) {
    return std::int64_t{0};
  }
}

template <double (*F)(double)>
Value RealFunction(Call call) {
  return F(Real(call, 0));
}

Value Power(Call call) {
  const double result = std::pow(Real(call, 0), Real(call, 1));
  if (!std::isfinite(result)) Raise(8115, "expression", TypeName(call.result));
  return Convert(result, FloatType(), call.result);
}

Value SquareRoot(Call call) {
  if (Real(call, 0) < 0) Raise(15034, "An invalid floating point operation occurred.");
  return std::sqrt(Real(call, 0));
}

Value Random(Call) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  return std::uniform_real_distribution<double>(0, 1)(random);
}

const std::array kFunctions{
    ScalarFunction{"abs", 1, 1, ReturnRounded, Absolute},
    ScalarFunction{"ceiling", 1, 1, ReturnAbove, [](Call c) { return Above(c, true); }},
    ScalarFunction{"exp", 1, 1, ReturnFloat, RealFunction<std::exp>},
    ScalarFunction{"floor", 1, 1, ReturnAbove, [](Call c) { return Above(c, false); }},
    ScalarFunction{"isnumeric", 1, 1, ReturnInt, IsNumericText},
    ScalarFunction{"log", 1, 1, ReturnFloat, RealFunction<std::log>},
    ScalarFunction{"power", 2, 2, ReturnRounded, Power},
    ScalarFunction{"rand", 0, 1, ReturnFloat, Random},
    ScalarFunction{"round", 2, 3, ReturnRounded, Round},
    ScalarFunction{"sign", 1, 1, ReturnRounded, Sign},
    ScalarFunction{"sqrt", 1, 1, ReturnFloat, SquareRoot},
};

}  // namespace

std::span<const ScalarFunction> MathFunctions() {
  return kFunctions;
}

}  // namespace sandbox
