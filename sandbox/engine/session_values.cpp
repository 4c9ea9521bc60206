#include <array>

#include "sandbox/catalog/object_names.h"
#include "sandbox/catalog/system_views.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

constexpr const char* kVersion =
    "Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64) \n\tPractice server of Dorvane";

using Result = std::pair<Value, TypeInfo>;

Result Text(std::string text) {
  return {std::move(text), NVarChar(128)};
}
Result Integer(std::int64_t number) {
  return {number, IntType()};
}
Result Null(const TypeInfo& type) {
  return {Value(), type};
}

struct ServerProperty {
  const char* name;
  const char* value;
};
constexpr std::array kServerProperties{
    ServerProperty{"productversion", "15.0.2000.5"},
    ServerProperty{"productlevel", "RTM"},
    ServerProperty{"edition", "Developer Edition (64-bit)"},
    ServerProperty{"servername", "SANDBOX"},
    ServerProperty{"machinename", "SANDBOX"},
    ServerProperty{"collation", "SQL_Latin1_General_CP1_CI_AS"},
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

}  // namespace

const Variable* SqlSession::FindVariable(std::string_view name) const {
  const auto found = variables_.find(name);
  return found == variables_.end() ? nullptr : &found->second;
}

Relation SqlSession::FindRelation(const ObjectName& name) {
  DatabaseLink& link = LinkTo(name.database);
  const auto view = FindSystemView(name);
  if (view && traits_.Knows(name.schema + "." + name.name))
    return FillSystemView(*view, *this, link);
  const bool other = &link != link_;
  Relation relation;
  for (const std::string& schema : link.SearchPath(name)) {
    relation.table = link.Definitions().FindTable(schema, name.name);
    relation.view = link.Definitions().FindView(schema, name.name);
    if (relation.table || relation.view) break;
  }
  if (!relation.table && !relation.view) Raise(208, name.Text());
  if (!relation.table) return relation;
  std::string schema = "main";
  if (other) {
    schema = fmt::format("db{}", link.State().id);
    const bool attached = sqlite3_db_filename(link_->Connection().get(), schema.c_str()) != nullptr;
    if (!attached) {
      link_->Connection().Execute("ATTACH '" + link.State().file.string() + "' AS " + schema);
    }
  }
  relation.stored = schema + "." + relation.table->StoredName();
  return relation;
}

