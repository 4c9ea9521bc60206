// What the catalog leaves open and only the rows tell. Asked where it can arise, for tables that
// are going to be made.

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/cures.h"
#include "mssql/to_mysql/exact_types.h"
#include "mssql/to_mysql/literals.h"
#include "platform/ado/items.h"

namespace dorvane::to_mysql {

namespace {

constexpr int kMostSignedTinyInt = 127;
constexpr int kMilliseconds = 3;

/// A datetime, whose thousandths MySQL's plain DATETIME drops.
bool HasDroppedFraction(const ado::Column& column) {
  return column.type == ado::DataType::DBTimeStamp && column.numeric_scale > 0 &&
         FractionDigits(column) == 0;
}

bool IsAbove(const std::string& number, int limit) {
  return !number.empty() && number.front() != '-' && std::atoi(number.c_str()) > limit;
}

}  // namespace

bool MsSqlToMySql::SourceHasRow(const std::string& query) {
  try {
    return !Source().Execute(query).AtEnd();
  } catch (const RunTimeError&) {
    return false;
  }
}

std::set<std::string> MsSqlToMySql::AskForFineSeconds(ado::Table& tab_src) {
  std::vector<std::string> names;
  std::string list;
  for (const ado::Column& column : tab_src.Columns()) {
    if (!MayBeFine(column)) continue;
    list += fmt::format("{}max(case when datepart(nanosecond, {}) % 1000 <> 0 then 1 else 0 end)",
                        names.empty() ? "" : ", ", MsSqlName(column.name));
    names.push_back(column.name);
  }
  std::set<std::string> fine;
  if (names.empty()) return fine;
  ado::Recordset answer =
      Source().Execute(fmt::format("select {} from {}", list, SourceName(tab_src.Name())));
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (answer.Field(i).Text() == "1") fine.insert(names[i]);
  }
  return fine;
}

bool MsSqlToMySql::HasFineDecimals(const ado::TableName& table, const std::string& column) {
  const std::string name = MsSqlName(column);
  return !Source()
              .Execute(fmt::format("select top 1 1 from {} where round({}, {}, 1) <> {}",
                                   SourceName(table), name, kMostDecimalScale, name))
              .AtEnd();
}

void MsSqlToMySql::AskTheData(ado::Table& tab_src, TableDefinition& table) {
  AskForWideTinyInts(tab_src, table);
  AskForMilliseconds(tab_src, table);
}

void MsSqlToMySql::AskForWideTinyInts(ado::Table& tab_src, TableDefinition& table) {
  for (const ado::Column& column : tab_src.Columns()) {
    if (column.type != ado::DataType::UnsignedTinyInt) continue;
    ColumnDefinition* definition = ado::FindItemOrNull(table.columns, column.name);
    const bool is_wide =
        IsAbove(definition->default_clause, kMostSignedTinyInt) ||
        std::ranges::any_of(WithReferencedColumns(SourceCatalog(), {table.name, column.name}),
                            [this](const ColumnPlace& place) {
                              return SourceHasRow(fmt::format(
                                  "select top 1 1 from {} where {} > {}", SourceName(place.table),
                                  MsSqlName(place.column), kMostSignedTinyInt));
                            });
    if (is_wide) definition->type = "TINYINT UNSIGNED";
  }
}

void MsSqlToMySql::AskForMilliseconds(ado::Table& tab_src, TableDefinition& table) {
  const std::vector<ado::Column>& columns = tab_src.Columns();
  for (const ado::Index& index : tab_src.Indexes()) {
    if (!index.unique && !index.primary_key) continue;
    std::vector<ColumnDefinition*> moments;
    std::string groups;
    for (const std::string& name : index.columns) {
      const auto column = std::ranges::find(columns, name, &ado::Column::name);
      if (column == columns.end()) continue;
      std::string group = MsSqlName(name);
      if (HasDroppedFraction(*column)) {
        moments.push_back(ado::FindItemOrNull(table.columns, name));
        group = fmt::format("convert(varchar(19), {}, 120)", group);
      }
      groups += (groups.empty() ? "" : ", ") + group;
    }
    if (moments.empty()) continue;
    if (!SourceHasRow(fmt::format("select top 1 1 from {} group by {} having count(*) > 1",
                                  SourceName(table.name), groups))) {
      continue;
    }
    for (ColumnDefinition* moment : moments) {
      if (moment->facts.fraction_digits == kMilliseconds) continue;
      moment->type = "DATETIME(3)";
      moment->facts.fraction_digits = kMilliseconds;
      moment->notes.push_back(fmt::format(
          "column {} became DATETIME(3), since keys differ in milliseconds only", moment->name));
    }
  }
}

}  // namespace dorvane::to_mysql
