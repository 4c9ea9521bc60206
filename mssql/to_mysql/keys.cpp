#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/index_notes.h"
#include "mssql/to_mysql/key_columns.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::int32_t kSecondPrimaryKey = 1068;
// What the server says of columns that are too long.
constexpr std::int32_t kColumnsTooLong = 1071;

/// How a key's statement differs from the plain one, after refusals.
struct KeyForm {
  bool has_lengths = false;        // of its TEXT and BLOB columns
  bool replaces_identity = false;  // a primary key in place of the identity column's
};

struct KeyCure {
  std::int32_t native_error;
  bool KeyForm::*change;
};
constexpr std::array kKeyCures{
    KeyCure{1170, &KeyForm::has_lengths},  // a key on TEXT or BLOB without a length
    KeyCure{kColumnsTooLong, &KeyForm::has_lengths},
    KeyCure{kSecondPrimaryKey, &KeyForm::replaces_identity},
};

/// False when there is no cure, or when it has been tried.
bool CureKey(KeyForm& form, std::int32_t native_error) {
  const auto* cure = std::ranges::find(kKeyCures, native_error, &KeyCure::native_error);
  if (cure == kKeyCures.end() || form.*cure->change) return false;
  form.*cure->change = true;
  return true;
}

/// The identity column is the primary key by its own definition.
bool IsKeyOfIdentity(const ado::Index& index, const ColumnDefinition* identity) {
  return index.primary_key && identity != nullptr && index.columns.at(0) == identity->name;
}

/// The source's indexes with the primary key in front, which others may fail beside.
std::vector<ado::Index> PrimaryKeyFirst(std::vector<ado::Index> indexes) {
  std::ranges::stable_partition(indexes, &ado::Index::primary_key);
  return indexes;
}

constexpr std::string_view kRowsDouble =
    "no key tells its rows apart, so that every merge adds all of them again";

}  // namespace

void MsSqlToMySql::AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) {
  bool tells_rows_apart = table.Identity() != nullptr || !table.constraints.empty();
  try {
    for (const ado::Index& index : PrimaryKeyFirst(tab_src.Indexes())) {
      if (IsKeyOfIdentity(index, table.Identity())) continue;
      if (index.primary_key && !table.constraints.empty()) continue;
      const KeyResult result =
          AddKey(tab_src, table, WithoutFilter(index, table.notes), table.notes);
      tells_rows_apart |= result == KeyResult::Unique;
      if (index.is_descending) {
        table.notes.push_back(fmt::format("index {} is ascending in all its columns", index.name));
      }
    }
    std::ranges::copy(tab_src.LeftOut(), std::back_inserter(table.notes));
  } catch (const RunTimeError& error) {
    ReportKey({}, table, error.Number(), error.Description());
  }
  if (IsMerging() && Options().copy_table_content && !tells_rows_apart) {
    table.notes.emplace_back(kRowsDouble);
  }
}

void MsSqlToMySql::CheckExistingTable(ado::Table& tab_src, const TableDefinition& table) {
  try {
    ado::Recordset keys = Destination().Execute(
        fmt::format("select count(*) from information_schema.statistics where table_schema = {} "
                    "and table_name = '{}' and non_unique = 0",
                    SchemaText(table.dest_name), Quote(table.dest_name.name)));
    if (keys.AtEnd() || keys.Field(0).Text() != "0") return;
    for (const ado::Index& index : tab_src.Indexes()) {
      if (!index.primary_key) continue;
      std::vector<std::string> notes{
          fmt::format("its primary key {} was missing on the destination", index.name)};
      RehearseKey(table.dest_name, index.name, DestNames(index.columns));
      const KeyResult result = AddKey(tab_src, table, index, notes);
      if (result == KeyResult::Unique) notes.back() += " and was added";
      for (const std::string& note : notes) TellNote(table, note);
      if (result == KeyResult::Unique) return;
      RehearseKey({}, {}, {});  // it tells no rows apart
    }
    if (Options().copy_table_content) TellNote(table, kRowsDouble);
  } catch (const RunTimeError& error) {
    ReportKey({}, table, error.Number(), error.Description());
  }
}

