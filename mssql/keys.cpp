#include <fmt/format.h>

#include "mssql/mssql_database.h"

namespace dorvane {

void MsSqlDatabase::AddPrimaryKeyConstraint(ado::Table& tab_src,
                                            const std::string& identity_column) {
  const std::string table_name = DestName(tab_src.Name());
  std::string index_name;
  try {
    for (const ado::Index& index : tab_src.Indexes()) {
      index_name = index.name;
      // The identity column is the primary key by its own definition.
      if (index.primary_key && index.columns.at(0) == identity_column) continue;

      std::string columns;
      for (const std::string& column : index.columns) {
        columns += (columns.empty() ? "`" : ",`") + DestName(column) + "`";
      }
      const std::string name = DestName(index.name);
      ExecuteOn(Destination(),
                index.primary_key
                    ? fmt::format("ALTER TABLE `{}` add constraint `{}` Primary key({})",
                                  table_name, name, columns)
                    : fmt::format("Create {}index `{}` on `{}`({})", index.unique ? "unique " : "",
                                  name, table_name, columns));
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Can not create Primary Key constraint {} for table {} _ {} _ {}",
                           index_name, table_name, error.Number(), error.Description()),
               "Primary Key Constraint");
  }
}

}  // namespace dorvane
