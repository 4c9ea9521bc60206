#include "sandbox/sql/datetime_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "sandbox/storage/encoding.h"
#include "sandbox/storage/text_order.h"

namespace sandbox {
namespace {

constexpr std::array kMonths{"January", "February", "March",     "April",   "May",      "June",
                             "July",    "August",   "September", "October", "November", "December"};
constexpr std::int64_t kMaxDays = 3652058;      // 9999-12-31
constexpr std::int64_t kDaysTo1753 = 639905;    // where datetime begins
constexpr std::int64_t kLastSmallDay = 759130;  // 2079-06-06

// One run of digits, one word or one mark of a date's text.
struct Piece {
  enum class Kind { Number, Word, Mark } kind;
  std::string_view text;
  bool after_blank = false;
  int Number() const {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
  }
  bool IsMark(char c) const { return kind == Kind::Mark && text.front() == c; }
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
  return (c | 32) >= 'a' && (c | 32) <= 'z';
}

std::vector<Piece> Split(std::string_view text) {
  std::vector<Piece> pieces;
  bool blank = false;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == ' ' || text[i] == '\t') {
      blank = true;
      ++i;
      continue;
    }
    const auto run = [&](auto accepts) {
      std::size_t end = i;
      while (end < text.size() && accepts(text[end])) ++end;
      return end;
    };
    Piece::Kind kind = Piece::Kind::Mark;
    std::size_t end = i + 1;
    if (IsDigit(text[i])) {
      kind = Piece::Kind::Number;
      end = run(IsDigit);
    } else if (IsLetter(text[i])) {
      kind = Piece::Kind::Word;
      end = run(IsLetter);
    }
    pieces.push_back({kind, text.substr(i, end - i), blank});
    blank = false;
    i = end;
  }
  return pieces;
}

int MonthByName(std::string_view name) {
  if (name.size() < 3) return 0;
  for (std::size_t i = 0; i < kMonths.size(); ++i) {
    const std::string_view full = kMonths[i];
    if (name.size() <= full.size() && SameName(full.substr(0, name.size()), name)) {
      return static_cast<int>(i) + 1;
    }
  }
  return 0;
}

int FullYear(const Piece& piece) {
  const int year = piece.Number();
  if (piece.text.size() > 2) return year;
  return year < 50 ? 2000 + year : 1900 + year;
}

