#include "endpoint/date_time_text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

#include "platform/text/number_text.h"

namespace dorvane {

namespace {

constexpr std::int32_t kSecondsPerDay = 24 * 60 * 60;
constexpr int kNanosecondDigits = 9;

char* WriteDigits(char* out, std::int32_t number, int digits) {
  for (int position = digits - 1; position >= 0; --position) {
    out[position] = static_cast<char>('0' + number % 10);
    number /= 10;
  }
  return out + digits;
}

/// Takes numbers and signs off the front of a date's text.
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

}  // namespace

std::size_t WriteDate(char* out, const ado::DateTime& value) {
  char* end = WriteDigits(out, value.year, 4);
  *end++ = '-';
  end = WriteDigits(end, value.month, 2);
  *end++ = '-';
  end = WriteDigits(end, value.day, 2);
  return static_cast<std::size_t>(end - out);
}

std::size_t WriteTime(char* out, const ado::DateTime& value, int fraction_digits) {
  char* end = WriteDigits(out, value.seconds / 3600, 2);
  *end++ = ':';
  end = WriteDigits(end, value.seconds / 60 % 60, 2);
  *end++ = ':';
  end = WriteDigits(end, value.seconds % 60, 2);
  if (fraction_digits > 0) {
    std::int32_t fraction = value.nanoseconds;
    for (int digits = kNanosecondDigits; digits > fraction_digits; --digits) fraction /= 10;
    *end++ = '.';
    end = WriteDigits(end, fraction, fraction_digits);
  }
  return static_cast<std::size_t>(end - out);
}

std::size_t WriteDateTime(char* out, const ado::DateTime& value, int fraction_digits) {
  const std::size_t date = WriteDate(out, value);
  out[date] = ' ';
  return date + 1 + WriteTime(out + date + 1, value, fraction_digits);
}

std::string DateTimeText(const ado::DateTime& value) {
  std::string text(kDateTimeSize, ' ');
  text.resize(WriteDateTime(text.data(), value, 0));
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
  if (!read || !reader.AtEnd()) text::ThrowTypeMismatch(text);
  return value;
}

}  // namespace dorvane
