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

Value ServerProperty(SqlSession&, Args args) {
  if (!SameName(TextArgument(args, 0), "productversion")) return {};
  return std::string("15.0.2000.5");
}

template <Value (*function)(Session&, Args)>
Value Of(SqlSession& s, Args args) {
  return function(s, args);
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
const TypeInfo kIdentity = DecimalType(38, 0);

const Entry kEntries[] = {
    {"@@version", NVarChar(300), [](SqlSession&, Args) { return Value(std::string(kVersion)); }},
    {"@@rowcount", kInt, [](SqlSession& s, Args) { return Value(s.State().row_count); }},
    {"@@error", kInt, [](SqlSession& s, Args) { return Number(s.State().last_error); }},
    {"@@trancount", kInt, [](SqlSession& s, Args) { return Number(s.State().transaction_count); }},
    {"@@spid", kSmall, [](SqlSession& s, Args) { return Number(s.Spid()); }},
    {"@@identity", kIdentity, ScopeIdentity},
    {"scope_identity", kIdentity, ScopeIdentity},
    {"db_name", kName, DatabaseName},
    {"db_id", kSmall, DatabaseId},
    {"user_name", kName, UserName},
    {"user", kName, UserName},
    {"current_user", kName, UserName},
    {"session_user", kName, UserName},
    {"schema_name", kName, Of<SchemaNameOf>},
    {"suser_sname", kName, LoginName},
    {"system_user", kName, LoginName},
    {"has_perms_by_name", kInt, Yes},
    {"object_id", kInt, Of<ObjectIdOf>},
    {"object_name", kName, Of<ObjectNameOf>},
    {"object_schema_name", kName, Of<ObjectSchemaNameOf>},
    {"type_name", kName, NameOfType},
    {"collationproperty", kInt, CollationProperty},
    {"serverproperty", kName, ServerProperty},
};

}  // namespace

std::optional<std::pair<Value, TypeInfo>> SqlSession::SessionValue(std::string_view name,
                                                                   Args arguments) {
  for (const Entry& entry : kEntries) {
    if (entry.name != name) continue;
    Value value = entry.value(*this, arguments);
    return std::pair(std::move(value), entry.type);
  }
  return std::nullopt;
}

}  // namespace sandbox
