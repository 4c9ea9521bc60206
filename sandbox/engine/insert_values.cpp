#include "sandbox/engine/insert_values.h"

#include <algorithm>

#include "sandbox/catalog/session.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

Literal Evaluate(Session& session, const Expr& expr) {
  Binder binder(session);
  const TypeInfo type = binder.BindValue(expr, Scope()).type;
  Value value = session.Evaluate(expr);
  const bool null = IsNull(value);
  return {std::move(value), type, null};
}

}  // namespace

InsertValues::InsertValues(Session& session, const InsertStatement& insert)
    : insert_(insert), columns_(insert.width) {
  for (const ExprPtr& cell : insert.cells) {
    const bool computed = cell && cell->kind != ExprKind::Literal;
    if (computed) computed_.emplace(cell.get(), Evaluate(session, *cell));
  }
  if (insert.rows == 1) return;
  for (std::size_t i = 0; i < columns_.size(); ++i) columns_[i].common = CommonTypeOf(i);
}

RowCells::Cell InsertValues::Get(std::size_t cell) {
  const Expr* expr = At(row_, cell);
  if (!expr) return {};
  const Literal& literal = ValueOf(*expr);
  Column& column = columns_[cell];
  if (!column.common || literal.is_null) return {&literal.value, literal.type};
  column.converted = Convert(literal.value, literal.type, *column.common);
  return {&column.converted, *column.common};
}

const Literal& InsertValues::ValueOf(const Expr& cell) const {
  return cell.kind == ExprKind::Literal ? cell.literal : computed_.at(&cell);
}

// The type that the column's values are converted to; nothing when they stay what they are.
std::optional<TypeInfo> InsertValues::CommonTypeOf(std::size_t column) const {
  std::optional<TypeInfo> common;
  bool differ = false;
  for (std::size_t row = 0; row < insert_.rows; ++row) {
    const Expr* cell = At(row, column);
    if (!cell || ValueOf(*cell).is_null) continue;
    const TypeInfo& type = ValueOf(*cell).type;
    if (!common) {
      common = type;
      continue;
    }
    if (common->type == type.type && common->scale == type.scale) {
      const bool unlimited = common->length < 0 || type.length < 0;
      common->length = unlimited ? -1 : std::max(common->length, type.length);
      common->precision = std::max(common->precision, type.precision);
      continue;
    }
    common = CommonType(*common, type);
    // Text of several lengths is of one kind; it needs no conversion.
    if (!IsText(common->type) || !IsText(type.type)) differ = true;
  }
  return differ ? common : std::nullopt;
}

}  // namespace sandbox
