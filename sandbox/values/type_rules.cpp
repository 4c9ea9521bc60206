#include "sandbox/values/type_rules.h"

#include <algorithm>
#include <array>

#include "sandbox/text/text_order.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

// In the order of SqlType.
constexpr std::array kFacts{
    TypeFacts{SqlType::Bit, "bit", 11, 104, -7, -7, 1, 1},
    TypeFacts{SqlType::TinyInt, "tinyint", 12, 48, -6, -6, 3, 1},
    TypeFacts{SqlType::SmallInt, "smallint", 13, 52, 5, 5, 5, 2},
    TypeFacts{SqlType::Int, "int", 14, 56, 4, 4, 10, 4},
    TypeFacts{SqlType::BigInt, "bigint", 15, 127, -5, -5, 19, 8},
    TypeFacts{SqlType::Decimal, "decimal", 18, 106, 3, 3, 0, 0},
    TypeFacts{SqlType::Numeric, "numeric", 18, 108, 2, 2, 0, 0},
    TypeFacts{SqlType::SmallMoney, "smallmoney", 16, 122, 3, 3, 10, 4},
    TypeFacts{SqlType::Money, "money", 17, 60, 3, 3, 19, 8},
    TypeFacts{SqlType::Real, "real", 19, 59, 7, 7, 24, 4},
    TypeFacts{SqlType::Float, "float", 20, 62, 6, 6, 53, 8},
    TypeFacts{SqlType::SmallDateTime, "smalldatetime", 23, 58, 11, 9, 16, 4},
    TypeFacts{SqlType::DateTime, "datetime", 24, 61, 11, 9, 23, 8},
    TypeFacts{SqlType::DateTime2, "datetime2", 25, 42, -9, -9, 0, 8},
    TypeFacts{SqlType::DateTimeOffset, "datetimeoffset", 26, 43, -9, -9, 0, 10},
    TypeFacts{SqlType::Date, "date", 22, 40, -9, -9, 10, 3},
    TypeFacts{SqlType::Time, "time", 21, 41, -9, -9, 0, 5},
    TypeFacts{SqlType::Char, "char", 3, 175, 1, 1, 0, 0},
    TypeFacts{SqlType::VarChar, "varchar", 4, 167, 12, 12, 0, 0},
    TypeFacts{SqlType::Text, "text", 9, 35, -1, -1, 2147483647, 2147483647},
    TypeFacts{SqlType::NChar, "nchar", 5, 239, -8, -8, 0, 0},
    TypeFacts{SqlType::NVarChar, "nvarchar", 6, 231, -9, -9, 0, 0},
    TypeFacts{SqlType::NText, "ntext", 10, 99, -10, -10, 1073741823, 2147483646},
    TypeFacts{SqlType::Xml, "xml", 28, 241, -10, -10, 1073741823, 2147483646},
    TypeFacts{SqlType::Binary, "binary", 1, 173, -2, -2, 0, 0},
    TypeFacts{SqlType::VarBinary, "varbinary", 2, 165, -3, -3, 0, 0},
    TypeFacts{SqlType::Image, "image", 8, 34, -4, -4, 2147483647, 2147483647},
    TypeFacts{SqlType::Timestamp, "timestamp", 7, 189, -2, -2, 8, 8},
    TypeFacts{SqlType::UniqueIdentifier, "uniqueidentifier", 7, 36, -11, -11, 36, 16},
    TypeFacts{SqlType::Variant, "sql_variant", 30, 98, -150, -150, 8000, 8000},
};

struct Synonym {
  const char* name;
  SqlType type;
};
constexpr std::array kSynonyms{
    Synonym{"integer", SqlType::Int},          Synonym{"dec", SqlType::Decimal},
    Synonym{"rowversion", SqlType::Timestamp}, Synonym{"character", SqlType::Char},
    Synonym{"sysname", SqlType::NVarChar},
};

constexpr int kMaxPrecision = 38;
constexpr int kMaxBytes = 8000;
constexpr int kMaxUnicode = 4000;

struct Measure {
  const std::vector<int>& args;
  int position;
  std::string_view column;
  int First(int when_missing) const { return args.empty() ? when_missing : args[0]; }
};

