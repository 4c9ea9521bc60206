#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/catalog/result_columns.h"
#include "sandbox/catalog/session.h"
#include "sandbox/storage/catalog.h"

namespace sandbox {

/// The arguments of a call, in the order of the procedure's own parameters.
class Arguments {
 public:
  explicit Arguments(std::size_t count) : values_(count) {}
  void Set(std::size_t i, const Parameter* parameter) { values_[i] = parameter; }
  /// The text of an argument; nothing when it is missing or NULL.
  std::optional<std::string> Text(std::size_t i) const;
  std::int64_t Integer(std::size_t i, std::int64_t when_missing) const;

 private:
  std::vector<const Parameter*> values_;
};

struct Procedure {
  const char* name;
  std::vector<const char*> parameters;
  int (*run)(Session& session, const Arguments& arguments);  // returns the status
};

const Procedure* FindProcedure(std::string_view name);

/// The table that two arguments name; without an owner it is one that the bare name stands for.
/// Null when there is none.
const TableDef* FindArgument(Session& session, const Arguments& arguments, std::size_t name,
                             std::size_t owner);

/// Sorts rows by the columns at these positions, text as the server orders it.
void SortRows(sys::Rows& rows, std::initializer_list<std::size_t> columns);

/// Sends a result whose rows show the items, sorted by the columns at these positions.
template <typename Item>
void SendItems(Session& session, const sys::ShownColumns<Item>& columns,
               const std::vector<Item>& items, std::initializer_list<std::size_t> sorted_by = {}) {
  sys::Rows rows = sys::RowsOf(columns, items);
  SortRows(rows, sorted_by);
  session.SendRows(sys::InfosOf(columns), rows);
}

// One group each, in files of their own.
std::span<const Procedure> CatalogProcedures();
std::span<const Procedure> KeyProcedures();
std::span<const Procedure> HelpProcedures();
std::span<const Procedure> ServerProcedures();
std::span<const Procedure> IdleProcedures();
std::span<const Procedure> PropertyProcedures();

}  // namespace sandbox
