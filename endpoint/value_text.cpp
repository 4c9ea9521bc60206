#include "endpoint/value_text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <optional>

#include "platform/run_time_error.h"
#include "platform/text/number_text.h"

namespace dorvane {

namespace {

constexpr std::size_t kFloatSize = 48;
constexpr std::size_t kMostFixedDigits = 15;
constexpr std::int32_t kSecondsPerDay = 24 * 60 * 60;

[[noreturn]] void ThrowTypeMismatch(std::string_view text) {
  throw RunTimeError(run_time::kTypeMismatch, "Dorvane", "Type mismatch: " + std::string(text));
}

std::size_t SignificantDigits(std::string_view number) {
  const std::string_view mantissa = number.substr(0, number.find('e'));
  const std::size_t first = mantissa.find_first_of("123456789");
  if (first == std::string_view::npos) return 1;
  const std::string_view digits = mantissa.substr(first);
  return digits.size() - static_cast<std::size_t>(std::count(digits.begin(), digits.end(), '.'));
}

template <typename Float>
std::size_t WriteShortest(char* out, Float value) {
  const Float magnitude = std::fabs(value);
  const bool fits = magnitude == 0 || (magnitude >= Float(1e-5) && magnitude < Float(1e15));
  if (fits) {
    char* end = std::to_chars(out, out + kFloatSize, value, std::chars_format::fixed).ptr;
    const auto length = static_cast<std::size_t>(end - out);
    if (SignificantDigits({out, length}) <= kMostFixedDigits) return length;
  }
  char* end = std::to_chars(out, out + kFloatSize, value, std::chars_format::scientific).ptr;
  return static_cast<std::size_t>(end - out);
}

// Puts the leading blank and the point around digits that stand at out + 1.
std::size_t Finish(char* out, std::size_t length) {
  std::size_t start = 0;
  if (out[1] == '-') {
    std::memmove(out, out + 1, length);
  } else {
    out[0] = ' ';
    start = 1;
  }
  std::size_t size = start + length;
  if (std::find(out, out + size, '.') != out + size) return size;
  char* point = std::find(out, out + size, 'e');
  std::memmove(point + 2, point, static_cast<std::size_t>(out + size - point));
  point[0] = '.';
  point[1] = '0';
  return size + 2;
}

char* WriteDigits(char* out, std::int32_t number, int digits) {
  for (int position = digits - 1; position >= 0; --position) {
    out[position] = static_cast<char>('0' + number % 10);
    number /= 10;
  }
  return out + digits;
}

/// Takes pieces off the front of a date's text.
class DateReader {
 public:
  explicit DateReader(std::string_view text) : rest_(text::Trim(text)) {}

  bool AtEnd() const { return rest_.empty(); }
  bool Take(char expected) {
    if (rest_.empty() || rest_.front() != expected) return false;
    rest_.remove_prefix(1);
    return true;
  }
  std::size_t DigitsAhead() const {
    return std::min(rest_.find_first_not_of("0123456789"), rest_.size());
  }
  char AfterDigits() const {
    const std::size_t digits = DigitsAhead();
    return digits < rest_.size() ? rest_[digits] : '\0';
  }
  std::optional<std::int32_t> Number(std::size_t least, std::size_t most) {
    const std::size_t digits = std::min(DigitsAhead(), most);
    if (digits < least) return std::nullopt;
    std::int32_t number = 0;
    std::from_chars(rest_.data(), rest_.data() + digits, number);
    rest_.remove_prefix(digits);
    return number;
  }

