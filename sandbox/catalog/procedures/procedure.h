#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/storage/catalog.h"
#include "sandbox/values/types.h"

namespace sandbox {

class Session;

/// The arguments of a call, in the order of the procedure's own parameters.
class Arguments {
 public:
  explicit Arguments(std::size_t count) : values_(count) {}
  void Set(std::size_t i, Parameter* parameter) { values_[i] = parameter; }
  /// The text of an argument; nothing when it is missing or NULL.
  std::optional<std::string> Text(std::size_t i) const;
  std::int64_t Integer(std::size_t i, std::int64_t when_missing) const;

 private:
  std::vector<Parameter*> values_;
};

struct Procedure {
  const char* name;
  std::vector<const char*> parameters;
  int (*run)(Session& session, const Arguments& arguments);  // returns the status
};

const Procedure* FindProcedure(std::string_view name);

/// The columns and rows of a result that a procedure makes.
struct ResultRows {
  std::vector<ColumnInfo> columns;
  std::vector<std::vector<Value>> rows;
};

ColumnInfo NameColumn(const char* name, bool nullable = true);              // sysname
ColumnInfo TextColumn(const char* name, int length, bool nullable = true);  // varchar
ColumnInfo IntColumn(const char* name, bool nullable = true);
ColumnInfo SmallColumn(const char* name, bool nullable = true);

inline Value Number(std::int64_t number) {
  return number;
}

/// The table that two arguments name; without an owner it is one that the bare name stands for.
/// Null when there is none.
const TableDef* FindArgument(Session& session, const Arguments& arguments, std::size_t name,
                             std::size_t owner);

/// Sorts rows by the given columns, text as the server orders it.
void SortRows(ResultRows& result, std::initializer_list<std::size_t> columns);

/// The text of a default or "", as COLUMN_DEF shows it: NULL when there is none.
Value TextOrNull(const std::string& text);

// One group each, in files of their own.
std::span<const Procedure> CatalogProcedures();
std::span<const Procedure> KeyProcedures();
std::span<const Procedure> HelpProcedures();
std::span<const Procedure> ServerProcedures();
std::span<const Procedure> IdleProcedures();
std::span<const Procedure> PropertyProcedures();

}  // namespace sandbox