// Takes a date and a time off a row of pieces.
class DateReader {
 public:
  explicit DateReader(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {}

  ParsedDateTime Read() {
    ParsedDateTime result;
    CivilDate date{1900, 1, 1};
    const bool time_first = IsTimeAt(0);
    if (!time_first && !pieces_.empty()) {
      if (!ReadDate(date)) return Failed(DateProblem::Syntax);
      result.has_date = true;
    }
    if (At() && (At()->kind == Piece::Kind::Word) && SameName(At()->text, "T")) ++position_;
    if (At() && !ReadTime()) return Failed(DateProblem::Syntax);
    if (At()) return Failed(DateProblem::Syntax);
    const bool valid = date.year >= 1 && date.year <= 9999 && date.month >= 1 && date.month <= 12 &&
                       date.day >= 1 && date.day <= DaysInMonth(date.year, date.month) &&
                       hour_ < 24 && minute_ < 60 && second_ < 60;
    if (!valid) return Failed(DateProblem::Range);
    result.value.days = static_cast<std::int32_t>(FromCivil(date));
    result.value.ticks = ((hour_ * 60 + minute_) * 60 + second_) * kTicksPerSecond + fraction_;
    result.value.offset_minutes = static_cast<std::int16_t>(offset_);
    return result;
  }

 private:
  static ParsedDateTime Failed(DateProblem problem) {
    ParsedDateTime result;
    result.problem = problem;
    return result;
  }

  const Piece* At(std::size_t ahead = 0) const {
    return position_ + ahead < pieces_.size() ? &pieces_[position_ + ahead] : nullptr;
  }
  bool IsNumber(std::size_t ahead) const {
    return At(ahead) && At(ahead)->kind == Piece::Kind::Number;
  }
  bool IsMark(std::size_t ahead, char mark) const { return At(ahead) && At(ahead)->IsMark(mark); }
  bool IsHalf(std::size_t ahead) const {
    return At(ahead) && At(ahead)->kind == Piece::Kind::Word &&
           (SameName(At(ahead)->text, "AM") || SameName(At(ahead)->text, "PM"));
  }
  bool IsTimeAt(std::size_t ahead) const {
    return IsNumber(ahead) && (IsMark(ahead + 1, ':') || IsHalf(ahead + 1));
  }

  bool ReadDate(CivilDate& date) {
    if (!IsNumber(0)) return ReadNamedMonthFirst(date);
    const Piece first = *At();
    const bool separated = IsMark(1, '-') || IsMark(1, '/') || IsMark(1, '.');
    if (separated && IsNumber(2) && IsNumber(4) && IsMark(3, At(1)->text.front())) {
      const Piece second = *At(2), third = *At(4);
      position_ += 5;
      if (first.text.size() == 4) {
        date = {first.Number(), second.Number(), third.Number()};
      } else {
        date = {FullYear(third), first.Number(), second.Number()};
      }
      return first.text.size() <= 4 && second.text.size() <= 2;
    }
    if (first.text.size() == 8 || first.text.size() == 6) {
      const int number = first.Number();
      const int year = number / 10000;
      date = {first.text.size() == 8 ? year
              : year < 50            ? 2000 + year
                                     : 1900 + year,
              number / 100 % 100, number % 100};
      ++position_;
      return true;
    }
    if (first.text.size() == 4 && !At(1)) {
      date.year = first.Number();
      ++position_;
      return true;
    }
    return ReadDayFirst(date);
  }

  // "31 Jan 2024", "31-Jan-2024"
  bool ReadDayFirst(CivilDate& date) {
    date.day = At()->Number();
    ++position_;
    if (IsMark(0, '-')) ++position_;
    if (!At() || At()->kind != Piece::Kind::Word) return false;
    date.month = MonthByName(At()->text);
    ++position_;
    if (IsMark(0, '-') || IsMark(0, ',')) ++position_;
    if (date.month == 0 || !IsNumber(0)) return false;
    date.year = FullYear(*At());
    ++position_;
    return true;
  }

  // "Jan 31 2024", "January 31, 2024"
  bool ReadNamedMonthFirst(CivilDate& date) {
    if (At()->kind != Piece::Kind::Word) return false;
    date.month = MonthByName(At()->text);
    ++position_;
    if (date.month == 0 || !IsNumber(0)) return false;
    date.day = At()->Number();
    ++position_;
    if (IsMark(0, ',')) ++position_;
    if (!IsNumber(0)) return false;
    date.year = FullYear(*At());
    ++position_;
    return true;
  }

  bool ReadTime() {
    if (!IsNumber(0) || At()->text.size() > 2) return false;
    hour_ = At()->Number();
    ++position_;
    if (IsMark(0, ':') && !ReadMinutes()) return false;
    if (IsHalf(0)) {
      const bool afternoon = (At()->text.front() | 32) == 'p';
      if (hour_ < 1 || hour_ > 12) return false;
      hour_ = hour_ % 12 + (afternoon ? 12 : 0);
      ++position_;
    }
    return ReadOffset();
  }

  bool ReadMinutes() {
    ++position_;
    if (!IsNumber(0) || At()->text.size() > 2) return false;
    minute_ = At()->Number();
    ++position_;
    if (!IsMark(0, ':')) return true;
    ++position_;
    if (!IsNumber(0) || At()->text.size() > 2) return false;
    second_ = At()->Number();
    ++position_;
    if (!IsMark(0, '.') && !IsMark(0, ':')) return true;
    const bool point = IsMark(0, '.');
    ++position_;
    if (!IsNumber(0) || At()->text.size() > 9) return false;
    std::string digits(At()->text);
    if (!point) digits.insert(0, 3 - std::min<std::size_t>(3, digits.size()), '0');
    digits.resize(8, '0');
    const std::int64_t hundred_millionths = std::stoll(digits);
    fraction_ = (hundred_millionths + 5) / 10;
    if (fraction_ >= kTicksPerSecond) fraction_ = kTicksPerSecond - 1;
    ++position_;
    return true;
  }

  bool ReadOffset() {
    if (At() && At()->kind == Piece::Kind::Word && SameName(At()->text, "Z")) {
      ++position_;
      return true;
    }
    if (!IsMark(0, '+') && !IsMark(0, '-')) return true;
    const int sign = IsMark(0, '-') ? -1 : 1;
    if (!IsNumber(1) || !IsMark(2, ':') || !IsNumber(3)) return false;
    offset_ = sign * (At(1)->Number() * 60 + At(3)->Number());
    position_ += 4;
    return offset_ >= -840 && offset_ <= 840;
  }

  std::vector<Piece> pieces_;
  std::size_t position_ = 0;
  std::int64_t hour_ = 0, minute_ = 0, second_ = 0, fraction_ = 0;
  int offset_ = 0;
};

bool IsLeap(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// The number that `count` digits at `at` make; -1 when they are none.
int FixedNumber(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (const char c : text.substr(at, count)) {
    if (!IsDigit(c)) return -1;
    number = number * 10 + (c - '0');
  }
  return number;
}

std::int64_t RoundTo(std::int64_t ticks, std::int64_t step) {
  return (ticks + step / 2) / step * step;
}

struct Style {
  int number;
  const char* pattern;  // of fmt: 0 year, 1 month, 2 day, 3 hour, 4 minute, 5 second, 6 fraction,
};                      // 7 short month, 8 hour of twelve, 9 AM or PM, 10 year of two digits
constexpr std::array kStyles{
    Style{0, "{7} {2:>2} {0:04} {8:>2}:{4:02}{9}"},
    Style{100, "{7} {2:>2} {0:04} {8:>2}:{4:02}{9}"},
    Style{1, "{1:02}/{2:02}/{10:02}"},
    Style{101, "{1:02}/{2:02}/{0:04}"},
    Style{102, "{0:04}.{1:02}.{2:02}"},
    Style{103, "{2:02}/{1:02}/{0:04}"},
    Style{104, "{2:02}.{1:02}.{0:04}"},
    Style{105, "{2:02}-{1:02}-{0:04}"},
    Style{106, "{2:02} {7} {0:04}"},
    Style{107, "{7} {2:02}, {0:04}"},
    Style{8, "{3:02}:{4:02}:{5:02}"},
    Style{108, "{3:02}:{4:02}:{5:02}"},
    Style{110, "{1:02}-{2:02}-{0:04}"},
    Style{111, "{0:04}/{1:02}/{2:02}"},
    Style{112, "{0:04}{1:02}{2:02}"},
    Style{114, "{3:02}:{4:02}:{5:02}:{6}"},
    Style{20, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}"},
    Style{120, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}"},
    Style{21, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}.{6}"},
    Style{25, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}.{6}"},
    Style{121, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}.{6}"},
    Style{23, "{0:04}-{1:02}-{2:02}"},
    Style{126, "{0:04}-{1:02}-{2:02}T{3:02}:{4:02}:{5:02}.{6}"},
    Style{127, "{0:04}-{1:02}-{2:02}T{3:02}:{4:02}:{5:02}.{6}"},
};

}  // namespace

int DaysInMonth(int year, int month) {
  static constexpr std::array kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

std::int64_t FromCivil(const CivilDate& date) {
  static constexpr std::array kDaysBefore{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const std::int64_t y = date.year - 1;
  const std::int64_t days = y * 365 + y / 4 - y / 100 + y / 400;
  const int leap_day = date.month > 2 && IsLeap(date.year) ? 1 : 0;
  return days + kDaysBefore[static_cast<std::size_t>(date.month - 1)] + leap_day + date.day - 1;
}

CivilDate ToCivil(std::int64_t days) {
  days = std::clamp<std::int64_t>(days, 0, kMaxDays);
  CivilDate date;
  date.year = static_cast<int>(days / 366) + 1;  // never too late, and early by few years
  while (date.year < 9999 && FromCivil({date.year + 1, 1, 1}) <= days) ++date.year;
  std::int64_t rest = days - FromCivil({date.year, 1, 1});
  while (rest >= DaysInMonth(date.year, date.month)) {
    rest -= DaysInMonth(date.year, date.month++);
  }
  date.day = static_cast<int>(rest) + 1;
  return date;
}

std::optional<DateTimeValue> ParsePlainDateTime(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00 00:00:00";
  constexpr std::size_t kDate = 10, kFraction = kForm.size() + 1, kMostDigits = 7;
  const bool has_time = text.size() >= kForm.size();
  const bool has_fraction = text.size() > kFraction && text.size() <= kFraction + kMostDigits;
  if (text.size() != kDate && text.size() != kForm.size() && !has_fraction) return std::nullopt;
  if (text[4] != '-' || text[7] != '-') return std::nullopt;
  const CivilDate date{FixedNumber(text, 0, 4), FixedNumber(text, 5, 2), FixedNumber(text, 8, 2)};
  const bool valid = date.year >= 1 && date.month >= 1 && date.month <= 12 && date.day >= 1 &&
                     date.day <= DaysInMonth(date.year, date.month);
  if (!valid) return std::nullopt;
  DateTimeValue value{static_cast<std::int32_t>(FromCivil(date)), 0, 0};
  if (!has_time) return value;
  if ((text[10] != ' ' && text[10] != 'T') || text[13] != ':' || text[16] != ':')
    return std::nullopt;
  const int hour = FixedNumber(text, 11, 2), minute = FixedNumber(text, 14, 2);
  const int second = FixedNumber(text, 17, 2);
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
    return std::nullopt;
  value.ticks = ((hour * 60 + minute) * 60 + second) * kTicksPerSecond;
  if (!has_fraction) return value;
  int fraction = FixedNumber(text, kFraction, kMostDigits);
  if (text[kForm.size()] != '.' || fraction < 0) return std::nullopt;
  for (std::size_t digits = text.size() - kFraction; digits < kMostDigits; ++digits) fraction *= 10;
  value.ticks += fraction;
  return value;
}

ParsedDateTime ParseDateTime(std::string_view text) {
  if (const auto plain = ParsePlainDateTime(text)) return {DateProblem::None, *plain, true};
  return DateReader(Split(text)).Read();
}

std::optional<DateTimeValue> FitDateTime(const DateTimeValue& value, const TypeInfo& type) {
  DateTimeValue fitted = value;
  switch (type.type) {
    case SqlType::Date:
      fitted.ticks = 0;
      break;
    case SqlType::DateTime: {
      const std::int64_t units = (value.ticks * 300 + kTicksPerSecond / 2) / kTicksPerSecond;
      fitted.ticks = (units * kTicksPerSecond + 150) / 300;
      if (units == 300 * 86400) fitted.ticks = kTicksPerDay;
      break;
    }
    case SqlType::SmallDateTime:
      fitted.ticks = RoundTo(value.ticks, 60 * kTicksPerSecond);
      break;
    default: {
      std::int64_t step = 1;
      for (int i = type.scale; i < 7; ++i) step *= 10;
      fitted.ticks = RoundTo(value.ticks, step);
    }
  }
  if (type.type == SqlType::Time) {
    fitted.days = 0;
    if (fitted.ticks >= kTicksPerDay) fitted.ticks = 0;
    return fitted;
  }
  if (fitted.ticks >= kTicksPerDay) {
    fitted.ticks -= kTicksPerDay;
    ++fitted.days;
  }
  if (type.type != SqlType::DateTimeOffset) fitted.offset_minutes = 0;
  std::int64_t first = 0, last = kMaxDays;
  if (type.type == SqlType::DateTime) first = kDaysTo1753;
  if (type.type == SqlType::SmallDateTime) {
    first = kDaysTo1900;
    last = kLastSmallDay;
  }
  if (fitted.days < first || fitted.days > last) return std::nullopt;
  return fitted;
}

std::optional<std::string> DateTimeText(const DateTimeValue& value, const TypeInfo& type,
                                        int style) {
  const bool modern = type.type != SqlType::DateTime && type.type != SqlType::SmallDateTime;
  if (modern && style == 0) style = type.type == SqlType::Time ? -1 : 121;
  const CivilDate date = ToCivil(value.days);
  const std::int64_t seconds = value.ticks / kTicksPerSecond;
  const std::int64_t hour = seconds / 3600, minute = seconds / 60 % 60, second = seconds % 60;
  const int digits = type.type == SqlType::DateTime        ? 3
                     : type.type == SqlType::SmallDateTime ? 3
                                                           : type.scale;
  std::int64_t fraction_ticks = value.ticks % kTicksPerSecond;
  if (digits == 3) fraction_ticks = std::min<std::int64_t>(RoundTo(fraction_ticks, 10000), 9990000);
  const std::string fraction =
      fmt::format("{:07}", fraction_ticks).substr(0, static_cast<std::size_t>(digits));
  if (type.type == SqlType::Date && style == 121) style = 23;
  const char* pattern = nullptr;
  if (style == -1 || (type.type == SqlType::Time && (style == 121 || style == 126))) {
    pattern = "{3:02}:{4:02}:{5:02}.{6}";
  }
  for (const Style& entry : kStyles) {
    if (!pattern && entry.number == style) pattern = entry.pattern;
  }
  if (!pattern) return std::nullopt;
  std::string text = fmt::format(
      fmt::runtime(pattern), date.year, date.month, date.day, hour, minute, second, fraction,
      std::string_view(kMonths[static_cast<std::size_t>(date.month - 1)]).substr(0, 3),
      hour % 12 == 0 ? 12 : hour % 12, hour < 12 ? "AM" : "PM", date.year % 100);
  const bool no_fraction = fraction.empty() || (style == 126 && fraction_ticks == 0 && !modern);
  if (no_fraction && text.find('.') != std::string::npos &&
      std::string_view(pattern).ends_with(".{6}")) {
    text.erase(text.rfind('.'));
  }
  if (type.type == SqlType::DateTimeOffset) {
    const int minutes = std::abs(value.offset_minutes);
    text += fmt::format(" {}{:02}:{:02}", value.offset_minutes < 0 ? '-' : '+', minutes / 60,
                        minutes % 60);
  }
  return text;
}

}  // namespace sandbox
