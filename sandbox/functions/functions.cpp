#include "sandbox/functions/functions.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "sandbox/storage/encoding.h"
#include "sandbox/text/utf8.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/decimal.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

// Runs `body` so that what it raises waits in the host for the failing step.
template <typename Body>
void Guarded(sqlite3_context* context, Body body) {
  auto& host = *static_cast<FunctionHost*>(sqlite3_user_data(context));
  try {
    body();
  } catch (SqlError& error) {
    host.raised = std::move(error);
    sqlite3_result_error(context, "raised", -1);
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

std::string_view TextArgument(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text ? text : "", static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

TypeInfo TypeArgument(sqlite3_value* value) {
  return UnpackType(sqlite3_value_int64(value));
}

void CallFunction(sqlite3_context* context, int count, sqlite3_value** args) {
  Guarded(context, [&] {
    const bool named = sqlite3_value_type(args[0]) == SQLITE_TEXT;
    const ScalarFunction& function =
        Function(named ? FindFunction(TextArgument(args[0])).value()
                       : static_cast<std::size_t>(sqlite3_value_int64(args[0])));
    const TypeInfo result = TypeArgument(args[1]);
    std::vector<TypeInfo> types;
    std::vector<Value> values;
    for (int i = 2; i + 1 < count; i += 2) {
      types.push_back(TypeArgument(args[i]));
      values.push_back(ReadArgument(args[i + 1], types.back()));
      const bool null = IsNull(values.back());
      if (null && !function.takes_null) return sqlite3_result_null(context);
    }
    ReturnValue(context, function.evaluate({values, types, result}), result);
  });
}

void SessionFunction(sqlite3_context* context, int count, sqlite3_value** args) {
  Guarded(context, [&] {
    auto& host = *static_cast<FunctionHost*>(sqlite3_user_data(context));
    const TypeInfo result = TypeArgument(args[1]);
    std::vector<Value> values;
    for (int i = 2; i + 1 < count; i += 2) {
      values.push_back(ReadArgument(args[i + 1], TypeArgument(args[i])));
    }
    const auto [value, type] = host.SessionValue(TextArgument(args[0]), values);
    ReturnValue(context, Convert(value, type, result), result);
  });
}

void ConvertFunction(sqlite3_context* context, int, sqlite3_value** args) {
  Guarded(context, [&] {
    const TypeInfo from = TypeArgument(args[0]), to = TypeArgument(args[1]);
    const Value value = ReadArgument(args[3], from);
    ReturnValue(context, Convert(value, from, to, sqlite3_value_int(args[2])), to);
  });
}

std::int64_t IntegerMath(char op, std::int64_t a, std::int64_t b, const TypeInfo& type) {
  std::int64_t result = 0;
  bool overflow = false;
  switch (op) {
    case '+':
      overflow = __builtin_add_overflow(a, b, &result);
      break;
    case '-':
      overflow = __builtin_sub_overflow(a, b, &result);
      break;
    case '*':
      overflow = __builtin_mul_overflow(a, b, &result);
      break;
    case '&':
      return a & b;
    default:
      if (b == 0) Raise(8134);
      if (b == -1) return op == '%' ? 0 : IntegerMath('-', 0, a, type);
      return op == '/' ? a / b : a % b;
  }
  if (overflow) Raise(8115, "expression", TypeName(type));
  return std::get<std::int64_t>(Convert(result, BigIntType(), type));
}

double DoubleMath(char op, double a, double b) {
  if (b == 0 && (op == '/' || op == '%')) Raise(8134);
  const double result = op == '+'   ? a + b
                        : op == '-' ? a - b
                        : op == '*' ? a * b
                        : op == '/' ? a / b
                                    : std::fmod(a, b);
  if (!std::isfinite(result)) Raise(8115, "expression", "float");
  return result;
}

Value DecimalMath(char op, const DecimalValue& a, const DecimalValue& b, const TypeInfo& result) {
  if (b.unscaled == 0 && (op == '/' || op == '%')) Raise(8134);
  const auto number = Calculate(op, a, b, result.scale);
  if (!number) Raise(8115, "expression", TypeName(result));
  return Convert(*number, DecimalType(38, result.scale), result);
}

Value Compute(char op, const TypeInfo& operand, const TypeInfo& result, const Value& left,
              const Value& right) {
  if (IsText(operand.type)) {
    std::string text = std::get<std::string>(left) + std::get<std::string>(right);
    return Convert(text, {result.type, -1, 0, 0}, result);
  }
  if (IsBinary(operand.type)) {
    return BinaryValue{std::get<BinaryValue>(left).bytes + std::get<BinaryValue>(right).bytes};
  }
  if (IsApproximate(operand.type)) {
    return DoubleMath(op, std::get<double>(left), std::get<double>(right));
  }
  if (IsExact(operand.type) || std::holds_alternative<DecimalValue>(left)) {
    return DecimalMath(op, std::get<DecimalValue>(left), std::get<DecimalValue>(right), result);
  }
  return IntegerMath(op, std::get<std::int64_t>(left), std::get<std::int64_t>(right), result);
}

// tsql_math(op, left type, right type, result type, left, right)
void MathFunction(sqlite3_context* context, int, sqlite3_value** args) {
  Guarded(context, [&] {
    const char op = *reinterpret_cast<const char*>(sqlite3_value_text(args[0]));
    const TypeInfo left = TypeArgument(args[1]), right = TypeArgument(args[2]);
    const TypeInfo result = TypeArgument(args[3]);
    const Value a = ReadArgument(args[4], left), b = ReadArgument(args[5], right);
    const auto null = [](const Value& value) { return IsNull(value); };
    if (null(a) || null(b)) return sqlite3_result_null(context);
    ReturnValue(context, Compute(op, left, result, a, b), result);
  });
}

template <bool with_case>
void LikeFunction(sqlite3_context* context, int count, sqlite3_value** args) {
  for (int i = 0; i < count; ++i) {
    if (sqlite3_value_type(args[i]) == SQLITE_NULL) return sqlite3_result_null(context);
  }
  char32_t escape = 0;
  if (count > 2) {
    std::string_view text = TextArgument(args[2]);
    if (!text.empty()) escape = NextCodePoint(text);
  }
  const bool matches =
      MatchesPattern(TextArgument(args[0]), TextArgument(args[1]), escape, with_case);
  sqlite3_result_int(context, matches ? 1 : 0);
}

// ---- aggregates

struct Sum {
  std::int64_t count;
  double real;
  // SQLite's memory is aligned for eight bytes only: the wide sum lies in it as bytes.
  unsigned char unscaled[sizeof(Int128)];
  std::int64_t scale;
  std::int64_t type;
  bool overflow;

  DecimalValue Exact() const {
    DecimalValue exact;
    std::memcpy(&exact.unscaled, unscaled, sizeof unscaled);
    exact.scale = static_cast<int>(scale);
    return exact;
  }
  void Add(const DecimalValue& number) {
    const DecimalValue total{Exact().unscaled + number.unscaled, number.scale};
    std::memcpy(unscaled, &total.unscaled, sizeof unscaled);
    scale = number.scale;
    if (!FitsPrecision(total, 38)) overflow = true;
  }
};

void SumStep(sqlite3_context* context, int, sqlite3_value** args) {
  auto* sum = static_cast<Sum*>(sqlite3_aggregate_context(context, sizeof(Sum)));
  sum->type = sqlite3_value_int64(args[0]);
  const TypeInfo type = UnpackType(sum->type);
  const Value value = ReadArgument(args[1], type);
  if (IsNull(value)) return;
  ++sum->count;
  if (const auto* real = std::get_if<double>(&value)) {
    sum->real += *real;
    return;
  }
  DecimalValue number;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) number.unscaled = *integer;
  if (const auto* exact = std::get_if<DecimalValue>(&value)) number = *exact;
  if (!sum->overflow) sum->Add(number);
}

void SumFinal(sqlite3_context* context, bool average) {
  auto* sum = static_cast<Sum*>(sqlite3_aggregate_context(context, 0));
  if (!sum || sum->count == 0) return sqlite3_result_null(context);
  Guarded(context, [&] {
    const TypeInfo type = UnpackType(sum->type);
    const TypeInfo result = average ? AverageType(type) : SumType(type);
    if (sum->overflow) Raise(8115, "expression", TypeName(result));
    if (IsApproximate(type.type)) {
      const double value = average ? sum->real / static_cast<double>(sum->count) : sum->real;
      return ReturnValue(context, value, result);
    }
    DecimalValue exact = sum->Exact();
    if (average && !IsExact(type.type)) {
      exact.unscaled /= sum->count;
    } else if (average) {
      exact = Calculate('/', exact, {sum->count, 0}, result.scale).value_or(exact);
    }
    ReturnValue(context, Convert(exact, DecimalType(38, exact.scale), result), result);
  });
}

void SumEnd(sqlite3_context* context) {
  SumFinal(context, false);
}
void AverageEnd(sqlite3_context* context) {
  SumFinal(context, true);
}

// A subquery used as a value: the one row it may have.
struct Single {
  std::int64_t rows;
  sqlite3_value* value;
};

void SingleStep(sqlite3_context* context, int, sqlite3_value** args) {
  auto* single = static_cast<Single*>(sqlite3_aggregate_context(context, sizeof(Single)));
  if (++single->rows == 1) {
    single->value = sqlite3_value_dup(args[0]);
    return;
  }
  Guarded(context, [] { Raise(512); });
}

void SingleEnd(sqlite3_context* context) {
  auto* single = static_cast<Single*>(sqlite3_aggregate_context(context, 0));
  if (!single || single->rows == 0) return sqlite3_result_null(context);
  if (single->rows == 1) {
    sqlite3_result_value(context, single->value);
  }
  sqlite3_value_free(single->value);
}

}  // namespace

TypeInfo SumType(const TypeInfo& type) {
  if (IsApproximate(type.type)) return FloatType();
  if (IsMoney(type.type)) return MoneyType();
  if (IsExact(type.type)) return {type.type, 0, 38, type.scale};
  return type.type == SqlType::BigInt ? type : IntType();
}

TypeInfo AverageType(const TypeInfo& type) {
  const TypeInfo sum = SumType(type);
  return sum.type == SqlType::Decimal || sum.type == SqlType::Numeric
             ? TypeInfo{sum.type, 0, 38, std::max(type.scale, 6)}
             : sum;
}

void RegisterFunctions(sqlite3* connection, FunctionHost& host) {
  const auto scalar = [&](const std::string& name, int args, int flags, auto* function) {
    sqlite3_create_function_v2(connection, name.c_str(), args, SQLITE_UTF8 | flags, &host, function,
                               nullptr, nullptr, nullptr);
  };
  for (const auto& [prefix, flags] : {std::pair("tsql_", 0), {"fixed_", SQLITE_DETERMINISTIC}}) {
    const std::string name = prefix;
    scalar(name + "call", -1, flags, CallFunction);
    scalar(name + "convert", 4, flags, ConvertFunction);
    scalar(name + "math", 6, flags, MathFunction);
    for (const int args : {2, 3}) {
      scalar(name + "like", args, flags, LikeFunction<false>);
      scalar(name + "like_case", args, flags, LikeFunction<true>);
    }
  }
  scalar("tsql_session", -1, 0, SessionFunction);
  const auto aggregate = [&](const char* name, int args, auto* step, auto* end) {
    sqlite3_create_function_v2(connection, name, args, SQLITE_UTF8, &host, nullptr, step, end,
                               nullptr);
  };
  aggregate("tsql_sum", 2, SumStep, SumEnd);
  aggregate("tsql_avg", 2, SumStep, AverageEnd);
  aggregate("tsql_one", 1, SingleStep, SingleEnd);
}

}  // namespace sandbox
