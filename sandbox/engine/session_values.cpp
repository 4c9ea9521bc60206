#include <array>

#include "sandbox/catalog/object_names.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

constexpr const char* kVersion =
    "Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64) \n\tPractice server of Dorvane";

Value Number(std::int64_t number) {
  return number;
}

struct Property {
  const char* name;
  const char* value;
};
constexpr std::array kServerProperties{
    Property{"productversion", "15.0.2000.5"},
    Property{"productlevel", "RTM"},
    Property{"engineedition", "3"},
    Property{"isintegratedsecurityonly", "0"},
    Property{"edition", "Developer Edition (64-bit)"},
    Property{"servername", "SANDBOX"},
    Property{"machinename", "SANDBOX"},
    Property{"collation", "SQL_Latin1_General_CP1_CI_AS"},
};

bool IsNumber(const Value& value, std::int64_t number) {
  const auto* held = std::get_if<std::int64_t>(&value);
  return held && *held == number;
}

std::string TextArgument(const std::vector<Value>& args, std::size_t i) {
  if (i >= args.size()) return "";
  const auto* text = std::get_if<std::string>(&args[i]);
  return text ? *text : "";
}

// ---- what the values are made of

using Args = const std::vector<Value>&;

Value OrNull(const std::optional<std::int64_t>& number) {
  return number ? Value(DecimalValue{*number, 0}) : Value();
}

Value UserName(SqlSession& s, Args) {
  return s.Link().User().name;
}
Value LoginName(SqlSession& s, Args) {
  return s.Login();
}
Value ScopeIdentity(SqlSession& s, Args) {
  return OrNull(s.State().scope_identity);
}
Value Yes(SqlSession&, Args) {
  return std::int64_t{1};
}

Value IdentCurrent(SqlSession& s, Args args) {
  const TableDef* table = s.Link().FindTable(ParsedName(TextArgument(args, 0)));
  if (!table || !table->IdentityColumn()) return {};
  return OrNull(s.Link().LastIdentity(*table).value_or(table->IdentityColumn()->seed));
}

Value DatabaseName(SqlSession& s, Args args) {
  if (args.empty()) return s.Database();
  for (const auto& database : s.Folder().All()) {
    if (IsNumber(args[0], database->id)) return database->name;
  }
  return {};
}

Value DatabaseId(SqlSession& s, Args args) {
  if (args.empty()) return std::int64_t{s.Link().State().id};
  const auto database = s.Folder().Find(TextArgument(args, 0));
  return database ? Value(std::int64_t{database->id}) : Value();
}

Value NameOfType(SqlSession&, Args args) {
  for (int i = 0; !args.empty() && i <= static_cast<int>(SqlType::Variant); ++i) {
    const TypeFacts& facts = Facts(static_cast<SqlType>(i));
    if (IsNumber(args[0], facts.system_type_id)) return std::string(facts.name);
  }
  return {};
}

Value CollationProperty(SqlSession&, Args args) {
  const bool known = SameName(TextArgument(args, 1), "codepage") && !TextArgument(args, 0).empty();
  return known ? Value(std::int64_t{1252}) : Value();
}

Value DatabaseProperty(SqlSession&, Args args) {
  const bool collation = SameName(TextArgument(args, 1), "collation");
  return std::string(collation ? "SQL_Latin1_General_CP1_CI_AS" : "ONLINE");
}

Value ServerProperty(SqlSession&, Args args) {
  for (const Property& property : kServerProperties) {
    if (SameName(property.name, TextArgument(args, 0))) return std::string(property.value);
  }
  return {};
}

template <auto member>
Value OfCaught(SqlSession& s, Args) {
  const std::optional<ServerMessage>& caught = s.State().caught;
  if (!caught) return {};
  if constexpr (std::is_same_v<decltype(member), std::string ServerMessage::*>) {
    return *caught.*member;
  } else {
    return std::int64_t{*caught.*member};
  }
}

template <Value (*function)(Session&, Args)>
Value Of(SqlSession& s, Args args) {
  return function(s, args);
}

template <std::int64_t number>
Value Always(SqlSession&, Args) {
  return number;
}

// ---- the values

struct Entry {
  std::string_view name;
  TypeInfo type;
  Value (*value)(SqlSession& session, Args args);
};

const TypeInfo kName = NVarChar(128);
const TypeInfo kInt = IntType();
const TypeInfo kSmall = SmallIntType();
const TypeInfo kTiny = TinyIntType();
const TypeInfo kIdentity = DecimalType(38, 0);

