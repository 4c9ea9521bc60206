#include "sandbox/storage/encoding.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "sandbox/values/ticks.h"

namespace sandbox {

namespace {

// Positions of the text form's bytes, most significant for sorting first.
constexpr std::array<int, 16> kGuidOrder{10, 11, 12, 13, 14, 15, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0};

template <typename Number>
std::array<char, sizeof(Number)> BigEndian(Number number) {
  std::array<char, sizeof(Number)> bytes;
  for (std::size_t i = bytes.size(); i-- > 0;) {
    bytes[i] = static_cast<char>(number);
    number = static_cast<Number>(number >> 8);
  }
  return bytes;
}

template <typename Number>
Number FromBigEndian(std::string_view bytes) {
  Number number = 0;
  for (const char c : bytes.substr(0, sizeof(Number))) {
    number = static_cast<Number>(number << 8) | static_cast<unsigned char>(c);
  }
  return number;
}

template <std::size_t size>
std::string_view View(const std::array<char, size>& bytes) {
  return {bytes.data(), bytes.size()};
}

using UnsignedWide = UInt128;
constexpr UnsignedWide kWideSign = UnsignedWide{1} << 127;

std::array<char, 16> EncodeDecimal(Int128 unscaled) {
  return BigEndian(static_cast<UnsignedWide>(unscaled) ^ kWideSign);
}

Int128 DecodeDecimal(std::string_view bytes) {
  if (bytes.size() < sizeof(UnsignedWide)) return 0;
  std::uint64_t high, low;
  std::memcpy(&high, bytes.data(), sizeof high);
  std::memcpy(&low, bytes.data() + sizeof high, sizeof low);
  const UnsignedWide wide = UnsignedWide{__builtin_bswap64(high)} << 64 | __builtin_bswap64(low);
  return static_cast<Int128>(wide ^ kWideSign);
}

std::array<char, 16> EncodeGuid(const GuidValue& guid) {
  std::array<char, 16> bytes;
  for (std::size_t i = 0; i < 16; ++i) bytes[i] = static_cast<char>(guid.bytes[kGuidOrder[i]]);
  return bytes;
}

GuidValue DecodeGuid(std::string_view bytes) {
  GuidValue guid{};
  for (std::size_t i = 0; i < 16 && i < bytes.size(); ++i) {
    guid.bytes[kGuidOrder[i]] = static_cast<unsigned char>(bytes[i]);
  }
  return guid;
}

constexpr std::uint64_t kTickSign = std::uint64_t{1} << 63;

std::array<char, 10> EncodeOffset(const DateTimeValue& value) {
  const std::int64_t local = value.days * kTicksPerDay + value.ticks;
  const std::int64_t utc = local - value.offset_minutes * 60 * kTicksPerSecond;
  const auto moment = BigEndian(static_cast<std::uint64_t>(utc) ^ kTickSign);
  const auto offset = BigEndian(static_cast<std::uint16_t>(value.offset_minutes));
  std::array<char, 10> bytes;
  std::copy(offset.begin(), offset.end(), std::copy(moment.begin(), moment.end(), bytes.begin()));
  return bytes;
}

DateTimeValue FromTicks(std::int64_t ticks) {
  std::int64_t days = ticks / kTicksPerDay;
  std::int64_t rest = ticks % kTicksPerDay;
  if (rest < 0) {
    rest += kTicksPerDay;
    --days;
  }
  return {static_cast<std::int32_t>(days), rest, 0};
}

DateTimeValue DecodeOffset(std::string_view bytes) {
  if (bytes.size() < 10) return {};
  const auto utc = static_cast<std::int64_t>(FromBigEndian<std::uint64_t>(bytes) ^ kTickSign);
  const auto offset = static_cast<std::int16_t>(FromBigEndian<std::uint16_t>(bytes.substr(8)));
  DateTimeValue value = FromTicks(utc + offset * 60 * kTicksPerSecond);
  value.offset_minutes = offset;
  return value;
}

std::int64_t DateTimeNumber(const DateTimeValue& value, SqlType type) {
  if (type == SqlType::Date) return value.days;
  if (type == SqlType::Time) return value.ticks;
  return value.days * kTicksPerDay + value.ticks;
}

// Hands the stored form of a value to `out`, which has Null, Integer, Real, Text and Blob; Made is
// for bytes that were made here and don't stay.
template <typename Out>
void Encode(const Value& value, const TypeInfo& type, Out&& out) {
  switch (value.index()) {
    case 0:
      return out.Null();
    case 1:
      return out.Integer(std::get<bool>(value) ? 1 : 0);
    case 2:
      return out.Integer(std::get<std::int64_t>(value));
    case 3:
      return out.Real(std::get<double>(value));
    case 5:
      return out.Text(std::get<std::string>(value));
    default:
      break;
  }
  if (const auto* decimal = std::get_if<DecimalValue>(&value)) {
    return out.Made(View(EncodeDecimal(decimal->unscaled)));
  }
  if (const auto* binary = std::get_if<BinaryValue>(&value)) return out.Blob(binary->bytes);
  if (const auto* guid = std::get_if<GuidValue>(&value)) return out.Made(View(EncodeGuid(*guid)));
  const auto& time = std::get<DateTimeValue>(value);
  if (type.type == SqlType::DateTimeOffset) return out.Made(View(EncodeOffset(time)));
  out.Integer(DateTimeNumber(time, type.type));
}

struct Binding {
  sqlite3_stmt* statement;
  int index;
  sqlite3_destructor_type lifetime;  // of text and bytes: SQLITE_STATIC or SQLITE_TRANSIENT
  void Null() { sqlite3_bind_null(statement, index); }
  void Integer(std::int64_t number) { sqlite3_bind_int64(statement, index, number); }
  void Real(double number) { sqlite3_bind_double(statement, index, number); }
  void Text(std::string_view text) {
    sqlite3_bind_text64(statement, index, text.data(), text.size(), lifetime, SQLITE_UTF8);
  }
  void Blob(std::string_view bytes) {
    sqlite3_bind_blob64(statement, index, bytes.data(), bytes.size(), lifetime);
  }
  void Made(std::string_view bytes) {
    sqlite3_bind_blob64(statement, index, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
  }
};

struct Returning {
  sqlite3_context* context;
  void Null() { sqlite3_result_null(context); }
  void Integer(std::int64_t number) { sqlite3_result_int64(context, number); }
  void Real(double number) { sqlite3_result_double(context, number); }
  void Text(std::string_view text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }
  void Blob(std::string_view bytes) {
    sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
  }
  void Made(std::string_view bytes) { Blob(bytes); }
};

struct Writing {
  std::string text;
  void Null() { text = "NULL"; }
  void Integer(std::int64_t number) {
    // The lowest number can't be written with a minus in front: its digits alone overflow.
    text = number == INT64_MIN ? "(-9223372036854775807-1)" : fmt::format("{}", number);
  }
  void Real(double number) {
    text = fmt::format("{:#.17g}", number);
    if (number > 1.7976931348623157e308) text = "9e999";
  }
  void Blob(std::string_view bytes) {
    text = "x'";
    for (const char c : bytes) text += fmt::format("{:02x}", static_cast<unsigned char>(c));
    text += '\'';
  }
  void Made(std::string_view bytes) { Blob(bytes); }
  void Text(const std::string& value) {
    if (value.find('\0') != std::string::npos) {
      Blob(value);
      text = "CAST(" + text + " AS TEXT)";
      return;
    }
    text = "'";
    for (const char c : value) text.append(c == '\'' ? 2 : 1, c);
    text += '\'';
  }
};

struct Source {
  sqlite3_value* value;
  int Kind() const { return sqlite3_value_type(value); }
  std::int64_t Integer() const { return sqlite3_value_int64(value); }
  double Real() const { return sqlite3_value_double(value); }
  std::string_view Text() const {
    const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return {data ? data : "", static_cast<std::size_t>(sqlite3_value_bytes(value))};
  }
  std::string_view Blob() const {
    const auto* data = static_cast<const char*>(sqlite3_value_blob(value));
    return {data ? data : "", static_cast<std::size_t>(sqlite3_value_bytes(value))};
  }
};

void AssignText(Value& value, std::string_view text) {
  if (auto* held = std::get_if<std::string>(&value)) {
    held->assign(text);
  } else {
    value.emplace<std::string>(text);
  }
}

// A value that is not NULL.
void DecodeHeld(const Source& source, const TypeInfo& type, Value& value) {
  switch (type.type) {
    case SqlType::Bit:
      value = source.Integer() != 0;
      return;
    case SqlType::TinyInt:
    case SqlType::SmallInt:
    case SqlType::Int:
    case SqlType::BigInt:
      value = source.Integer();
      return;
    case SqlType::Decimal:
    case SqlType::Numeric:
      value = DecimalValue{DecodeDecimal(source.Blob()), type.scale};
      return;
    case SqlType::SmallMoney:
    case SqlType::Money:
      value = DecimalValue{DecodeDecimal(source.Blob()), 4};
      return;
    case SqlType::Real:
    case SqlType::Float:
      value = source.Real();
      return;
    case SqlType::SmallDateTime:
    case SqlType::DateTime:
    case SqlType::DateTime2:
      value = FromTicks(source.Integer());
      return;
    case SqlType::DateTimeOffset:
      value = DecodeOffset(source.Blob());
      return;
    case SqlType::Date:
      value = DateTimeValue{static_cast<std::int32_t>(source.Integer()), 0, 0};
      return;
    case SqlType::Time:
      value = DateTimeValue{0, source.Integer(), 0};
      return;
    case SqlType::Char:
    case SqlType::VarChar:
    case SqlType::Text:
    case SqlType::NChar:
    case SqlType::NVarChar:
    case SqlType::NText:
    case SqlType::Xml:
      return AssignText(value, source.Text());
    case SqlType::Binary:
    case SqlType::VarBinary:
    case SqlType::Image:
    case SqlType::Timestamp:
      value = BinaryValue{std::string(source.Blob())};
      return;
    case SqlType::UniqueIdentifier:
      value = DecodeGuid(source.Blob());
      return;
    case SqlType::Variant:
      if (source.Kind() == SQLITE_TEXT) return AssignText(value, source.Text());
      value = source.Integer();
  }
}

void Decode(const Source& source, const TypeInfo& type, Value& value) {
  if (source.Kind() == SQLITE_NULL) {
    value = std::monostate();
  } else {
    DecodeHeld(source, type, value);
  }
}

}  // namespace

void BindValue(sqlite3_stmt* statement, int index, const Value& value, const TypeInfo& type) {
  Encode(value, type, Binding{statement, index, SQLITE_TRANSIENT});
}

void BindKeptValue(sqlite3_stmt* statement, int index, const Value& value, const TypeInfo& type) {
  Encode(value, type, Binding{statement, index, SQLITE_STATIC});
}

void ReadColumn(sqlite3_stmt* statement, int column, const TypeInfo& type, Value& value) {
  // Asked once for the cell, which is cheaper than asking the statement for each thing about it.
  Decode(Source{sqlite3_column_value(statement, column)}, type, value);
}

Value ReadArgument(sqlite3_value* argument, const TypeInfo& type) {
  Value value;
  Decode(Source{argument}, type, value);
  return value;
}

void ReturnValue(sqlite3_context* context, const Value& value, const TypeInfo& type) {
  Encode(value, type, Returning{context});
}

std::string SqliteLiteral(const Value& value, const TypeInfo& type) {
  Writing writing;
  Encode(value, type, writing);
  return writing.text;
}

std::int64_t PackType(const TypeInfo& type) {
  return static_cast<std::int64_t>(type.type) | static_cast<std::int64_t>(type.length + 1) << 8 |
         static_cast<std::int64_t>(type.precision) << 40 |
         static_cast<std::int64_t>(type.scale) << 48 | static_cast<std::int64_t>(type.order) << 56;
}

TypeInfo UnpackType(std::int64_t packed) {
  return {static_cast<SqlType>(packed & 0xFF), static_cast<int>((packed >> 8) & 0xFFFFFFFF) - 1,
          static_cast<int>((packed >> 40) & 0xFF), static_cast<int>((packed >> 48) & 0xFF),
          static_cast<TextOrder>(packed >> 56)};
}

}  // namespace sandbox
