#include "mysql/to_mssql/literals.h"

#include <algorithm>
#include <chrono>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "platform/text/ascii.h"
#include "platform/text/utf8.h"

namespace dorvane::to_mssql {

namespace {

// Seventeen fifty-three begins the server's datetime.
constexpr ado::DateTime kEarliest{1753, 1, 1, 0, 0};
// And this begins the calendar of its newer types.
constexpr ado::DateTime kFirstDay{1, 1, 1, 0, 0};
constexpr std::int32_t kSecondsPerDay = 24 * 60 * 60;

constexpr std::ptrdiff_t kMostDigits = 38;
// A concatenation of literals is cut where one literal would not be, and may not be nested deeply.
constexpr std::size_t kMostConcatenatedBytes = 4000;
constexpr std::ptrdiff_t kMostConcatenatedZeros = 100;

bool Exists(const ado::DateTime& value) {
  return std::chrono::year_month_day(std::chrono::year(value.year), std::chrono::month(value.month),
                                     std::chrono::day(value.day))
      .ok();
}

/// "-838:59:59.000000"
std::size_t WriteInterval(char* out, ado::DateTime time, int fraction_digits) {
  char* const start = out;
  if (time.seconds < 0 || time.nanoseconds < 0) {
    *out++ = '-';
    time.seconds = -time.seconds;
    time.nanoseconds = -time.nanoseconds;
  }
  constexpr std::int32_t kSecondsOfHundredHours = 100 * 3600;
  if (time.seconds >= kSecondsOfHundredHours) {
    *out++ = static_cast<char>('0' + time.seconds / kSecondsOfHundredHours);
    time.seconds %= kSecondsOfHundredHours;
  }
  return static_cast<std::size_t>(out - start) + WriteTime(out, time, fraction_digits);
}

ado::Value ExactMoment(const ado::DateTime& moment, ado::DataType type, const ColumnFacts& facts,
                       ado::Arena& storage) {
  char* const out = storage.Allocate(kDateTimeSize);
  switch (type) {
    case ado::DataType::DBDate:
      return std::string_view(out, WriteDate(out, moment));
    case ado::DataType::DBTime:
      return std::string_view(out, WriteInterval(out, moment, facts.fraction_digits));
    default:
      return std::string_view(out, WriteDateTime(out, moment, facts.fraction_digits));
  }
}

std::ptrdiff_t SignificantDigits(std::string_view number) {
  number.remove_prefix(std::min(number.find_first_not_of("-0"), number.size()));
  return std::ranges::count_if(number, text::IsDigit);
}

/// Appends what `writer` puts into at most `size` bytes.
template <typename Writer>
void AppendWritten(std::string& out, std::size_t size, Writer writer) {
  const std::size_t start = out.size();
  out.resize(start + size);
  out.resize(start + writer(out.data() + start));
}

/// Appends the literal, whatever form the source's value has.
struct LiteralWriter {
  std::string& out;

  void operator()(ado::Null) const {}
  void operator()(bool value) const { out += value ? '1' : '0'; }
  void operator()(std::int64_t value) const { Integer(value); }
  void operator()(std::uint64_t value) const { Integer(value); }
  void operator()(float value) const { Number(value); }
  void operator()(double value) const { Number(value); }
  void operator()(ado::Decimal value) const {
    // The server reads no longer number; a column that takes this one takes its text. A number
    // without a point is written with one and a zero.
    const std::ptrdiff_t zero = value.digits.find('.') == std::string_view::npos ? 1 : 0;
    if (SignificantDigits(value.digits) + zero > kMostDigits) {
      AppendTextLiteral(out, value.digits);
    } else {
      Number(value);
    }
  }
  void operator()(std::string_view value) const { AppendTextLiteral(out, value); }
  void operator()(ado::Binary value) const { Bytes(value.bytes); }
  void operator()(ado::Guid value) const { Bytes(GuidBytes(value.text)); }
  void operator()(const ado::DateTime& value) const {
    const ado::DateTime date = StorableMoment(value);
    out += '\'';
    AppendWritten(out, kDateTimeSize, [&](char* to) { return WriteDateTime(to, date, false); });
    out += '\'';
  }

