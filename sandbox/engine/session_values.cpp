#include "sandbox/catalog/object_names.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

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

const Entry kEntries[] = {
    {"@@trancount", kInt, [](SqlSession& s, Args) { return Number(s.State().transaction_count); }},
    {"@@spid", kSmall, [](SqlSession& s, Args) { return Number(s.Spid()); }},
    {"db_name", kName, DatabaseName},
    {"schema_name", kName, Of<SchemaNameOf>},
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
