#include "sandbox/sql/object_names.h"

#include "sandbox/sql/parser.h"
#include "sandbox/sql/session.h"
#include "sandbox/sql/type_rules.h"
#include "sandbox/storage/text_order.h"

namespace sandbox {
namespace {

using Result = std::pair<Value, TypeInfo>;

const TableDef* TableById(Session& session, const std::vector<Value>& args) {
  const auto* id = args.empty() ? nullptr : std::get_if<std::int64_t>(&args[0]);
  if (!id) return nullptr;
  const auto& tables = session.Link().Definitions().tables;
  const auto found = tables.find(static_cast<int>(*id));
  return found == tables.end() ? nullptr : &found->second;
}

std::string Text(const std::vector<Value>& args, std::size_t i) {
  const auto* text = i < args.size() ? std::get_if<std::string>(&args[i]) : nullptr;
  return text ? *text : "";
}

bool KindMatches(const std::string& wanted, const char* kind) {
  return wanted.empty() || CompareText(wanted, kind) == 0;
}

}  // namespace

std::string LastNamePart(const std::string& text) {
  try {
    Parser parser(text);
    return parser.ParseNameText().name;
  } catch (const SqlError&) {
    return text;  // a name with blanks, given without brackets
  }
}

Result ObjectIdOf(Session& session, const std::string& name, const std::string& kind) {
  const Result none{Value(), IntType()};
  ObjectName parts;
  try {
    Parser parser(name);
    parts = parser.ParseNameText();
  } catch (const SqlError&) {
    parts.name = name;
  }
  if (!parts.schema.empty() && !SameName(parts.schema, "dbo")) return none;
  if (!parts.database.empty() && !session.Folder().Find(parts.database)) return none;
  const Catalog& catalog = session.LinkTo(parts.database).Definitions();
  const auto found = [](int id) { return Result{std::int64_t{id}, IntType()}; };
  const TableDef* table = catalog.FindTable(parts.name);
  if (table && KindMatches(kind, "U")) return found(table->id);
  const ViewDef* view = catalog.FindView(parts.name);
  if (view && KindMatches(kind, "V")) return found(view->id);
  const ConstraintRef constraint = catalog.FindConstraint(parts.name);
  if (!constraint.table) return none;
  switch (constraint.kind) {
    case ConstraintRef::Kind::Default:
      return KindMatches(kind, "D") ? found(constraint.table->Column(constraint.id).default_id)
                                    : none;
    case ConstraintRef::Kind::Index: {
      const IndexDef* index = constraint.table->FindIndex(parts.name);
      return KindMatches(kind, index->primary ? "PK" : "UQ") ? found(index->object_id) : none;
    }
    case ConstraintRef::Kind::ForeignKey:
      return KindMatches(kind, "F") ? found(constraint.id) : none;
    case ConstraintRef::Kind::Check:
      return KindMatches(kind, "C") ? found(constraint.id) : none;
  }
  return none;
}

Result ObjectNameOf(Session& session, const std::vector<Value>& args) {
  if (const TableDef* table = TableById(session, args)) return {table->name, NVarChar(128)};
  const auto* id = args.empty() ? nullptr : std::get_if<std::int64_t>(&args[0]);
  for (const auto& [key, table] : session.Link().Definitions().tables) {
    for (const IndexDef& index : table.indexes) {
      if (id && index.object_id == *id && index.IsConstraint()) return {index.name, NVarChar(128)};
    }
    for (const ForeignKeyDef& key_def : table.foreign_keys) {
      if (id && key_def.id == *id) return {key_def.name, NVarChar(128)};
    }
  }
  return {Value(), NVarChar(128)};
}

Result ColumnNameOf(Session& session, const std::vector<Value>& args) {
  const TableDef* table = TableById(session, args);
  const auto* id = args.size() < 2 ? nullptr : std::get_if<std::int64_t>(&args[1]);
  if (table && id) {
    for (const ColumnDef& column : table->columns) {
      if (column.id == *id) return {column.name, NVarChar(128)};
    }
  }
  return {Value(), NVarChar(128)};
}

Result ColumnPropertyOf(Session& session, const std::vector<Value>& args) {
  const TableDef* table = TableById(session, args);
  const ColumnDef* column = table ? table->FindColumn(Text(args, 1)) : nullptr;
  const std::string property = LowerText(Text(args, 2));
  const auto number = [](std::int64_t value) { return Result{value, IntType()}; };
  if (!column) return {Value(), IntType()};
  if (property == "isidentity") return number(column->identity);
  if (property == "allowsnull") return number(column->nullable);
  if (property == "iscomputed") return number(0);
  if (property == "columnid") return number(column->id);
  if (property == "precision") return number(column->type.precision);
  if (property == "scale") return number(column->type.scale);
  return {Value(), IntType()};
}

Result ObjectPropertyOf(Session& session, const std::vector<Value>& args) {
  const TableDef* table = TableById(session, args);
  const std::string property = LowerText(Text(args, 1));
  if (!table) return {Value(), IntType()};
  const auto number = [](std::int64_t value) { return Result{value, IntType()}; };
  if (property == "isusertable" || property == "istable") return number(1);
  if (property == "tablehasidentity") return number(table->IdentityColumn() != nullptr);
  if (property == "tablehasprimarykey") return number(table->PrimaryKey() != nullptr);
  return number(0);
}

}  // namespace sandbox
