#pragma once

#include <sqlite3.h>

#include <string>

#include "sandbox/parser/lexer.h"
#include "sandbox/storage/catalog.h"

namespace sandbox {

/// What kinds of values a VALUES list has for one column; flags, to be joined. NULL has none.
enum CellKinds : unsigned {
  kTextCell = 1,
  kBytesCell = 2,
  kIntCell = 4,     // surely an int
  kExactCell = 8,   // another exact number that 64 bits hold
  kFloatCell = 16,  // with an exponent
  kOtherCell = 32,  // everything else, expressions too
};
CellKinds KindOf(const LiteralText& literal);

/// True when literals of these kinds have one type however they differ: none has to be brought to
/// the type that the rows have in common.
bool HaveOneType(unsigned kinds);

/// True when the column stores literals of these kinds as they are, whatever type their rows have
/// in common.
bool TakesAsWritten(const ColumnDef& column, unsigned kinds);

/// Binds a literal of a kind that the column takes as written, but for NULL. False, with nothing
/// bound, where converting it has more to it, or is an error. The binding refers to the literal's
/// text and to `scratch`.
using LiteralBinder = bool (*)(sqlite3_stmt* statement, int index, const TypeInfo& column,
                               const LiteralText& literal, std::string& scratch);
LiteralBinder LiteralBinderFor(SqlType column);

}  // namespace sandbox