TypeInfo SizedType(SqlType type, const Measure& measure) {
  const int limit = IsUnicode(type) ? kMaxUnicode : kMaxBytes;
  const int size = measure.First(1);
  const bool takes_max =
      type == SqlType::VarChar || type == SqlType::NVarChar || type == SqlType::VarBinary;
  if (size == -1 && takes_max) return {type, -1, 0, 0};
  if (size < 1) {
    const std::string word = size == -1 ? "max" : fmt::format("{}", size);
    Raise(102, word);
  }
  if (size > limit) Raise(2717, size, "type", TypeName(type), limit);
  return {type, size, 0, 0};
}

TypeInfo ExactType(SqlType type, const Measure& measure) {
  const int precision = measure.First(18);
  const int scale = measure.args.size() > 1 ? measure.args[1] : 0;
  if (precision > kMaxPrecision) Raise(2750, measure.position, precision);
  if (precision < 1) Raise(102, fmt::format("{}", precision));
  if (scale > precision) Raise(2751, measure.position, scale, precision);
  return {type, 0, precision, scale};
}

TypeInfo FractionalType(SqlType type, const Measure& measure) {
  const int scale = measure.First(7);
  if (scale < 0 || scale > 7) Raise(2717, scale, "column", measure.column, 7);
  const int base = type == SqlType::Time ? 8 : type == SqlType::DateTime2 ? 19 : 26;
  return {type, 0, base + (scale > 0 ? scale + 1 : 0), scale};
}

std::optional<SqlType> TypeByName(std::string_view name) {
  for (const TypeFacts& facts : kFacts) {
    if (SameName(facts.name, name)) return facts.type;
  }
  for (const Synonym& synonym : kSynonyms) {
    if (SameName(synonym.name, name)) return synonym.type;
  }
  return std::nullopt;
}

TypeInfo LimitedDecimal(int precision, int scale) {
  if (precision <= kMaxPrecision) return DecimalType(precision, scale);
  const int whole = precision - scale;
  const int kept = std::max(std::min(scale, 6), kMaxPrecision - whole);
  return DecimalType(kMaxPrecision, std::clamp(kept, 0, scale));
}

TypeInfo DecimalArithmetic(char op, const TypeInfo& left, const TypeInfo& right) {
  const TypeInfo a = AsDecimal(left), b = AsDecimal(right);
  const int whole = std::max(a.precision - a.scale, b.precision - b.scale);
  const int scale = std::max(a.scale, b.scale);
  switch (op) {
    case '*':
      return LimitedDecimal(a.precision + b.precision + 1, a.scale + b.scale);
    case '/': {
      const int quotient_scale = std::max(6, a.scale + b.precision + 1);
      return LimitedDecimal(a.precision - a.scale + b.scale + quotient_scale, quotient_scale);
    }
    case '%':
      return LimitedDecimal(std::min(a.precision - a.scale, b.precision - b.scale) + scale, scale);
    default:
      return LimitedDecimal(whole + scale + 1, scale);
  }
}

TypeInfo Concatenated(const TypeInfo& left, const TypeInfo& right) {
  if (IsBinary(left.type) && IsBinary(right.type)) {
    if (left.length < 0 || right.length < 0) return {SqlType::VarBinary, -1, 0, 0};
    return VarBinary(static_cast<std::size_t>(std::min(left.length + right.length, kMaxBytes)));
  }
  const bool unicode = IsUnicode(left.type) || IsUnicode(right.type);
  const SqlType type = unicode ? SqlType::NVarChar : SqlType::VarChar;
  if (left.length < 0 || right.length < 0) return {type, -1, 0, 0};
  const int limit = unicode ? kMaxUnicode : kMaxBytes;
  return {type, std::min(left.length + right.length, limit), 0, 0};
}

}  // namespace

const TypeFacts& Facts(SqlType type) {
  return kFacts[static_cast<std::size_t>(type)];
}
const char* TypeName(SqlType type) {
  return Facts(type).name;
}

