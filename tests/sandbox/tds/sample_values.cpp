#include "tests/sandbox/tds/sample_values.h"

#include <cstring>

namespace sandbox::tds {

namespace {

constexpr std::int64_t kSecond = 10'000'000;
constexpr std::int64_t kLastTick = 86'400 * kSecond - 1;
constexpr std::int32_t kLastDay = 3'652'058;  // 9999-12-31
constexpr std::int32_t kDay2021 = 738'000;    // 2021-07-30

Int128 Number(const char* digits) {
  Int128 number = 0;
  for (const char* at = digits; *at != '\0'; ++at) number = number * 10 + (*at - '0');
  return number;
}

const char* const kNines = "99999999999999999999999999999999999999";

GuidValue Guid() {
  GuidValue guid;
  for (int i = 0; i < 16; ++i) guid.bytes[i] = static_cast<unsigned char>(i * 17);
  return guid;
}

std::vector<SampleValue> MakeSamples() {
  using enum SqlType;
  const std::int64_t some_time = 12'345 * kSecond + 6'789'012;  // 03:25:45.6789012
  return {
      {"bit", {Bit}, true, "1"},
      {"tinyint", {TinyInt}, std::int64_t{255}, "255"},
      {"smallint", {SmallInt}, std::int64_t{-32'768}, "-32768"},
      {"int", {Int}, std::int64_t{-2'147'483'648}, "-2147483648"},
      {"bigint", {BigInt}, std::int64_t{9'223'372'036'854'775'807}, "9223372036854775807"},
      {"decimal9", {Decimal, 0, 9, 2}, DecimalValue{-123'456'789, 2}, "-1234567.89"},
      {"decimal19",
       {Decimal, 0, 19, 0},
       DecimalValue{Number("9999999999999999999"), 0},
       "9999999999999999999"},
      {"numeric28", {Numeric, 0, 28, 28}, DecimalValue{1, 28}, "0.0000000000000000000000000001"},
      {"decimal38",
       {Decimal, 0, 38, 0},
       DecimalValue{-Number(kNines), 0},
       std::string("-") + kNines},
      {"smallmoney", {SmallMoney}, DecimalValue{-2'147'483'648, 4}, "-214748.3648"},
      {"money", {Money}, DecimalValue{-9'223'372'036'854'775'807 - 1, 4}, "-922337203685477.5808"},
      {"real", {Real}, 0.25, "0.25"},
      {"float", {Float}, -1.5e300, "-1.5000000000000001e+300"},
      {"smalldatetime",
       {SmallDateTime},
       DateTimeValue{kDay2021, 12'300 * kSecond, 0},
       "2021-07-30 03:25:00"},
      {"datetime",
       {DateTime},
       DateTimeValue{639'905, 12'345 * kSecond + 6'770'000, 0},
       "1753-01-01 03:25:45.677"},
      {"datetime2",
       {DateTime2, 0, 0, 7},
       DateTimeValue{kLastDay, kLastTick, 0},
       "9999-12-31 23:59:59.9999999"},
      {"datetime2_0",
       {DateTime2, 0, 0, 0},
       DateTimeValue{kDay2021, kSecond, 0},
       "2021-07-30 00:00:01"},
      // The moment's own offset takes it into another day at Greenwich.
      {"datetimeoffset",
       {DateTimeOffset, 0, 0, 7},
       DateTimeValue{kDay2021, some_time, 330},
       "2021-07-30 03:25:45.6789012 +05:30"},
      {"date", {Date}, DateTimeValue{kLastDay, 0, 0}, "9999-12-31"},
      {"time", {Time, 0, 0, 7}, DateTimeValue{0, kLastTick, 0}, "23:59:59.9999999"},
      {"time3", {Time, 0, 0, 3}, DateTimeValue{0, 12'345 * kSecond + 6'780'000, 0}, "03:25:45.678"},
      {"char", {Char, 6}, std::string("h\u00e4\u20ac   "), "h\u00e4\u20ac   "},
      {"varchar", {VarChar, 20}, std::string("it's \u00fc\u201c"), "it's \u00fc\u201c"},
      {"text", {Text}, std::string("te\u00dft\r\nline"), "te\u00dft\r\nline"},
      {"nchar", {NChar, 3}, std::string("\u65e5  "), "\u65e5  "},
      {"nvarchar",
       {NVarChar, 20},
       std::string("\u65e5\u672c \U0001F642"),
       "\u65e5\u672c \U0001F642"},
      {"ntext", {NText}, std::string("\u0416\u03a9"), "\u0416\u03a9"},
      {"xml", {Xml}, std::string("<a>\u00e9</a>"), "<a>\u00e9</a>"},
      {"binary", {Binary, 3}, BinaryValue{std::string("\0\1\xFF", 3)}, "0001ff"},
      {"varbinary", {VarBinary, 9}, BinaryValue{"\xFE\xFF"}, "feff"},
      {"image", {Image}, BinaryValue{std::string("\0image\0", 7)}, "00696d61676500"},
      {"timestamp",
       {Timestamp},
       BinaryValue{std::string("\0\0\0\0\0\0\7\xD1", 8)},
       "00000000000007d1"},
      {"guid", {UniqueIdentifier}, Guid(), "00112233-4455-6677-8899-AABBCCDDEEFF"},
      {"varchar_max", {VarChar, -1}, std::string("m\u00e4x"), "m\u00e4x"},
      {"nvarchar_max", {NVarChar, -1}, std::string("\u65e5"), "\u65e5"},
      {"varbinary_max", {VarBinary, -1}, BinaryValue{"\x01"}, "01"},
      {"empty_max", {NVarChar, -1}, std::string(), ""},
      {"empty", {VarChar, 5}, std::string(), ""},
  };
}

bool SameContent(const DecimalValue& left, const DecimalValue& right) {
  return left.unscaled == right.unscaled && left.scale == right.scale;
}
bool SameContent(const BinaryValue& left, const BinaryValue& right) {
  return left.bytes == right.bytes;
}
bool SameContent(const DateTimeValue& left, const DateTimeValue& right) {
  return left.days == right.days && left.ticks == right.ticks &&
         left.offset_minutes == right.offset_minutes;
}
bool SameContent(const GuidValue& left, const GuidValue& right) {
  return std::memcmp(left.bytes, right.bytes, sizeof left.bytes) == 0;
}
template <typename T>
bool SameContent(const T& left, const T& right) {
  return left == right;
}

}  // namespace

const std::vector<SampleValue>& SampleValues() {
  static const std::vector<SampleValue> samples = MakeSamples();
  return samples;
}

bool SameValue(const Value& left, const Value& right) {
  if (left.index() != right.index()) return false;
  return std::visit(
      [&right](const auto& value) {
        return SameContent(value, std::get<std::decay_t<decltype(value)>>(right));
      },
      left);
}

std::string LongText(std::size_t bytes) {
  const std::string piece = "Z\u00fcrich \u65e5\u672c \U0001F642; ";
  std::string text;
  while (text.size() < bytes) text += piece;
  return text;
}

}  // namespace sandbox::tds
