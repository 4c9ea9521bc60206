#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/reserved_words.h"

namespace dorvane {

namespace {

/// A key as SHOW INDEX describes it, its rows put together.
struct KeyText {
  std::string name;
  bool is_unique = false;
  bool can_be_carried = true;  // covers whole columns and is no full-text or spatial index
  NameList columns{};

  bool IsPrimary() const { return name == "PRIMARY"; }
};

bool IsWholeColumnKey(ado::Recordset& row) {
  const std::string type = row.Field("Index_type").Text();
  return row.Field("Sub_part").IsNull() && !row.Field("column_name").IsNull() &&
         type != "FULLTEXT" && type != "SPATIAL";
}

std::vector<KeyText> ReadKeys(ado::Recordset rows) {
  std::vector<KeyText> keys;
  for (; !rows.AtEnd(); rows.MoveNext()) {
    if (rows.Field("Seq_in_index").Text() == "1") {
      keys.push_back({rows.Field("key_name").Text(), rows.Field("Non_Unique").Text() == "0"});
    }
    if (keys.empty()) continue;
    KeyText& key = keys.back();
    key.columns.push_back(rows.Field("column_name").Text());
    key.can_be_carried = key.can_be_carried && IsWholeColumnKey(rows);
  }
  return keys;
}

/// A name as it may stand outside brackets, else in brackets.
std::string Plain(const std::string& name) {
  return NeedsBrackets(name) ? MsSqlName(name) : name;
}

}  // namespace

void MySqlToMsSql::AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) {
  const std::string& name = tab_src.Name();
  const auto report = [&] {
    RaiseError(fmt::format(
                   "An error occured while creating primary keys and indexes for table '{}'", name),
               "MySQL Server");
  };
  try {
    for (const KeyText& key : ReadKeys(Source().Execute("show index from " + MySqlName(name)))) {
      if (!key.can_be_carried) {
        report();
        continue;
      }
      std::string columns;
      for (const std::string& column : key.columns) {
        if (!columns.empty()) columns += ',';
        const std::string dest_column = DestName(column);
        columns += key.IsPrimary() ? MsSqlName(dest_column) : Plain(dest_column);
      }
      const std::string dest_table = MsSqlName(table.dest_name);
      const std::string key_name = DestName(key.name);
      if (key.IsPrimary()) {
        ExecuteOn(Destination(),
                  fmt::format("alter table {} add primary key ({})", dest_table, columns));
      } else if (key.is_unique) {
        ExecuteOn(Destination(), fmt::format("Create unique index {} on {}({})", Plain(key_name),
                                             dest_table, columns));
      } else {
        ExecuteOn(Destination(), fmt::format("Create index {} on {}({})", MsSqlName(key_name),
                                             dest_table, columns));
      }
    }
  } catch (const RunTimeError&) {
    report();
  }
}

}  // namespace dorvane
