#include <fmt/format.h>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"

namespace dorvane {

void MsSqlToMySql::AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) {
  const ColumnDefinition* identity = table.Identity();
  std::string index_name;
  try {
    for (const ado::Index& index : tab_src.Indexes()) {
      index_name = index.name;
      // The identity column is the primary key by its own definition.
      const bool has_key = identity != nullptr && index.columns.at(0) == identity->name;
      if (index.primary_key && has_key) continue;

      std::string columns;
      for (const std::string& column : index.columns) {
        columns += (columns.empty() ? "" : ",") + MySqlName(DestName(column));
      }
      const std::string dest_table = MySqlName(table.dest_name);
      const std::string name = MySqlName(DestName(index.name));
      ExecuteOn(Destination(),
                index.primary_key
                    ? fmt::format("ALTER TABLE {} add constraint {} Primary key({})", dest_table,
                                  name, columns)
                    : fmt::format("Create {}index {} on {}({})", index.unique ? "unique " : "",
                                  name, dest_table, columns));
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Can not create Primary Key constraint {} for table {} _ {} _ {}",
                           index_name, table.dest_name, error.Number(), error.Description()),
               "Primary Key Constraint");
  }
}

}  // namespace dorvane