std::optional<TypeInfo> DeclaredType(std::string_view name, const std::vector<int>& args,
                                     int position, std::string_view column) {
  if (SameName(name, "sysname")) return NVarChar(128);
  const auto type = TypeByName(name);
  if (!type) return std::nullopt;
  const Measure measure{args, position, column};
  switch (*type) {
    case SqlType::Char:
    case SqlType::VarChar:
    case SqlType::NChar:
    case SqlType::NVarChar:
    case SqlType::Binary:
    case SqlType::VarBinary:
      return SizedType(*type, measure);
    case SqlType::Decimal:
    case SqlType::Numeric:
      return ExactType(*type, measure);
    case SqlType::DateTime2:
    case SqlType::DateTimeOffset:
    case SqlType::Time:
      return FractionalType(*type, measure);
    case SqlType::Float:
      if (measure.First(53) < 25) return TypeInfo{SqlType::Real, 0, 24, 0};
      return FloatType();
    default:
      break;
  }
  if (!args.empty() && *type != SqlType::Xml) Raise(2716, position, TypeName(*type));
  if (IsMoney(*type)) return TypeInfo{*type, 0, Facts(*type).precision, 4};
  if (IsLong({*type, 0, 0, 0})) return TypeInfo{*type, -1, 0, 0};
  if (*type == SqlType::Timestamp) return TypeInfo{*type, 8, 0, 0};
  if (*type == SqlType::DateTime) return DateTimeType();
  return TypeInfo{*type, 0, Facts(*type).precision, 0};
}

std::string TypeText(const TypeInfo& type) {
  const std::string name = TypeName(type);
  if (type.type == SqlType::Decimal || type.type == SqlType::Numeric) {
    return fmt::format("{}({},{})", name, type.precision, type.scale);
  }
  if (type.type == SqlType::Timestamp || (IsLong(type) && Facts(type.type).length != 0))
    return name;
  if (IsText(type.type) || IsBinary(type.type)) {
    return type.length < 0 ? name + "(max)" : fmt::format("{}({})", name, type.length);
  }
  const bool fractional = type.type == SqlType::DateTime2 || type.type == SqlType::Time ||
                          type.type == SqlType::DateTimeOffset;
  return fractional ? fmt::format("{}({})", name, type.scale) : name;
}

bool IsInteger(SqlType type) {
  return type >= SqlType::TinyInt && type <= SqlType::BigInt;
}
bool IsMoney(SqlType type) {
  return type == SqlType::Money || type == SqlType::SmallMoney;
}
bool IsExact(SqlType type) {
  return type == SqlType::Decimal || type == SqlType::Numeric || IsMoney(type);
}
bool IsApproximate(SqlType type) {
  return type == SqlType::Real || type == SqlType::Float;
}
bool IsNumber(SqlType type) {
  return type <= SqlType::Float;
}
bool IsText(SqlType type) {
  return type >= SqlType::Char && type <= SqlType::Xml;
}
bool IsUnicode(SqlType type) {
  return type >= SqlType::NChar && type <= SqlType::Xml;
}
bool IsBinary(SqlType type) {
  return type >= SqlType::Binary && type <= SqlType::Timestamp;
}
bool IsTemporal(SqlType type) {
  return type >= SqlType::SmallDateTime && type <= SqlType::Time;
}

bool IsLong(const TypeInfo& type) {
  switch (type.type) {
    case SqlType::Text:
    case SqlType::NText:
    case SqlType::Xml:
    case SqlType::Image:
      return true;
    default:
      return (IsText(type.type) || IsBinary(type.type)) && type.length < 0;
  }
}

bool IsKeyable(const TypeInfo& type) {
  return !IsLong(type);
}

TypeInfo DecimalType(int precision, int scale) {
  return {SqlType::Numeric, 0, precision, scale};
}
TypeInfo VarChar(std::size_t length) {
  return {SqlType::VarChar, length > kMaxBytes ? -1 : std::max(1, static_cast<int>(length)), 0, 0};
}
TypeInfo NVarChar(std::size_t length) {
  return {SqlType::NVarChar, length > kMaxUnicode ? -1 : std::max(1, static_cast<int>(length)), 0,
          0};
}
TypeInfo VarBinary(std::size_t length) {
  return {SqlType::VarBinary, length > kMaxBytes ? -1 : std::max(1, static_cast<int>(length)), 0,
          0};
}

TypeInfo AsDecimal(const TypeInfo& type) {
  if (type.type == SqlType::Decimal || type.type == SqlType::Numeric) return type;
  return DecimalType(std::max(1, Facts(type.type).precision), IsMoney(type.type) ? 4 : 0);
}