std::optional<Result> SqlSession::SessionValue(std::string_view name,
                                               const std::vector<Value>& arguments) {
  struct Entry {
    std::string_view name;
    Result (*value)(SqlSession&, const std::vector<Value>&);
  };
  using Args = const std::vector<Value>&;
  static constexpr std::array kEntries{
      Entry{"@@version",
            [](SqlSession&, Args) {
              return Result{std::string(kVersion), NVarChar(300)};
            }},
      Entry{"@@rowcount", [](SqlSession& s, Args) { return Integer(s.row_count_); }},
      Entry{"rowcount_big",
            [](SqlSession& s, Args) {
              return Result{s.row_count_, BigIntType()};
            }},
      Entry{"@@error", [](SqlSession& s, Args) { return Integer(s.last_error_); }},
      Entry{"@@trancount", [](SqlSession& s, Args) { return Integer(s.transaction_count_); }},
      Entry{"@@spid",
            [](SqlSession& s, Args) {
              return Result{std::int64_t{s.spid_}, SmallIntType()};
            }},
      Entry{"@@servername", [](SqlSession&, Args) { return Text("SANDBOX"); }},
      Entry{"@@servicename", [](SqlSession&, Args) { return Text("MSSQLSERVER"); }},
      Entry{"@@language", [](SqlSession&, Args) { return Text("us_english"); }},
      Entry{"@@microsoftversion", [](SqlSession&, Args) { return Integer(0x0F0007D0); }},
      Entry{"@@options", [](SqlSession&, Args) { return Integer(5496); }},
      Entry{"@@max_precision",
            [](SqlSession&, Args) {
              return Result{std::int64_t{38}, TinyIntType()};
            }},
      Entry{"@@textsize", [](SqlSession& s, Args) { return Integer(s.options_.text_size); }},
      Entry{"@@datefirst",
            [](SqlSession&, Args) {
              return Result{std::int64_t{7}, TinyIntType()};
            }},
      Entry{"@@lock_timeout", [](SqlSession&, Args) { return Integer(-1); }},
      Entry{"@@nestlevel", [](SqlSession& s, Args) { return Integer(s.nesting_ - 1); }},
      Entry{"@@fetch_status", [](SqlSession&, Args) { return Integer(-1); }},
      Entry{"xact_state",
            [](SqlSession& s, Args) {
              return Result{std::int64_t{s.transaction_count_ > 0}, SmallIntType()};
            }},
      Entry{"@@identity",
            [](SqlSession& s, Args) {
              return Result{
                  s.scope_identity_ ? Value(DecimalValue{*s.scope_identity_, 0}) : Value(),
                  DecimalType(38, 0)};
            }},
      Entry{"scope_identity",
            [](SqlSession& s, Args) {
              return Result{
                  s.scope_identity_ ? Value(DecimalValue{*s.scope_identity_, 0}) : Value(),
                  DecimalType(38, 0)};
            }},
      Entry{"ident_current",
            [](SqlSession& s, Args args) {
              const TableDef* table = s.link_->FindTable(ParsedName(TextArgument(args, 0)));
              if (!table || !table->IdentityColumn()) return Null(DecimalType(38, 0));
              const std::int64_t last =
                  s.link_->LastIdentity(*table).value_or(table->IdentityColumn()->seed);
              return Result{DecimalValue{last, 0}, DecimalType(38, 0)};
            }},
      Entry{"db_name",
            [](SqlSession& s, Args args) {
              if (args.empty()) return Text(s.Database());
              for (const auto& database : s.folder_.All()) {
                if (IsNumber(args[0], database->id)) return Text(database->name);
              }
              return Null(NVarChar(128));
            }},
      Entry{"db_id",
            [](SqlSession& s, Args args) {
              if (args.empty()) return Result{std::int64_t{s.link_->State().id}, SmallIntType()};
              const auto database = s.folder_.Find(TextArgument(args, 0));
              return database ? Result{std::int64_t{database->id}, SmallIntType()}
                              : Null(SmallIntType());
            }},
      Entry{"user_name", [](SqlSession& s, Args) { return Text(s.link_->User().name); }},
      Entry{"user", [](SqlSession& s, Args) { return Text(s.link_->User().name); }},
      Entry{"current_user", [](SqlSession& s, Args) { return Text(s.link_->User().name); }},
      Entry{"session_user", [](SqlSession& s, Args) { return Text(s.link_->User().name); }},
      Entry{"schema_name", [](SqlSession& s, Args args) { return SchemaNameOf(s, args); }},
      Entry{"schema_id", [](SqlSession& s, Args args) { return SchemaIdOf(s, args); }},
      Entry{"user_id", [](SqlSession& s, Args) { return Integer(s.link_->User().id); }},
      Entry{"suser_sname", [](SqlSession& s, Args) { return Text(s.login_); }},
      Entry{"suser_name", [](SqlSession& s, Args) { return Text(s.login_); }},
      Entry{"system_user", [](SqlSession& s, Args) { return Text(s.login_); }},
      Entry{"original_login", [](SqlSession& s, Args) { return Text(s.login_); }},
      Entry{"host_name", [](SqlSession&, Args) { return Text("localhost"); }},
      Entry{"app_name", [](SqlSession&, Args) { return Text(""); }},
      Entry{"has_perms_by_name", [](SqlSession&, Args) { return Integer(1); }},
      Entry{"is_srvrolemember", [](SqlSession&, Args) { return Integer(1); }},
      Entry{"is_member", [](SqlSession&, Args) { return Integer(1); }},
      Entry{"has_dbaccess", [](SqlSession&, Args) { return Integer(1); }},
      Entry{"object_id",
            [](SqlSession& s, Args args) {
              return ObjectIdOf(s, TextArgument(args, 0), TextArgument(args, 1));
            }},
      Entry{"object_name", [](SqlSession& s, Args args) { return ObjectNameOf(s, args); }},
      Entry{"object_schema_name",
            [](SqlSession& s, Args args) { return ObjectSchemaNameOf(s, args); }},
      Entry{"col_name", [](SqlSession& s, Args args) { return ColumnNameOf(s, args); }},
      Entry{"type_name",
            [](SqlSession&, Args args) {
              for (int i = 0; !args.empty() && i <= static_cast<int>(SqlType::Variant); ++i) {
                const TypeFacts& facts = Facts(static_cast<SqlType>(i));
                if (IsNumber(args[0], facts.system_type_id)) return Text(facts.name);
              }
              return Null(NVarChar(128));
            }},
      Entry{"columnproperty", [](SqlSession& s, Args args) { return ColumnPropertyOf(s, args); }},
      Entry{"objectproperty", [](SqlSession& s, Args args) { return ObjectPropertyOf(s, args); }},
      Entry{"collationproperty",
            [](SqlSession&, Args args) {
              return SameName(TextArgument(args, 1), "codepage") && !TextArgument(args, 0).empty()
                         ? Integer(1252)
                         : Null(IntType());
            }},
      Entry{"databasepropertyex",
            [](SqlSession&, Args args) {
              return SameName(TextArgument(args, 1), "collation")
                         ? Text("SQL_Latin1_General_CP1_CI_AS")
                         : Text("ONLINE");
            }},
      Entry{"serverproperty",
            [](SqlSession&, Args args) {
              for (const ServerProperty& property : kServerProperties) {
                if (SameName(property.name, TextArgument(args, 0))) return Text(property.value);
              }
              if (SameName(TextArgument(args, 0), "engineedition")) return Integer(3);
              if (SameName(TextArgument(args, 0), "isintegratedsecurityonly")) return Integer(0);
              return Null(NVarChar(128));
            }},
      Entry{"error_number",
            [](SqlSession& s, Args) {
              return s.caught_ ? Integer(s.caught_->number) : Null(IntType());
            }},
      Entry{"error_severity",
            [](SqlSession& s, Args) {
              return s.caught_ ? Integer(s.caught_->severity) : Null(IntType());
            }},
      Entry{"error_state",
            [](SqlSession& s, Args) {
              return s.caught_ ? Integer(s.caught_->state) : Null(IntType());
            }},
      Entry{"error_line",
            [](SqlSession& s, Args) {
              return s.caught_ ? Integer(s.caught_->line) : Null(IntType());
            }},
      Entry{"error_procedure", [](SqlSession&, Args) { return Null(NVarChar(128)); }},
      Entry{"error_message",
            [](SqlSession& s, Args) {
              return s.caught_ ? Result{s.caught_->text, NVarChar(4000)} : Null(NVarChar(4000));
            }},
  };
  for (const Entry& entry : kEntries) {
    if (entry.name == name) return entry.value(*this, arguments);
  }
  return std::nullopt;
}

}  // namespace sandbox
