#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/table_name.h"
#include "platform/ado/types.h"

namespace dorvane {

/// What the row copy must know of a column.
struct ColumnFacts {
  std::string default_text;  // destination literal of the default; empty when there is none
  bool nullable = false;     // the source column takes NULL
  int fraction_digits = 0;   // of the seconds that the destination's column keeps
  bool is_text = false;      // a number, or a time, becomes text
  bool is_exact = false;     // the column is of the exact mapping, and so are its values
};

/// A column as the destination gets it, in the pieces that a refusal may change.
struct ColumnDefinition {
  std::string name = {};        // the source's
  std::string read_as = {};     // what is read in its place, in the source's words; empty: itself
  std::string type = {};        // "VARCHAR(50)"; empty for a type that the destination lacks
  std::string attributes = {};  // with a blank in front: " Identity", " primary key auto_increment"
  std::string default_clause = {};  // behind " Default ": the default's literal, or an expression
  /// What follows the name of a column that the destination computes; empty for one that is filled.
  std::string generation = {};
  std::string check = {};       // a condition on the column's values, in the destination's words
  std::string comment = {};     // for a person to read, as the source has it
  std::string next_value = {};  // that an identity column gives next, where the source tells it
  bool is_identity = false;
  bool is_invisible = false;  // "select *" leaves it out
  ColumnFacts facts = {};
  std::vector<std::string> notes = {};  // what the definition leaves out, for a person to read

  /// What follows the column's name in a Create Table statement.
  std::string Text() const;
};

/// A condition on the rows of a table.
struct CheckDefinition {
  std::string name;       // the source's; may be empty
  std::string condition;  // in the source's words
};

/// A table as the destination gets it.
struct TableDefinition {
  ado::TableName name;       // the source catalog's
  ado::TableName dest_name;  // unquoted, like it
  std::vector<ColumnDefinition> columns;
  std::string constraints = {};         // behind the columns, with a comma in front
  std::vector<std::string> notes = {};  // what was done about refusals, for a person to read
  std::string comment = {};             // for a person to read, as the source has it
  std::vector<CheckDefinition> checks = {};

  /// As ado::FindItemOrNull does.
  const ColumnDefinition* Find(std::string_view column) const;
  ColumnDefinition* Find(std::string_view column);
  /// Null when the table has no identity column.
  const ColumnDefinition* Identity() const;
};

/// The facts of the fields' columns, in the order of the fields.
std::vector<ColumnFacts> FactsOf(const std::vector<ado::FieldInfo>& fields,
                                 const TableDefinition& table);

}  // namespace dorvane