TypeInfo CommonType(const TypeInfo& left, const TypeInfo& right) {
  const TypeInfo& winner =
      Facts(left.type).precedence >= Facts(right.type).precedence ? left : right;
  const TypeInfo& other = &winner == &left ? right : left;
  if (winner.type == SqlType::Decimal || winner.type == SqlType::Numeric) {
    if (!IsNumber(other.type)) return winner;
    const TypeInfo a = AsDecimal(winner), b = AsDecimal(other);
    const int scale = std::max(a.scale, b.scale);
    TypeInfo common =
        LimitedDecimal(std::max(a.precision - a.scale, b.precision - b.scale) + scale, scale);
    common.type = winner.type;
    return common;
  }
  const bool sized = (IsText(winner.type) && IsText(other.type)) ||
                     (IsBinary(winner.type) && IsBinary(other.type));
  if (!sized) {
    TypeInfo common = winner;
    if (winner.type == other.type) common.scale = std::max(left.scale, right.scale);
    return common;
  }
  TypeInfo common = winner;
  common.order = std::max(left.order, right.order);
  common.length = left.length < 0 || right.length < 0 ? -1 : std::max(left.length, right.length);
  if (IsUnicode(common.type) && common.length > kMaxUnicode) common.length = -1;
  // A fixed length only stays fixed when it is the same on both sides.
  if (common.length != winner.length && common.type == SqlType::Char)
    common.type = SqlType::VarChar;
  if (common.length != winner.length && common.type == SqlType::NChar) {
    common.type = SqlType::NVarChar;
  }
  if (common.type == SqlType::Binary && other.type == SqlType::Binary &&
      left.length != right.length) {
    common.type = SqlType::VarBinary;
  }
  return common;
}

TypeInfo ArithmeticType(char op, const TypeInfo& left, const TypeInfo& right) {
  const bool both_text = IsText(left.type) && IsText(right.type);
  const bool both_binary = IsBinary(left.type) && IsBinary(right.type);
  if (op == '+' && (both_text || both_binary)) return Concatenated(left, right);
  const TypeInfo common = CommonType(left, right);
  if (!IsNumber(common.type)) {
    Raise(402, TypeName(left), TypeName(right), std::string(1, op));
  }
  if (common.type == SqlType::Decimal || common.type == SqlType::Numeric) {
    const TypeInfo& a = IsNumber(left.type) ? left : right;
    const TypeInfo& b = IsNumber(right.type) ? right : left;
    return DecimalArithmetic(op, a, b);
  }
  return common.type == SqlType::Bit ? IntType() : common;
}

bool SameForm(const TypeInfo& left, const TypeInfo& right) {
  const auto integer = [](SqlType type) { return type == SqlType::Bit || IsInteger(type); };
  const auto whole_time = [](SqlType type) {
    return type == SqlType::DateTime || type == SqlType::DateTime2 ||
           type == SqlType::SmallDateTime;
  };
  const SqlType a = left.type, b = right.type;
  if (a == SqlType::Variant || b == SqlType::Variant) return a == b;
  if (integer(a) && integer(b)) return true;
  if (IsExact(a) && IsExact(b)) return left.scale == right.scale;
  if (IsApproximate(a) && IsApproximate(b)) return true;
  if (whole_time(a) && whole_time(b)) return true;
  if (IsText(a) && IsText(b)) return true;
  if (IsBinary(a) && IsBinary(b)) return true;
  return a == b;
}

int MaxLength(const TypeInfo& type) {
  switch (type.type) {
    case SqlType::Text:
    case SqlType::NText:
    case SqlType::Image:
      return 16;
    case SqlType::Xml:
      return -1;
    case SqlType::Variant:
      return 8016;
    case SqlType::Decimal:
    case SqlType::Numeric:
      return type.precision <= 9 ? 5 : type.precision <= 19 ? 9 : type.precision <= 28 ? 13 : 17;
    case SqlType::Time:
      return type.scale <= 2 ? 3 : type.scale <= 4 ? 4 : 5;
    case SqlType::DateTime2:
      return type.scale <= 2 ? 6 : type.scale <= 4 ? 7 : 8;
    case SqlType::DateTimeOffset:
      return type.scale <= 2 ? 8 : type.scale <= 4 ? 9 : 10;
    default:
      break;
  }
  const int fixed = Facts(type.type).length;
  if (fixed != 0) return fixed;
  return type.length < 0 ? -1 : IsUnicode(type.type) ? type.length * 2 : type.length;
}

std::string CollationName(const TypeInfo& type, const std::string& declared) {
  if (!IsText(type.type) || type.type == SqlType::Xml) return "";
  return declared.empty() ? "SQL_Latin1_General_CP1_CI_AS" : declared;
}

int CatalogPrecision(const TypeInfo& type) {
  if (IsText(type.type) || IsBinary(type.type)) return 0;
  if (type.type == SqlType::UniqueIdentifier || type.type == SqlType::Variant) return 0;
  return type.precision;
}

}  // namespace sandbox
