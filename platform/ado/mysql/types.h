#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ado/types.h"

namespace dorvane::ado::mysql {

/// A column's or a result field's type in MySQL's own terms.
struct Declaration {
  std::string type;          // "int", "varchar", ... in lower case
  bool is_unsigned = false;  // numbers
  bool is_unicode = false;   // texts: their character set holds what Windows-1252 has not
  std::int64_t length = 0;   // characters of texts, bytes of binaries, bits of bit fields
  int precision = 0;         // decimal digits of decimals
  int scale = 0;             // digits behind the point of decimals; fractional digits of times
};

/// The same in ADO's terms. A type that is not known here is long text, or long binary without a
/// character set (`is_text` false).
FieldInfo Translate(std::string name, const Declaration& declaration, bool is_text);

/// Whether a character set needs Unicode to hold what it can: all but ASCII and Latin 1.
bool IsUnicode(std::string_view character_set);

/// True of the types whose values are bytes.
bool IsBinary(DataType type);

}  // namespace dorvane::ado::mysql
