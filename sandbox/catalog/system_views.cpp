#include "sandbox/catalog/system_views.h"

#include "sandbox/catalog/session.h"
#include "sandbox/storage/collations.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

const std::vector<SystemView>& Views() {
  static const std::vector<SystemView> kViews = [] {
    std::vector<SystemView> views = InformationSchemaViews();
    for (const auto& group :
         {SysObjectViews(), SysColumnViews(), SysKeyViews(), SysServerViews()}) {
      views.insert(views.end(), group.begin(), group.end());
    }
    return views;
  }();
  return kViews;
}

// The oldest catalog tables (sysobjects) are known without a schema, or under dbo.
bool SchemaMatches(const SystemView& view, const ObjectName& name) {
  if (SameName(view.schema, name.schema)) return true;
  const bool old = std::string_view(view.name).substr(0, 3) == "sys";
  return old && (name.schema.empty() || SameName(name.schema, "dbo"));
}

}  // namespace

std::optional<std::size_t> FindSystemView(const ObjectName& name) {
  const auto& views = Views();
  for (std::size_t i = 0; i < views.size(); ++i) {
    if (SameName(views[i].name, name.name) && SchemaMatches(views[i], name)) return i;
  }
  return std::nullopt;
}

std::vector<ObjectName> SystemViewNames() {
  std::vector<ObjectName> names;
  for (const SystemView& view : Views()) names.push_back({"", view.schema, view.name});
  return names;
}

Relation FillSystemView(std::size_t position, Session& session, DatabaseLink& link) {
  const SystemView& view = Views()[position];
  SqliteConnection& connection = session.Link().Connection();
  // Each database's rows have a table of their own, so that a query may join two of them.
  const std::string table = fmt::format("temp.view{}_{}", position, link.State().id);
  Relation relation;
  relation.stored = table;
  std::string columns, marks;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    const ColumnInfo& column = view.columns[i];
    const std::string stored = fmt::format("c{}", i + 1);
    columns += (i ? ", " : "") + stored +
               (IsText(column.type.type) ? std::string(" COLLATE ") + kTextCollation : "");
    marks += i ? ",?" : "?";
    relation.columns.push_back({column.name, column.type, true, false, stored});
  }
  connection.Execute("CREATE TABLE IF NOT EXISTS " + table + "(" + columns + "); DELETE FROM " +
                     table);
  SqliteStatement insert = connection.Prepare("INSERT INTO " + table + " VALUES(" + marks + ")");
  for (const auto& row : view.rows(session, link)) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      BindValue(insert.get(), static_cast<int>(i) + 1, row[i], view.columns[i].type);
    }
    insert.Run();
  }
  return relation;
}

}  // namespace sandbox