const Entry kEntries[] = {
    {"@@version", NVarChar(300), [](SqlSession&, Args) { return Value(std::string(kVersion)); }},
    {"@@rowcount", kInt, [](SqlSession& s, Args) { return Value(s.State().row_count); }},
    {"rowcount_big", BigIntType(), [](SqlSession& s, Args) { return Value(s.State().row_count); }},
    {"@@error", kInt, [](SqlSession& s, Args) { return Number(s.State().last_error); }},
    {"@@trancount", kInt, [](SqlSession& s, Args) { return Number(s.State().transaction_count); }},
    {"@@spid", kSmall, [](SqlSession& s, Args) { return Number(s.Spid()); }},
    {"@@servername", kName, [](SqlSession&, Args) { return Value(std::string("SANDBOX")); }},
    {"@@servicename", kName, [](SqlSession&, Args) { return Value(std::string("MSSQLSERVER")); }},
    {"@@language", kName, [](SqlSession&, Args) { return Value(std::string("us_english")); }},
    {"@@microsoftversion", kInt, Always<0x0F0007D0>},
    {"@@options", kInt, Always<5496>},
    {"@@max_precision", kTiny, Always<38>},
    {"@@textsize", kInt, [](SqlSession& s, Args) { return Number(s.State().options.text_size); }},
    {"@@datefirst", kTiny, Always<7>},
    {"@@lock_timeout", kInt, Always<-1>},
    {"@@nestlevel", kInt, [](SqlSession& s, Args) { return Number(s.State().nesting - 1); }},
    {"@@fetch_status", kInt, Always<-1>},
    {"xact_state", kSmall, [](SqlSession& s, Args) { return Number(s.InTransaction()); }},
    {"@@identity", kIdentity, ScopeIdentity},
    {"scope_identity", kIdentity, ScopeIdentity},
    {"ident_current", kIdentity, IdentCurrent},
    {"db_name", kName, DatabaseName},
    {"db_id", kSmall, DatabaseId},
    {"user_name", kName, UserName},
    {"user", kName, UserName},
    {"current_user", kName, UserName},
    {"session_user", kName, UserName},
    {"user_id", kInt, [](SqlSession& s, Args) { return Number(s.Link().User().id); }},
    {"schema_name", kName, Of<SchemaNameOf>},
    {"schema_id", kInt, Of<SchemaIdOf>},
    {"suser_sname", kName, LoginName},
    {"suser_name", kName, LoginName},
    {"system_user", kName, LoginName},
    {"original_login", kName, LoginName},
    {"host_name", kName, [](SqlSession&, Args) { return Value(std::string("localhost")); }},
    {"app_name", kName, [](SqlSession&, Args) { return Value(std::string()); }},
    {"has_perms_by_name", kInt, Yes},
    {"is_srvrolemember", kInt, Yes},
    {"is_member", kInt, Yes},
    {"has_dbaccess", kInt, Yes},
    {"object_id", kInt, Of<ObjectIdOf>},
    {"object_name", kName, Of<ObjectNameOf>},
    {"object_schema_name", kName, Of<ObjectSchemaNameOf>},
    {"col_name", kName, Of<ColumnNameOf>},
    {"type_name", kName, NameOfType},
    {"columnproperty", kInt, Of<ColumnPropertyOf>},
    {"objectproperty", kInt, Of<ObjectPropertyOf>},
    {"collationproperty", kInt, CollationProperty},
    {"databasepropertyex", kName, DatabaseProperty},
    {"serverproperty", kName, ServerProperty},
    {"error_number", kInt, OfCaught<&ServerMessage::number>},
    {"error_severity", kInt, OfCaught<&ServerMessage::severity>},
    {"error_state", kInt, OfCaught<&ServerMessage::state>},
    {"error_line", kInt, OfCaught<&ServerMessage::line>},
    {"error_procedure", kName, [](SqlSession&, Args) { return Value(); }},
    {"error_message", NVarChar(4000), OfCaught<&ServerMessage::text>},
};

}  // namespace

std::optional<std::pair<Value, TypeInfo>> SqlSession::SessionValue(std::string_view name,
                                                                   Args arguments) {
  for (const Entry& entry : kEntries) {
    if (entry.name == name) return std::pair(entry.value(*this, arguments), entry.type);
  }
  return std::nullopt;
}

}  // namespace sandbox
