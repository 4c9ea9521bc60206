#include "sandbox/catalog/procedures/procedure.h"

#include <algorithm>

#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

int CompareValues(const Value& a, const Value& b) {
  const auto* x = std::get_if<std::string>(&a);
  const auto* y = std::get_if<std::string>(&b);
  if (x && y) return CompareText(*x, *y);
  if (a.index() != b.index()) return a.index() < b.index() ? -1 : 1;
  const auto* i = std::get_if<std::int64_t>(&a);
  const auto* j = std::get_if<std::int64_t>(&b);
  if (i && j) return *i < *j ? -1 : *i > *j ? 1 : 0;
  return 0;
}

}  // namespace

std::optional<std::string> Arguments::Text(std::size_t i) const {
  if (!values_[i] || IsNull(values_[i]->value)) return std::nullopt;
  std::string text = ValueText(values_[i]->value, values_[i]->type);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::int64_t Arguments::Integer(std::size_t i, std::int64_t when_missing) const {
  if (!values_[i] || IsNull(values_[i]->value)) return when_missing;
  return std::get<std::int64_t>(Convert(values_[i]->value, values_[i]->type, BigIntType()));
}

const Procedure* FindProcedure(std::string_view name) {
  for (const auto group : {CatalogProcedures(), KeyProcedures(), HelpProcedures(),
                           ServerProcedures(), IdleProcedures(), PropertyProcedures()}) {
    for (const Procedure& procedure : group) {
      if (SameName(procedure.name, name)) return &procedure;
    }
  }
  return nullptr;
}

const TableDef* FindArgument(Session& session, const Arguments& arguments, std::size_t name,
                             std::size_t owner) {
  const std::string schema = arguments.Text(owner).value_or("");
  return session.Link().FindTable(
      {"", schema == "%" ? "" : schema, arguments.Text(name).value_or("")});
}

void SortRows(sys::Rows& rows, std::initializer_list<std::size_t> columns) {
  std::ranges::stable_sort(rows, [&](const auto& a, const auto& b) {
    for (const std::size_t column : columns) {
      if (const int order = CompareValues(a[column], b[column])) return order < 0;
    }
    return false;
  });
}

}  // namespace sandbox