 private:
  std::string_view rest_;
};

bool SetDate(ado::DateTime& value, std::optional<std::int32_t> year,
             std::optional<std::int32_t> month, std::optional<std::int32_t> day) {
  if (!year || !month || !day) return false;
  const std::chrono::year_month_day date{std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  const bool zero = *year == 0 && *month == 0 && *day == 0;
  if (!zero && !date.ok()) return false;
  value.year = static_cast<std::int16_t>(*year);
  value.month = static_cast<std::uint8_t>(*month);
  value.day = static_cast<std::uint8_t>(*day);
  return true;
}

bool ReadDate(DateReader& reader, ado::DateTime& value) {
  if (reader.AfterDigits() == '/') {
    const auto month = reader.Number(1, 2);
    if (!reader.Take('/')) return false;
    const auto day = reader.Number(1, 2);
    if (!reader.Take('/')) return false;
    return SetDate(value, reader.Number(4, 4), month, day);
  }
  const auto year = reader.Number(4, 4);
  const bool separated = reader.Take('-');
  const auto month = reader.Number(separated ? 1 : 2, 2);
  if (separated && !reader.Take('-')) return false;
  return SetDate(value, year, month, reader.Number(separated ? 1 : 2, 2));
}

bool ReadTime(DateReader& reader, ado::DateTime& value) {
  const auto hours = reader.Number(1, 2);
  if (!reader.Take(':')) return false;
  const auto minutes = reader.Number(2, 2);
  std::optional<std::int32_t> seconds = 0;
  if (reader.Take(':')) seconds = reader.Number(2, 2);
  if (!hours || !minutes || !seconds) return false;
  if (*hours > 23 || *minutes > 59 || *seconds > 59) return false;
  value.seconds = (*hours * 60 + *minutes) * 60 + *seconds;
  if (!reader.Take('.')) return true;
  const std::size_t digits = reader.DigitsAhead();
  auto fraction = reader.Number(1, 9);
  if (!fraction || digits > 9) return false;
  for (std::size_t digit = digits; digit < 9; ++digit) *fraction *= 10;
  value.nanoseconds = *fraction;
  return true;
}

int HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Nothing when a character is no hexadecimal digit. An odd number of digits has a leading zero.
std::optional<std::string> BytesOfHex(std::string_view digits) {
  std::string bytes;
  int high = digits.size() % 2 == 0 ? -1 : 0;
  for (const char digit : digits) {
    const int nibble = HexDigit(digit);
    if (nibble < 0) return std::nullopt;
    if (high < 0) {
      high = nibble;
      continue;
    }
    bytes.push_back(static_cast<char>(high * 16 + nibble));
    high = -1;
  }
  return bytes;
}

}  // namespace

std::size_t NumberSize(const ado::Value& value) {
  const auto* decimal = std::get_if<ado::Decimal>(&value);
  return decimal != nullptr ? decimal->digits.size() + 3 : kFloatSize + 3;
}

std::size_t WriteNumber(char* out, const ado::Value& value) {
  char* digits = out + 1;
  if (const auto* decimal = std::get_if<ado::Decimal>(&value)) {
    std::copy(decimal->digits.begin(), decimal->digits.end(), digits);
    return Finish(out, decimal->digits.size());
  }
  if (const auto* number = std::get_if<double>(&value)) {
    return Finish(out, WriteShortest(digits, *number));
  }
  if (const auto* number = std::get_if<float>(&value)) {
    return Finish(out, WriteShortest(digits, *number));
  }
  return Finish(out, WriteInteger(digits, value));
}

std::size_t WriteInteger(char* out, const ado::Value& value) {
  const auto length = [out](std::to_chars_result result) {
    return static_cast<std::size_t>(result.ptr - out);
  };
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    return length(std::to_chars(out, out + 20, *number));
  }
  if (const auto* number = std::get_if<std::uint64_t>(&value)) {
    return length(std::to_chars(out, out + 20, *number));
  }
  const auto* flag = std::get_if<bool>(&value);
  out[0] = flag != nullptr && *flag ? '1' : '0';
  return 1;
}

std::string NumberText(std::string_view number) {
  const std::string_view trimmed = text::Trim(number);
  if (!text::IsNumeric(trimmed)) ThrowTypeMismatch(number);
  const bool negative = trimmed.front() == '-';
  std::string_view digits = trimmed.substr(negative || trimmed.front() == '+' ? 1 : 0);

  std::string plain(digits);
  if (digits.find_first_of("eEdD") != std::string_view::npos) {
    double value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    plain.resize(kFloatSize);
    plain.resize(WriteShortest(plain.data(), value));
  } else {
    plain.erase(0, std::min(plain.find_first_not_of('0'), plain.size()));
    if (plain.find('.') != std::string::npos) plain.erase(plain.find_last_not_of('0') + 1);
    if (plain.empty() || plain.front() == '.') plain.insert(0, 1, '0');
    if (plain.back() == '.') plain.pop_back();
  }
  if (negative && plain != "0") plain.insert(0, 1, '-');

  std::string text(plain.size() + 3, ' ');
  std::copy(plain.begin(), plain.end(), text.begin() + 1);
  text.resize(Finish(text.data(), plain.size()));
  return text;
}

std::size_t WriteDate(char* out, const ado::DateTime& value) {
  char* end = WriteDigits(out, value.year, 4);
  *end++ = '-';
  end = WriteDigits(end, value.month, 2);
  *end++ = '-';
  end = WriteDigits(end, value.day, 2);
  return static_cast<std::size_t>(end - out);
}

std::size_t WriteTime(char* out, const ado::DateTime& value, bool fraction) {
  char* end = WriteDigits(out, value.seconds / 3600, 2);
  *end++ = ':';
  end = WriteDigits(end, value.seconds / 60 % 60, 2);
  *end++ = ':';
  end = WriteDigits(end, value.seconds % 60, 2);
  if (fraction) {
    *end++ = '.';
    end = WriteDigits(end, value.nanoseconds / 1000, 6);
  }
  return static_cast<std::size_t>(end - out);
}

std::size_t WriteDateTime(char* out, const ado::DateTime& value, bool fraction) {
  const std::size_t date = WriteDate(out, value);
  out[date] = ' ';
  return date + 1 + WriteTime(out + date + 1, value, fraction);
}

std::string DateTimeText(const ado::DateTime& value) {
  std::string text(kDateTimeSize, ' ');
  text.resize(WriteDateTime(text.data(), value, false));
  return text;
}

ado::DateTime Normalised(const ado::DateTime& value) {
  std::int32_t days = value.seconds / kSecondsPerDay;
  std::int32_t seconds = value.seconds % kSecondsPerDay;
  std::int32_t nanoseconds = value.nanoseconds;
  if (nanoseconds < 0) {
    nanoseconds += 1'000'000'000;
    --seconds;
  }
  if (seconds < 0) {
    seconds += kSecondsPerDay;
    --days;
  }
  ado::DateTime moved = value;
  moved.seconds = seconds;
  moved.nanoseconds = nanoseconds;
  if (days == 0) return moved;
  const std::chrono::year_month_day date =
      std::chrono::sys_days(std::chrono::year_month_day(std::chrono::year(value.year),
                                                        std::chrono::month(value.month),
                                                        std::chrono::day(value.day))) +
      std::chrono::days(days);
  moved.year = static_cast<std::int16_t>(static_cast<int>(date.year()));
  moved.month = static_cast<std::uint8_t>(static_cast<unsigned>(date.month()));
  moved.day = static_cast<std::uint8_t>(static_cast<unsigned>(date.day()));
  return moved;
}

bool IsZeroDate(const ado::DateTime& value) {
  return value.year == 0 && value.month == 0 && value.day == 0;
}

ado::DateTime ParseDateTime(std::string_view text) {
  ado::DateTime value;
  DateReader reader(text);
  bool read = true;
  if (reader.AfterDigits() == ':') {
    read = ReadTime(reader, value);
  } else {
    read = ReadDate(reader, value);
    if (read && (reader.Take(' ') || reader.Take('T'))) read = ReadTime(reader, value);
  }
  if (!read || !reader.AtEnd()) ThrowTypeMismatch(text);
  return value;
}

std::string PrefixEach(std::string_view text, std::string_view characters, char prefix) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) result += prefix;
    result += c;
  }
  return result;
}

std::string SqlText(std::string_view text) {
  return PrefixEach(text, "'", '\'');
}

void AppendHexDigits(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const std::size_t start = out.size();
  out.resize(start + 2 * bytes.size());
  char* digit = out.data() + start;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    *digit++ = kDigits[code >> 4];
    *digit++ = kDigits[code & 15];
  }
}

std::string HexCode(std::string_view bytes) {
  std::string code = "0x";
  AppendHexDigits(code, bytes);
  return code;
}

std::string BinaryDefaultBytes(std::string_view text) {
  if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
    if (auto bytes = BytesOfHex(text.substr(2))) return *std::move(bytes);
  }
  return std::string(text);
}

std::string GuidBytes(std::string_view braced) {
  constexpr std::size_t kBracedSize = 38;
  if (braced.size() != kBracedSize) return std::string(1, '\0');
  std::string digits;
  for (const auto& [first, count] :
       {std::pair<std::size_t, std::size_t>{1, 8}, {10, 4}, {15, 4}, {20, 4}, {25, 12}}) {
    digits.append(braced.substr(first, count));
  }
  return BytesOfHex(digits).value_or(std::string(1, '\0'));
}

}  // namespace dorvane
