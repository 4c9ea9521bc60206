#include <array>
#include <charconv>
#include <chrono>
#include <optional>
#include <vector>

#include "endpoint/date_time_text.h"
#include "mssql/to_mysql/defaults.h"
#include "platform/run_time_error.h"
#include "platform/text/ascii.h"
#include "platform/text/number_text.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::int32_t kHalfDay = 12 * 60 * 60;
// Two digits of a year below this are of this century.
constexpr int kFirstYearOfLastCentury = 50;

constexpr std::array<std::string_view, 12> kMonths{"january",   "february", "march",    "april",
                                                   "may",       "june",     "july",     "august",
                                                   "september", "october",  "november", "december"};

std::optional<int> Number(std::string_view digits) {
  if (!text::IsDigits(digits) || digits.size() > 9) return std::nullopt;
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

std::optional<int> Year(std::string_view digits) {
  const std::optional<int> year = Number(digits);
  if (!year || digits.size() == 4) return year;
  if (digits.size() > 2) return std::nullopt;
  return *year + (*year < kFirstYearOfLastCentury ? 2000 : 1900);
}

/// 1 to 12 of a month's name or its beginning of three letters or more.
std::optional<int> Month(std::string_view word) {
  const std::string name = text::ToLower(word);
  for (std::size_t i = 0; name.size() >= 3 && i < kMonths.size(); ++i) {
    if (kMonths[i].starts_with(name)) return static_cast<int>(i) + 1;
  }
  return std::nullopt;
}

std::vector<std::string_view> Split(std::string_view text, std::string_view separators) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find_first_of(separators));
    if (!part.empty()) parts.push_back(part);
    text.remove_prefix(std::min(text.size(), part.size() + 1));
  }
  return parts;
}

/// The words of a date, read one after another.
class ServerDateReader {
 public:
  /// False for a word that belongs to no date.
  bool Take(std::string_view word) {
    if (const auto half = HalfOfDay(word)) {
      const std::string_view clock = word.substr(0, word.size() - 2);
      if (!clock.empty() && !TakeClock(clock)) return false;
      return TakeHalf(*half);
    }
    if (word.find(':') != std::string_view::npos) return TakeClock(word);
    if (word.find_first_of("-/.") != std::string_view::npos) return TakeDate(word);
    if (word.size() == 8 && text::IsDigits(word)) {
      return SetDate(Number(word.substr(0, 4)), Number(word.substr(4, 2)), Number(word.substr(6)));
    }
    if (text::IsDigits(word)) {
      numbers_.push_back(word);
      return true;
    }
    const bool is_first = !month_;
    month_ = Month(word);
    return is_first && month_.has_value();
  }

  /// Nothing when the words made no date.
  std::optional<ado::DateTime> Result() {
    if (month_) {
      if (numbers_.size() != 2) return std::nullopt;
      const bool year_first = numbers_[0].size() == 4;
      if (!SetDate(Year(numbers_[year_first ? 0 : 1]), month_,
                   Number(numbers_[year_first ? 1 : 0])))
        return std::nullopt;
    } else if (!numbers_.empty()) {
      return std::nullopt;
    }
    return value_;
  }

 private:
  static std::optional<std::string_view> HalfOfDay(std::string_view word) {
    for (const std::string_view half : {"am", "pm"}) {
      if (word.size() < 2) break;
      const std::string_view end = word.substr(word.size() - 2);
      const bool is_alone = word.size() == 2 || text::IsDigit(word[word.size() - 3]);
      if (is_alone && text::EqualsIgnoringCase(end, half)) return half;
    }
    return std::nullopt;
  }

  bool TakeClock(std::string_view clock) {
    std::string full(clock);
    if (text::IsDigits(full)) full += ":00";
    try {
      const ado::DateTime time = ParseDateTime(full);
      value_.seconds = time.seconds;
      value_.nanoseconds = time.nanoseconds;
    } catch (const RunTimeError&) {
      return false;
    }
    return true;
  }

  bool TakeHalf(std::string_view half) {
    // "10 PM" has its hour before it, where it was taken for a day or a year.
    if (value_.seconds == 0 && !numbers_.empty() && numbers_.size() != 2) {
      if (!TakeClock(numbers_.back())) return false;
      numbers_.pop_back();
    }
    const bool is_after_noon = value_.seconds >= kHalfDay;
    if (half == "pm" && !is_after_noon) value_.seconds += kHalfDay;
    if (half == "am" && is_after_noon) value_.seconds -= kHalfDay;
    return true;
  }

  bool TakeDate(std::string_view word) {
    const std::vector<std::string_view> parts = Split(word, "-/.");
    if (parts.size() != 3) return false;
    if (parts[0].size() == 4) return SetDate(Year(parts[0]), Number(parts[1]), Number(parts[2]));
    return SetDate(Year(parts[2]), Number(parts[0]), Number(parts[1]));
  }

  bool SetDate(std::optional<int> year, std::optional<int> month, std::optional<int> day) {
    if (!year || !month || !day) return false;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok() || *year == 0) return false;
    value_.year = static_cast<std::int16_t>(*year);
    value_.month = static_cast<std::uint8_t>(*month);
    value_.day = static_cast<std::uint8_t>(*day);
    return true;
  }

  ado::DateTime value_{1900, 1, 1, 0, 0};
  std::vector<std::string_view> numbers_;
  std::optional<int> month_;
};

/// A number counts days. Four, six and eight digits may also be the text of a year or a date.
std::optional<ado::DateTime> DaysFrom1900(std::string_view text) {
  const bool is_negative = text.starts_with('-');
  const std::string_view digits = text.substr(is_negative ? 1 : 0);
  const std::optional<int> days = Number(digits);
  if (!days || (digits.size() % 2 == 0 && digits.size() >= 4)) return std::nullopt;
  if (*days > 2'958'463) return std::nullopt;
  const std::chrono::year_month_day date = std::chrono::sys_days(std::chrono::year(1900) / 1 / 1) +
                                           std::chrono::days(is_negative ? -*days : *days);
  return ado::DateTime{static_cast<std::int16_t>(static_cast<int>(date.year())),
                       static_cast<std::uint8_t>(static_cast<unsigned>(date.month())),
                       static_cast<std::uint8_t>(static_cast<unsigned>(date.day())), 0, 0};
}

}  // namespace

ado::DateTime ParseServerDate(std::string_view text) {
  if (const auto days = DaysFrom1900(text::Trim(text))) return *days;
  std::string words(text);
  // The "T" between date and time stands between digits.
  for (std::size_t i = 1; i + 1 < words.size(); ++i) {
    if (words[i] == 'T' && text::IsDigit(words[i - 1]) && text::IsDigit(words[i + 1])) {
      words[i] = ' ';
    }
  }
  ServerDateReader reader;
  for (const std::string_view word : Split(words, ", ")) {
    if (!reader.Take(word)) text::ThrowTypeMismatch(text);
  }
  const std::optional<ado::DateTime> date = reader.Result();
  if (!date) text::ThrowTypeMismatch(text);
  return *date;
}

}  // namespace dorvane::to_mysql
