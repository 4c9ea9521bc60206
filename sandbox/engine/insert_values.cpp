#include "sandbox/engine/insert_values.h"

#include <algorithm>

#include "sandbox/catalog/session.h"
#include "sandbox/engine/literal_binding.h"
#include "sandbox/parser/parser.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

Literal Evaluate(Session& session, const Expr& expr) {
  Binder binder(session);
  const TypeInfo type = binder.BindValue(expr, Scope()).type;
  Value value = session.Evaluate(expr);
  const bool null = value.index() == 0;
  return {std::move(value), type, null};
}

}  // namespace

InsertValues::InsertValues(Session& session, const InsertStatement& insert, const RowWriter& writer)
    : insert_(insert), columns_(insert.width) {
  auto column = columns_.begin();
  for (const InsertCell& cell : insert.cells) {
    if (const auto* literal = std::get_if<LiteralText>(&cell.value)) {
      if (!literal->IsNull()) column->kinds |= KindOf(*literal);
    } else if (const auto* expr = std::get_if<ExprPtr>(&cell.value)) {
      computed_[&cell] = Evaluate(session, **expr);
      column->kinds |= kOtherCell;
    }
    if (++column == columns_.end()) column = columns_.begin();
  }
  for (const InsertPlan::Slot& slot : writer.Plan().slots) {
    if (slot.source != InsertPlan::Source::Cell) continue;
    Column& target = columns_[slot.cell];
    target.as_written = TakesAsWritten(slot.column, target.kinds);
  }
}

const LiteralText* InsertValues::AsWritten(std::size_t cell) const {
  return columns_[cell].as_written ? std::get_if<LiteralText>(&At(row_, cell).value) : nullptr;
}

RowCells::Cell InsertValues::Get(std::size_t cell) {
  if (std::holds_alternative<std::monostate>(At(row_, cell).value)) return {};
  Literal literal = Read(row_, cell);
  Column& column = columns_[cell];
  if (!column.typed) {
    column.common = CommonTypeOf(cell);
    column.typed = true;
  }
  if (column.common && !literal.is_null) {
    column.value = Convert(literal.value, literal.type, *column.common);
    return {&column.value, *column.common};
  }
  column.value = std::move(literal.value);
  return {&column.value, literal.type};
}

Literal InsertValues::Read(std::size_t row, std::size_t column) const {
  const InsertCell& cell = At(row, column);
  if (const auto* literal = std::get_if<LiteralText>(&cell.value)) return ParseLiteral(*literal);
  return computed_.at(&cell);
}

// The type that the column's values are converted to; nothing when they stay what they are.
std::optional<TypeInfo> InsertValues::CommonTypeOf(std::size_t column) const {
  if (insert_.rows == 1 || HaveOneType(columns_[column].kinds)) return std::nullopt;
  std::optional<TypeInfo> common;
  bool differ = false;
  for (std::size_t row = 0; row < insert_.rows; ++row) {
    if (std::holds_alternative<std::monostate>(At(row, column).value)) continue;
    const Literal literal = Read(row, column);
    const TypeInfo& type = literal.type;
    if (literal.is_null) continue;
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
