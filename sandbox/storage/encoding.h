#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>

#include "sandbox/values/types.h"

namespace sandbox {

/// How values lie in SQLite. Every form compares under SQLite's own operators as the server
/// compares two values of the same type and scale:
///   integers, bit          INTEGER
///   decimal, money         16 bytes, highest first, of the scaled number with its sign bit turned
///   real, float            REAL
///   dates and times        INTEGER: days, or 100 ns since midnight or since 0001-01-01
///   datetimeoffset         10 bytes: the same of the UTC time, then the offset in minutes
///   text                   TEXT under the collation kTextCollation
///   binary                 BLOB;  uniqueidentifier: 16 bytes in the server's sorting order
///   sql_variant            INTEGER or TEXT; it takes nothing else
void BindValue(sqlite3_stmt* statement, int index, const Value& value, const TypeInfo& type);
/// The same without a copy: text and bytes must stay until the statement has run.
void BindKeptValue(sqlite3_stmt* statement, int index, const Value& value, const TypeInfo& type);
void ReadColumn(sqlite3_stmt* statement, int column, const TypeInfo& type, Value& value);
Value ReadArgument(sqlite3_value* argument, const TypeInfo& type);
void ReturnValue(sqlite3_context* context, const Value& value, const TypeInfo& type);

/// The value as a literal of SQLite's language.
std::string SqliteLiteral(const Value& value, const TypeInfo& type);

/// A type packed into one number, for handing it to SQLite functions, and back.
std::int64_t PackType(const TypeInfo& type);
TypeInfo UnpackType(std::int64_t packed);

}  // namespace sandbox
