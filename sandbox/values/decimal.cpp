#include "sandbox/values/decimal.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace sandbox {

namespace {

constexpr int kMaxDigits = 38;

constexpr auto kPowers = [] {
  std::array<Int128, kMaxDigits + 1> powers{};
  powers[0] = 1;
  for (int i = 1; i <= kMaxDigits; ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

Int128 Absolute(Int128 number) {
  return number < 0 ? -number : number;
}

// Two 128-bit halves, for the products and dividends that 38 digits lead to.
struct Wide {
  UInt128 high = 0;
  UInt128 low = 0;
};

Wide Multiply(UInt128 a, UInt128 b) {
  const UInt128 mask = ~std::uint64_t{0};
  const UInt128 a_low = a & mask, a_high = a >> 64, b_low = b & mask, b_high = b >> 64;
  const UInt128 low = a_low * b_low;
  const UInt128 middle = a_high * b_low + (low >> 64);
  const UInt128 middle2 = a_low * b_high + (middle & mask);
  return {a_high * b_high + (middle >> 64) + (middle2 >> 64), (middle2 << 64) | (low & mask)};
}

struct Quotient {
  Wide value;
  UInt128 remainder = 0;
};

Quotient Divide(Wide number, UInt128 divisor) {
  Quotient result;
  for (int bit = 255; bit >= 0; --bit) {
    const UInt128 next = bit >= 128 ? (number.high >> (bit - 128)) & 1 : (number.low >> bit) & 1;
    const bool carry = (result.remainder >> 127) != 0;
    result.remainder = (result.remainder << 1) | next;
    if (!carry && result.remainder < divisor) continue;
    result.remainder -= divisor;
    (bit >= 128 ? result.value.high : result.value.low) |= UInt128{1} << (bit % 128);
  }
  return result;
}

std::optional<Int128> Narrow(const Wide& number) {
  if (number.high != 0 || number.low >= static_cast<UInt128>(kPowers[kMaxDigits])) {
    return std::nullopt;
  }
  return static_cast<Int128>(number.low);
}

std::optional<Int128> DivideRounded(const Wide& number, Int128 divisor, bool round) {
  Quotient result = Divide(number, static_cast<UInt128>(divisor));
  if (round && result.remainder >= static_cast<UInt128>(divisor) - result.remainder) {
    ++result.value.low;
  }
  return Narrow(result.value);
}

std::optional<DecimalValue> Signed(std::optional<Int128> magnitude, bool negative, int scale) {
  if (!magnitude) return std::nullopt;
  return DecimalValue{negative ? -*magnitude : *magnitude, scale};
}

std::optional<DecimalValue> Product(const DecimalValue& left, const DecimalValue& right,
                                    int scale) {
  const Wide product = Multiply(static_cast<UInt128>(Absolute(left.unscaled)),
                                static_cast<UInt128>(Absolute(right.unscaled)));
  const bool negative = (left.unscaled < 0) != (right.unscaled < 0);
  const int surplus = left.scale + right.scale - scale;
  if (surplus > kMaxDigits) return DecimalValue{0, scale};
  if (surplus > 0) return Signed(DivideRounded(product, kPowers[surplus], true), negative, scale);
  const auto exact = Signed(Narrow(product), negative, left.scale + right.scale);
  return exact ? Rescale(*exact, scale) : std::nullopt;
}

std::optional<DecimalValue> QuotientOf(const DecimalValue& left, const DecimalValue& right,
                                       int scale) {
  const bool negative = (left.unscaled < 0) != (right.unscaled < 0);
  const int shift = std::clamp(scale - left.scale + right.scale, 0, kMaxDigits);
  const Wide dividend =
      Multiply(static_cast<UInt128>(Absolute(left.unscaled)), static_cast<UInt128>(kPowers[shift]));
  const int reached = left.scale + shift - right.scale;
  const auto quotient =
      Signed(DivideRounded(dividend, Absolute(right.unscaled), false), negative, reached);
  return quotient && reached != scale ? Rescale(*quotient, scale) : quotient;
}

}  // namespace

Int128 PowerOfTen(int exponent) {
  return kPowers[static_cast<std::size_t>(exponent)];
}

std::optional<DecimalValue> Rescale(const DecimalValue& number, int scale) {
  if (scale == number.scale) return number;
  if (scale < number.scale) {
    const int drop = number.scale - scale;
    if (drop > kMaxDigits) return DecimalValue{0, scale};
    const Int128 power = kPowers[drop];
    Int128 quotient = number.unscaled / power;
    const Int128 rest = Absolute(number.unscaled % power);
    if (rest >= power - rest) quotient += number.unscaled < 0 ? -1 : 1;
    return DecimalValue{quotient, scale};
  }
  const int add = scale - number.scale;
  if (number.unscaled == 0) return DecimalValue{0, scale};
  if (add > kMaxDigits || Absolute(number.unscaled) > kPowers[kMaxDigits] / kPowers[add]) {
    return std::nullopt;
  }
  return DecimalValue{number.unscaled * kPowers[add], scale};
}

bool FitsPrecision(const DecimalValue& number, int precision) {
  return Absolute(number.unscaled) < kPowers[precision];
}

std::string DecimalText(const DecimalValue& number) {
  UInt128 rest = static_cast<UInt128>(Absolute(number.unscaled));
  std::string digits;
  while (rest != 0 || static_cast<int>(digits.size()) <= number.scale) {
    digits += static_cast<char>('0' + static_cast<int>(rest % 10));
    rest /= 10;
    if (static_cast<int>(digits.size()) == number.scale) digits += '.';
  }
  if (digits.back() == '.') digits += '0';
  if (number.unscaled < 0) digits += '-';
  std::reverse(digits.begin(), digits.end());
  return digits;
}

std::optional<DecimalValue> ParseDecimal(std::string_view text) {
  DecimalValue number;
  bool negative = false, any = false, fraction = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  for (const char c : text) {
    if (c == '.' && !fraction) {
      fraction = true;
      continue;
    }
    if (c < '0' || c > '9') return std::nullopt;
    any = true;
    if (Absolute(number.unscaled) >= kPowers[kMaxDigits - 1]) {
      if (!fraction) return std::nullopt;
      continue;  // digits behind the last that fit
    }
    number.unscaled = number.unscaled * 10 + (c - '0');
    if (fraction) ++number.scale;
  }
  if (!any) return std::nullopt;
  if (negative) number.unscaled = -number.unscaled;
  return number;
}

std::optional<DecimalValue> DecimalFromDouble(double number, int scale) {
  if (!std::isfinite(number) || std::fabs(number) >= 1e38) return std::nullopt;
  // Seventeen significant digits are all a double has; the rest is filled with zeros.
  const std::string text = fmt::format("{:.16e}", number);
  const std::size_t e = text.find('e');
  auto mantissa = ParseDecimal(std::string_view(text).substr(0, e));
  if (!mantissa) return std::nullopt;
  mantissa->scale -= std::stoi(text.substr(e + 1));
  if (mantissa->scale < 0) {
    const int shift = -mantissa->scale;
    if (shift > kMaxDigits - 17) return std::nullopt;
    mantissa->unscaled *= kPowers[shift];
    mantissa->scale = 0;
  }
  return Rescale(*mantissa, scale);
}

double ToDouble(const DecimalValue& number) {
  return std::stod(DecimalText(number));
}

std::optional<DecimalValue> Calculate(char op, const DecimalValue& left, const DecimalValue& right,
                                      int scale) {
  if (op == '*') return Product(left, right, scale);
  if (op == '/') return QuotientOf(left, right, scale);
  const int common = std::max(left.scale, right.scale);
  const auto a = Rescale(left, common), b = Rescale(right, common);
  if (!a || !b) return std::nullopt;
  // Two numbers of 38 digits can leave 128 bits.
  Int128 result = 0;
  const bool overflows = op == '+'   ? __builtin_add_overflow(a->unscaled, b->unscaled, &result)
                         : op == '-' ? __builtin_sub_overflow(a->unscaled, b->unscaled, &result)
                                     : (result = a->unscaled % b->unscaled, false);
  if (overflows) return std::nullopt;
  if (!FitsPrecision({result, common}, kMaxDigits)) return std::nullopt;
  return Rescale({result, common}, scale);
}

}  // namespace sandbox
