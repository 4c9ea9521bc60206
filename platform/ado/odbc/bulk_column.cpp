#include "platform/ado/odbc/bulk_column.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/text/ascii.h"
#include "platform/text/code_page.h"
#include "platform/text/utf8.h"

namespace dorvane::ado::odbc {

namespace {

/// FreeTDS converts a value into a buffer of that size, however long the column or the value is.
constexpr std::size_t kConversionBuffer = 4096;
// In UTF-8 a character takes up to three bytes where two suffice in UTF-16, or one in a code page.
constexpr std::size_t kUtf8Expansion = 3;
constexpr std::size_t kPrefixSize = sizeof(std::int32_t);
constexpr std::int32_t kNullPrefix = -1;
constexpr std::int32_t kTicksPerSecond = 300;
constexpr int kWindows1252 = 1252;
constexpr std::string_view kEarliestYear = "1753";
// Of a number's text, zeros that do not count among its digits.
constexpr std::size_t kLongestNumber = 128;

// How the texts of dates and times look.
struct MomentForm {
  std::string_view type;
  std::string_view form;
};
constexpr auto kMomentForms = std::to_array<MomentForm>({
    {"date", "0000-00-00"},
    {"time", "00:00:00"},
    {"datetime2", "0000-00-00 00:00:00"},
});

std::string_view MomentFormOf(std::string_view type) {
  const auto* found = std::ranges::find(kMomentForms, type, &MomentForm::type);
  return found != kMomentForms.end() ? found->form : std::string_view();
}

struct LoadedType {
  std::string_view name;  // the server's
  CellType cell;
  bool is_wide = false;
  bool is_padded = false;
};
constexpr auto kLoadedTypes = std::to_array<LoadedType>({
    {"bit", CellType::Bit},
    {"tinyint", CellType::TinyInt},
    {"smallint", CellType::SmallInt},
    {"int", CellType::Int},
    {"bigint", CellType::BigInt},
    {"real", CellType::Real},
    {"float", CellType::Float},
    {"decimal", CellType::Numeric},
    {"numeric", CellType::Numeric},
    {"datetime", CellType::DateTime},
    {"date", CellType::Moment},
    {"time", CellType::Moment},
    {"datetime2", CellType::Moment},
    {"varchar", CellType::Characters},
    {"text", CellType::Characters},
    {"nchar", CellType::Characters, true, true},
    {"nvarchar", CellType::Characters, true},
    {"ntext", CellType::Characters, true},
    {"binary", CellType::Bytes, false, true},
    {"varbinary", CellType::Bytes},
    {"image", CellType::Bytes},
});

struct IntegerRange {
  CellType type;
  std::int64_t least;
  std::int64_t most;
};
constexpr auto kIntegerRanges = std::to_array<IntegerRange>({
    {CellType::Bit, 0, 1},
    {CellType::TinyInt, 0, std::numeric_limits<std::uint8_t>::max()},
    {CellType::SmallInt, std::numeric_limits<std::int16_t>::min(),
     std::numeric_limits<std::int16_t>::max()},
    {CellType::Int, std::numeric_limits<std::int32_t>::min(),
     std::numeric_limits<std::int32_t>::max()},
    {CellType::BigInt, std::numeric_limits<std::int64_t>::min(),
     std::numeric_limits<std::int64_t>::max()},
});

/// The whole number of a value, where it is one that 64 signed bits hold.
std::optional<std::int64_t> WholeNumber(const Value& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
  const auto* number = std::get_if<std::uint64_t>(&value);
  if (number == nullptr || !std::in_range<std::int64_t>(*number)) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

/// The decimal text of an exact number; empty for any other value. Integers are put into `buffer`.
std::string_view ExactDigits(const Value& value, std::array<char, 20>& buffer) {
  if (const auto* decimal = std::get_if<Decimal>(&value)) return decimal->digits;
  const auto written = [&buffer](auto number) {
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    return std::string_view(buffer.data(), end);
  };
  if (const auto* number = std::get_if<std::uint64_t>(&value)) return written(*number);
  const auto whole = WholeNumber(value);
  return whole ? written(*whole) : std::string_view();
}

/// Whether a number of this precision and scale holds every digit.
bool HoldsDigits(std::string_view digits, int precision, int scale) {
  if (digits.starts_with('-')) digits.remove_prefix(1);
  const std::size_t point = std::min(digits.find('.'), digits.size());
  std::string_view whole = digits.substr(0, point);
  std::string_view fraction = digits.substr(std::min(point + 1, digits.size()));
  whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
  fraction = fraction.substr(0, fraction.find_last_not_of('0') + 1);
  return !digits.empty() && digits.size() < kLongestNumber &&
         whole.size() <= static_cast<std::size_t>(precision - scale) &&
         fraction.size() <= static_cast<std::size_t>(scale) &&
         std::ranges::all_of(whole, text::IsDigit) && std::ranges::all_of(fraction, text::IsDigit);
}

bool IsLoadedMoment(const DateTime& value) {
  return value.year >= 1753 && value.year <= 9999 && value.nanoseconds == 0 && value.seconds >= 0 &&
         value.seconds < 24 * 60 * 60;
}

/// Whether the text has the digits of the form where that has zeros, and behind them no more digits
/// of a second than `scale`.
bool IsMomentText(std::string_view text, std::string_view form, int scale) {
  if (form.empty() || text.size() < form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    if (form[i] == '0' ? !text::IsDigit(text[i]) : text[i] != form[i]) return false;
  }
  // FreeTDS makes other years of earlier ones.
  if (form.starts_with("0000-") && text < kEarliestYear) return false;
  std::string_view fraction = text.substr(form.size());
  if (fraction.empty()) return true;
  if (fraction.front() != '.') return false;
  fraction.remove_prefix(1);
  return fraction.size() <= static_cast<std::size_t>(scale) &&
         std::ranges::all_of(fraction, text::IsDigit);
}

std::chrono::sys_days DayOf(const DateTime& value) {
  return std::chrono::year_month_day(std::chrono::year(value.year), std::chrono::month(value.month),
                                     std::chrono::day(value.day));
}

/// Whether a character has the same code in Windows-1252 wherever it is converted: the control
/// characters above ASCII have not.
bool IsWindows1252(char32_t character) {
  if (character < 0x80) return true;
  if (character < 0xA0) return false;
  std::string utf8;
  text::AppendUtf8(utf8, character);
  return text::FitsAnsi(utf8);
}

}  // namespace

std::optional<BulkColumn> BulkColumn::Of(const BulkColumnFacts& facts) {
  const auto* found = std::ranges::find(kLoadedTypes, facts.type, &LoadedType::name);
  if (found == kLoadedTypes.end()) return std::nullopt;
  return BulkColumn(facts, found->cell, found->is_wide, found->is_padded);
}

BulkColumn::BulkColumn(const BulkColumnFacts& facts, CellType type, bool is_wide, bool is_padded)
    : type_(type),
      ordinal_(facts.ordinal),
      is_nullable_(facts.is_nullable),
      most_bytes_(facts.max_bytes < 0 || facts.type == "text" || facts.type == "ntext" ||
                          facts.type == "image"
                      ? kConversionBuffer
                      : std::min<std::size_t>(facts.max_bytes, kConversionBuffer)),
      precision_(facts.precision),
      scale_(facts.scale),
      is_wide_(is_wide),
      is_padded_(is_padded),
      moment_form_(MomentFormOf(facts.type)),
      is_windows_1252_(facts.code_page == kWindows1252),
      cell_(kPrefixSize + std::max(most_bytes_ * kUtf8Expansion, kLongestNumber)) {}

bool BulkColumn::Takes(const Value& value) const {
  if (IsNull(value)) return is_nullable_;
  switch (type_) {
    case CellType::Real: {
      const auto* number = std::get_if<float>(&value);
      return number != nullptr && std::isfinite(*number);
    }
    case CellType::Float: {
      const auto* number = std::get_if<double>(&value);
      return number != nullptr && std::isfinite(*number);
    }
    case CellType::Numeric: {
      std::array<char, 20> buffer;
      return HoldsDigits(ExactDigits(value, buffer), precision_, scale_);
    }
    case CellType::DateTime: {
      const auto* moment = std::get_if<DateTime>(&value);
      return moment != nullptr && IsLoadedMoment(*moment);
    }
    case CellType::Moment: {
      const auto* text = std::get_if<std::string_view>(&value);
      return text != nullptr && IsMomentText(*text, moment_form_, scale_);
    }
    case CellType::Characters: {
      const auto* text = std::get_if<std::string_view>(&value);
      return text != nullptr && TakesText(*text);
    }
    case CellType::Bytes: {
      const auto* binary = std::get_if<Binary>(&value);
      return binary != nullptr && binary->bytes.size() <= most_bytes_;
    }
    default:
      return TakesInteger(value);
  }
}

bool BulkColumn::TakesInteger(const Value& value) const {
  const auto number = WholeNumber(value);
  const auto* range = std::ranges::find(kIntegerRanges, type_, &IntegerRange::type);
  return number && *number >= range->least && *number <= range->most;
}

bool BulkColumn::TakesText(std::string_view text) const {
  const std::size_t unit = is_wide_ ? sizeof(char16_t) : 1;
  if (text.size() > most_bytes_ * kUtf8Expansion) return false;
  std::size_t units = 0;
  while (!text.empty()) {
    const auto other = std::ranges::find_if(text, [](char c) { return (c & 0x80) != 0; });
    units += other - text.begin();
    text.remove_prefix(other - text.begin());
    if (text.empty()) break;
    const auto character = text::TakeCodePoint(text);
    // FreeTDS knows no character beyond 16 bits.
    if (!character || *character > 0xFFFF) return false;
    if (!is_wide_ && !(is_windows_1252_ && IsWindows1252(*character))) return false;
    ++units;
  }
  return units * unit <= most_bytes_;
}

void BulkColumn::Put(const Value& value) {
  if (IsNull(value)) {
    std::memcpy(cell_.data(), &kNullPrefix, kPrefixSize);
    return;
  }
  switch (type_) {
    case CellType::Real:
      return PutFixed(std::get<float>(value));
    case CellType::Float:
      return PutFixed(std::get<double>(value));
    case CellType::Numeric: {
      std::array<char, 20> buffer;
      return PutBytes(ExactDigits(value, buffer));
    }
    case CellType::DateTime: {
      const auto& moment = std::get<DateTime>(value);
      const auto days = DayOf(moment) - DayOf({.year = 1900, .month = 1, .day = 1});
      return PutFixed(
          std::array{static_cast<std::int32_t>(days.count()), moment.seconds * kTicksPerSecond});
    }
    case CellType::Moment:
    case CellType::Characters:
    case CellType::Bytes:
      return PutBytes(BytesOf(value));
    case CellType::Bit:
    case CellType::TinyInt:
      return PutFixed(static_cast<std::uint8_t>(*WholeNumber(value)));
    case CellType::SmallInt:
      return PutFixed(static_cast<std::int16_t>(*WholeNumber(value)));
    case CellType::Int:
      return PutFixed(static_cast<std::int32_t>(*WholeNumber(value)));
    case CellType::BigInt:
      return PutFixed(*WholeNumber(value));
  }
}

template <typename T>
void BulkColumn::PutFixed(const T& value) {
  PutBytes({reinterpret_cast<const char*>(&value), sizeof value});
}

std::size_t BulkColumn::PaddingOf(std::string_view bytes) const {
  if (!is_padded_) return 0;
  if (type_ == CellType::Bytes) return most_bytes_ - bytes.size();
  // None of its characters is longer than a unit on the server.
  const auto characters =
      std::ranges::count_if(bytes, [](char byte) { return (byte & 0xC0) != 0x80; });
  return most_bytes_ / sizeof(char16_t) - static_cast<std::size_t>(characters);
}

void BulkColumn::PutBytes(std::string_view bytes) {
  const std::size_t padding = PaddingOf(bytes);
  const auto prefix = static_cast<std::int32_t>(bytes.size() + padding);
  std::memcpy(cell_.data(), &prefix, kPrefixSize);
  char* const end = std::ranges::copy(bytes, cell_.data() + kPrefixSize).out;
  std::fill_n(end, padding, type_ == CellType::Bytes ? '\0' : ' ');
}

}  // namespace dorvane::ado::odbc