  void Integer(const ado::Value& value) const {
    AppendWritten(out, NumberSize(value), [&](char* to) { return WriteInteger(to, value); });
  }
  void Number(const ado::Value& value) const {
    AppendWritten(out, NumberSize(value), [&](char* to) { return WriteNumber(to, value); });
  }
  void Bytes(std::string_view bytes) const {
    out += "0x";
    AppendHexDigits(out, bytes);
  }
};

void AppendQuoted(std::string& out, std::string_view text) {
  out += '\'';
  for (std::size_t quote = text.find('\''); quote != std::string_view::npos;
       quote = text.find('\'')) {
    out += text.substr(0, quote + 1);
    out += '\'';
    text.remove_prefix(quote + 1);
  }
  out += text;
  out += '\'';
}

/// The text's UTF-16 bytes, lower one first.
std::string Utf16Bytes(std::string_view text) {
  std::string bytes;
  const auto append = [&bytes](char32_t unit) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  };
  while (!text.empty()) {
    const char32_t point = text::TakeCodePoint(text).value_or(U'\uFFFD');
    if (point < 0x10000) {
      append(point);
    } else {
      append(0xD800 + ((point - 0x10000) >> 10));
      append(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
  }
  return bytes;
}

void AppendTextWithZeros(std::string& out, std::string_view text) {
  if (text.size() > kMostConcatenatedBytes ||
      std::ranges::count(text, '\0') > kMostConcatenatedZeros) {
    out += "cast(" + HexCode(Utf16Bytes(text)) + " as nvarchar(max))";
    return;
  }
  for (;;) {
    const std::size_t zero = text.find('\0');
    out += 'N';
    AppendQuoted(out, text.substr(0, zero));
    if (zero == std::string_view::npos) return;
    out += "+nchar(0)+";
    text.remove_prefix(zero + 1);
  }
}

}  // namespace

void AppendDataValue(std::string& out, const ado::Value& value, const ColumnFacts& facts) {
  if (!ado::IsNull(value)) {
    std::visit(LiteralWriter{out}, value);
    return;
  }
  // Without a default the server is left to refuse the row.
  const bool has_default = !facts.nullable && !facts.default_text.empty();
  out += has_default ? std::string_view(facts.default_text) : std::string_view("NULL");
}

ado::DateTime StorableMoment(const ado::DateTime& value) {
  ado::DateTime moment = Exists(value) ? std::max(Normalised(value), kEarliest) : kEarliest;
  moment.nanoseconds = 0;
  return moment;
}

bool IsOfCalendar(const ado::DateTime& value) {
  return value.year > 0 && Exists(value);
}

ado::Value ExactValue(const ado::Value& value, ado::DataType type, const ColumnFacts& facts,
                      ado::Arena& storage) {
  const auto* decimal = std::get_if<ado::Decimal>(&value);
  if (decimal != nullptr && facts.is_text) return decimal->digits;
  const auto* moment = std::get_if<ado::DateTime>(&value);
  if (moment == nullptr) return value;
  const bool is_made_up = !IsOfCalendar(*moment);
  if (is_made_up && facts.nullable) return {};
  return ExactMoment(is_made_up ? kFirstDay : *moment, type, facts, storage);
}

void AppendTextLiteral(std::string& out, std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    AppendTextWithZeros(out, text);
    return;
  }
  if (!text::IsAscii(text)) out += 'N';
  AppendQuoted(out, text);
}

std::string DateLiteral(const ado::DateTime& value) {
  std::string literal;
  LiteralWriter{literal}(value);
  return literal;
}

unsigned ChangesOf(const ado::DateTime& value, ado::DataType type) {
  if (!Exists(value)) return kDateMadeUp;
  const ado::DateTime moment = Normalised(value);
  if (moment < kEarliest) return kDateRaised;
  const unsigned changes = value.nanoseconds != 0 ? unsigned{kFractionCut} : 0U;
  if (type != ado::DataType::DBTime) return changes;
  const bool is_of_a_day =
      value.seconds >= 0 && value.nanoseconds >= 0 && value.seconds < kSecondsPerDay;
  return changes | (is_of_a_day ? kTimeDated : kTimeMovedDate);
}

}  // namespace dorvane::to_mssql
