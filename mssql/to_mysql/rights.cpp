#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "endpoint/failure.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/literals.h"
#include "mssql/to_mysql/rehearsed_server.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::int32_t kDatabaseDenied = 1044;
constexpr std::int32_t kCommandDenied = 1142;

/// The login, as the server writes it.
constexpr std::string_view kGrantee = "concat('''', replace(current_user(), '@', '''@'''), '''')";

/// A statement that needs a right and fails in any case: on tables that nobody has.
struct Probe {
  TableRight right;
  std::string_view command;  // as the server calls it
  const char* statement;
};
constexpr std::array kProbes{
    Probe{TableRight::Create, "CREATE", "create table {0} like {1}"},
    Probe{TableRight::Alter, "ALTER", "alter table {0} comment ''"},
    Probe{TableRight::Index, "INDEX", "create index i on {0} (i)"},
    Probe{TableRight::Drop, "DROP", "drop table {0}"},
    Probe{TableRight::Insert, "INSERT", "explain insert into {0} () values ()"},
    Probe{TableRight::Refer, "REFERENCES",
          "create table {1} (i int, foreign key (i) references {0} (i))"},
};

/// What the server says when it denies the command; none when it says anything else.
std::optional<ado::ProviderError> WordsOf(ado::Connection& connection, const Probe& probe,
                                          const ado::TableName& nobodys) {
  const ado::TableName other(nobodys.schema, nobodys.name + "_");
  try {
    connection.Execute(
        fmt::format(fmt::runtime(probe.statement), MySqlTable(nobodys), MySqlTable(other)));
  } catch (const ado::ProviderError& failure) {
    const ado::Error* entry = PrimaryError(failure.Entries(), 0);
    const bool is_denied = entry != nullptr && entry->native_error == kCommandDenied &&
                           entry->description.starts_with(probe.command);
    if (is_denied) return failure;
  }
  return std::nullopt;
}

bool IsGrantedOnTable(ado::Connection& connection, const Probe& probe,
                      const ado::TableName& table) {
  ado::Recordset count = connection.Execute(
      fmt::format("select count(*) from information_schema.table_privileges where table_schema = "
                  "{} and table_name = '{}' and privilege_type = '{}' and grantee = {}",
                  SchemaText(table), Quote(table.name), probe.command, kGrantee));
  return count.AtEnd() || count.Field(0).Text() != "0";
}

}  // namespace

std::optional<ado::ProviderError> RehearsedMySql::Denial(TableRight right,
                                                         const ado::TableName& table) {
  if (right == TableRight::MakeSchema) return SchemaDenial(table.name);
  const auto* probe = std::ranges::find(kProbes, right, &Probe::right);
  const std::string name = connection_.Execute("select concat('dorvane_', uuid())").Field(0).Text();
  std::optional<ado::ProviderError> denial = WordsOf(connection_, *probe, {table.schema, name});
  if (!denial || IsGrantedOnTable(connection_, *probe, table)) return std::nullopt;
  std::string words = denial->Entries().front().description;
  const std::size_t at = words.find(name);
  if (at != std::string::npos) words.replace(at, name.size(), table.name);
  return Refusal(ServerKind::MySql, kCommandDenied, words, denial->Number());
}

std::optional<ado::ProviderError> RehearsedMySql::SchemaDenial(const std::string& schema) {
  // The right to make a database is that to make tables in it.
  const std::optional<ado::ProviderError> denial =
      WordsOf(connection_, kProbes.front(), {schema, "dorvane"});
  if (!denial) return std::nullopt;
  const std::string login = connection_.Execute(fmt::format("select {}", kGrantee)).Field(0).Text();
  return Refusal(ServerKind::MySql, kDatabaseDenied,
                 fmt::format("Access denied for user {} to database '{}'", login, schema),
                 ado::hresult::kFail);
}

}  // namespace dorvane::to_mysql
