#pragma once

#include <string>
#include <string_view>

#include "endpoint/table_definition.h"
#include "platform/ado/row_block.h"
#include "platform/ado/table_name.h"
#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::to_mysql {

/// What a source value becomes in a field of the MySQL table: NULL, text, or bytes (binary values,
/// and identifiers unless the column is exact). New text is kept in `storage`; other text and bytes
/// stay where the value has them. A NULL becomes the column's default where the column takes no
/// NULL. Seconds get the fraction that `facts` tell of, cut.
ado::Value DataValue(const ado::Value& value, const ado::FieldInfo& field, const ColumnFacts& facts,
                     ado::Arena& storage);

/// True for the types whose bytes go into the destination piece by piece.
bool IsChunkCopied(ado::DataType type);

/// The fractional digits that a date and time, or a time, gets on MySQL: 0 for what its plain type
/// is given for, else 6.
int FractionDigits(const ado::FieldInfo& field);

/// True when the column's fraction has no room for all of the moment's.
bool LosesFraction(const ado::DateTime& moment, const ColumnFacts& facts);

/// A MySQL literal's inside: backslashes and double quotes behind a backslash, "'" doubled.
std::string Quote(std::string_view text);

/// A braced identifier without its braces.
std::string_view BareGuid(std::string_view braced);

/// What stands for a table's database in a condition on MySQL's catalog.
std::string SchemaText(const ado::TableName& table);

/// "0x" and the 32 digits of a braced identifier; "0x00" for any other text.
std::string HexCodeGUID(std::string_view braced);

}  // namespace dorvane::to_mysql
