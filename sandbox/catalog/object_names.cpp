#include "sandbox/catalog/object_names.h"

#include "sandbox/catalog/session.h"
#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

namespace {

std::string Text(const std::vector<Value>& args, std::size_t i) {
  const auto* text = i < args.size() ? std::get_if<std::string>(&args[i]) : nullptr;
  return text ? *text : "";
}

bool KindMatches(const std::string& wanted, const char* kind) {
  return wanted.empty() || CompareText(wanted, kind) == 0;
}

// The id of a schema's object, if it is of the wanted kind ("": of any).
std::optional<int> IdIn(const Catalog& catalog, const std::string& schema, const std::string& name,
                        const std::string& kind) {
  const auto found = [&](const char* kind_of_object, int id) {
    return KindMatches(kind, kind_of_object) ? std::optional(id) : std::nullopt;
  };
  if (const TableDef* table = catalog.FindTable(schema, name)) return found("U", table->id);
  if (const ViewDef* view = catalog.FindView(schema, name)) return found("V", view->id);
  const ConstraintRef constraint = catalog.FindConstraint(schema, name);
  if (!constraint.table) return std::nullopt;
  switch (constraint.kind) {
    case ConstraintRef::Kind::Default:
      return found("D", constraint.table->Column(constraint.id).default_id);
    case ConstraintRef::Kind::Index: {
      const IndexDef* index = constraint.table->FindIndex(name);
      return found(index->primary ? "PK" : "UQ", index->object_id);
    }
    case ConstraintRef::Kind::ForeignKey:
      return found("F", constraint.id);
    case ConstraintRef::Kind::Check:
      return found("C", constraint.id);
  }
  return std::nullopt;
}

// The schema and name of an object by its id.
std::optional<ObjectName> FindObject(Session& session, const std::vector<Value>& args) {
  const auto* id = args.empty() ? nullptr : std::get_if<std::int64_t>(&args[0]);
  if (!id) return std::nullopt;
  for (const auto& [key, table] : session.Link().Definitions().tables) {
    if (key == *id) return ObjectName{"", table.schema, table.name};
    for (const IndexDef& index : table.indexes) {
      if (index.object_id == *id && index.IsConstraint())
        return ObjectName{"", table.schema, index.name};
    }
    for (const ForeignKeyDef& foreign : table.foreign_keys) {
      if (foreign.id == *id) return ObjectName{"", table.schema, foreign.name};
    }
  }
  for (const auto& [key, view] : session.Link().Definitions().views) {
    if (key == *id) return ObjectName{"", view.schema, view.name};
  }
  return std::nullopt;
}

}  // namespace

ObjectName ParsedName(const std::string& text) {
  try {
    Parser parser(text);
    return parser.ParseNameText();
  } catch (const SqlError&) {
    return {"", "", text};  // a name with blanks, given without brackets
  }
}

Value ObjectIdOf(Session& session, const std::vector<Value>& args) {
  const ObjectName parts = ParsedName(Text(args, 0));
  if (!parts.database.empty() && !session.Folder().Find(parts.database)) return {};
  DatabaseLink& link = session.LinkTo(parts.database);
  for (const std::string& schema : link.SearchPath(parts)) {
    const auto id = IdIn(link.Definitions(), schema, parts.name, Text(args, 1));
    if (id) return std::int64_t{*id};
  }
  return {};
}

Value ObjectNameOf(Session& session, const std::vector<Value>& args) {
  const auto object = FindObject(session, args);
  return object ? Value(object->name) : Value();
}

Value ObjectSchemaNameOf(Session& session, const std::vector<Value>& args) {
  const auto object = FindObject(session, args);
  return object ? Value(object->schema) : Value();
}

Value SchemaNameOf(Session& session, const std::vector<Value>& args) {
  if (args.empty()) return session.Link().User().default_schema;
  const auto* id = std::get_if<std::int64_t>(&args[0]);
  for (const SchemaDef& schema : session.Link().Definitions().schemas) {
    if (id && schema.id == *id) return schema.name;
  }
  return {};
}

}  // namespace sandbox
