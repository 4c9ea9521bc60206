// Texts that are kept with tables and their columns, such as MS_Description.

#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

/// What the arguments name: a table, or a column of it.
struct Place {
  const TableDef* table = nullptr;
  int column_id = 0;
  std::string text;  // for messages
};

/// Nothing for an object that is neither: its texts are not kept.
std::optional<Place> PlaceOf(Session& session, const Arguments& args) {
  const auto is = [&](std::size_t i, std::string_view word) {
    return SameName(args.Text(i).value_or(""), word);
  };
  const bool has_column = args.Text(6).has_value();
  if (!is(4, "table") || (has_column && !is(6, "column"))) return std::nullopt;
  Place place{.table = FindArgument(session, args, 5, 3),
              .text = args.Text(3).value_or("") + "." + args.Text(5).value_or("")};
  const ColumnDef* column = nullptr;
  if (has_column) {
    place.text += "." + args.Text(7).value_or("");
    if (place.table) column = place.table->FindColumn(args.Text(7).value_or(""));
    if (column) place.column_id = column->id;
  }
  if (!place.table || (has_column && !column)) Raise(15135, place.text);
  return place;
}

int Add(Session& session, const Arguments& args) {
  const auto place = PlaceOf(session, args);
  if (!place) return 0;
  const std::string name = args.Text(0).value_or("");
  session.Link().BeginWrite();
  TableDef table = *place->table;
  for (const PropertyDef& each : table.properties) {
    if (each.column_id == place->column_id && SameName(each.name, name))
      Raise(15233, name, place->text);
  }
  table.properties.push_back({place->column_id, name, args.Text(1).value_or("")});
  session.Link().Store(std::move(table));
  return 0;
}

}  // namespace

std::span<const Procedure> PropertyProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_addextendedproperty",
       {"@name", "@value", "@level0type", "@level0name", "@level1type", "@level1name",
        "@level2type", "@level2name"},
       Add}};
  return kProcedures;
}

}  // namespace sandbox