void MsSqlToMySql::TellNote(const TableDefinition& table, std::string_view note) {
  Host().Inform(fmt::format("Table {}: {}", table.name.Text(), note));
}

std::string MsSqlToMySql::KeyStatement(const TableDefinition& table, const ado::Index& index,
                                       const std::string& columns, bool replaces_identity) const {
  const std::string dest_table = MySqlTable(table.dest_name);
  const std::string name = MySqlName(DestName(index.name));
  if (!index.primary_key) {
    return fmt::format("Create {}index {} on {}({})", index.unique ? "unique " : "", name,
                       dest_table, columns);
  }
  // The identity column stays a key of its own, which MySQL asks for.
  const std::string before = replaces_identity
                                 ? fmt::format("drop primary key, add unique({}), ",
                                               MySqlName(DestName(table.Identity()->name)))
                                 : "";
  return fmt::format("ALTER TABLE {} {}add constraint {} Primary key({})", dest_table, before, name,
                     columns);
}

std::vector<std::string> MsSqlToMySql::DestNames(const std::vector<std::string>& names) const {
  std::vector<std::string> dest_names;
  for (const std::string& name : names) dest_names.push_back(DestName(name));
  return dest_names;
}

std::string MsSqlToMySql::PrimaryKeyClause(const std::vector<ado::Index>& indexes) const {
  const auto key = std::ranges::find(indexes, true, &ado::Index::primary_key);
  if (key == indexes.end()) return {};
  return fmt::format("constraint {} Primary key({})", MySqlName(DestName(key->name)),
                     PlainKeyColumns(DestNames(key->columns)).text);
}

MsSqlToMySql::KeyResult MsSqlToMySql::AddKey(ado::Table& tab_src, const TableDefinition& table,
                                             const ado::Index& index,
                                             std::vector<std::string>& notes) {
  const std::vector<std::string> dest_names = DestNames(index.columns);
  KeyForm form;
  for (;;) {
    const KeyColumns columns =
        form.has_lengths ? KeyColumnsWithLengths(dest_names, index, tab_src.Columns(), table)
                         : PlainKeyColumns(dest_names);
    // Columns of which a part is left out may be equal in rows that are not.
    ado::Index wanted = index;
    if (!columns.is_whole) wanted.primary_key = wanted.unique = false;
    try {
      ExecuteOn(Destination(), KeyStatement(table, wanted, columns.text, form.replaces_identity));
    } catch (const DestinationFailure& failure) {
      const std::int32_t native_error = failure.NativeError();
      const bool can_replace = native_error != kSecondPrimaryKey || table.Identity() != nullptr;
      const bool can_shorten = native_error != kColumnsTooLong || IsExact();
      if (can_replace && can_shorten && CureKey(form, native_error)) continue;
      ReportKey(index, table, failure.Number(), failure.Description());
      return KeyResult::None;
    }
    if (columns.is_whole) {
      return index.unique || index.primary_key ? KeyResult::Unique : KeyResult::Plain;
    }
    TellPrefix(index, table, notes);
    return KeyResult::Plain;
  }
}

void MsSqlToMySql::TellPrefix(const ado::Index& index, const TableDefinition& table,
                              std::vector<std::string>& notes) {
  if (index.primary_key) {
    ReportKey(index, table, kColumnsTooLong,
              "its columns are too long for a key; a plain index stands for it");
    return;
  }
  notes.push_back(
      index.unique
          ? fmt::format("unique key {} became a plain index over the beginnings of its columns",
                        index.name)
          : fmt::format("index {} covers the beginnings of its columns only", index.name));
}

void MsSqlToMySql::ReportKey(const ado::Index& index, const TableDefinition& table,
                             std::int32_t number, std::string_view description) {
  RaiseError(fmt::format("Can not create Primary Key constraint {} for table {} _ {} _ {}",
                         index.name, table.dest_name.Text(), number, description),
             "Primary Key Constraint");
}

}  // namespace dorvane::to_mysql
