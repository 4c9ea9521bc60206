#include "sandbox/sql/convert.h"
#include "sandbox/sql/definitions.h"
#include "sandbox/sql/insert_plan.h"
#include "sandbox/sql/session.h"
#include "sandbox/sql/type_rules.h"

namespace sandbox {
namespace {

// The values of an INSERT, cell by cell, with each column's values brought to one type where the
// rows differ, as the server does before it looks at the table.
class ValueRows {
 public:
  ValueRows(Session& session, const InsertStatement& insert)
      : insert_(insert), types_(insert.width), unified_(insert.width, false) {
    computed_.resize(insert.cells.size());
    for (std::size_t i = 0; i < insert.cells.size(); ++i) {
      if (const auto* expr = std::get_if<ExprPtr>(&insert.cells[i].value))
        Compute(session, i, **expr);
    }
    if (insert.rows > 1) Unify();
  }

  void Write(RowWriter& writer) {
    std::vector<const Value*> values(insert_.width);
    std::vector<TypeInfo> types(insert_.width);
    std::vector<Value> converted(insert_.width);
    for (std::size_t row = 0; row < insert_.rows; ++row) {
      for (std::size_t i = 0; i < insert_.width; ++i) {
        const Literal* literal = At(row * insert_.width + i);
        values[i] = literal ? &literal->value : nullptr;
        if (!literal) continue;
        types[i] = literal->type;
        if (!unified_[i] || literal->is_null) continue;
        converted[i] = Convert(literal->value, literal->type, types_[i]);
        values[i] = &converted[i];
        types[i] = types_[i];
      }
      writer.Write(values, types);
    }
  }

 private:
  // Null for DEFAULT.
  const Literal* At(std::size_t cell) const {
    if (computed_[cell]) return &*computed_[cell];
    return std::get_if<Literal>(&insert_.cells[cell].value);
  }

  void Compute(Session& session, std::size_t cell, const Expr& expr) {
    Binder binder(session);
    const TypeInfo type = binder.BindValue(expr, Scope()).type;
    Value value = session.Evaluate(expr);
    const bool null = value.index() == 0;
    computed_[cell] = Literal{std::move(value), type, null};
  }

  void Unify() {
    std::vector<bool> known(insert_.width, false);
    for (std::size_t cell = 0; cell < insert_.cells.size(); ++cell) {
      const Literal* literal = At(cell);
      const std::size_t column = cell % insert_.width;
      if (!literal || literal->is_null) continue;
      if (!known[column]) {
        known[column] = true;
        types_[column] = literal->type;
        continue;
      }
      if (types_[column].type == literal->type.type &&
          types_[column].scale == literal->type.scale) {
        types_[column].length = types_[column].length < 0 || literal->type.length < 0
                                    ? -1
                                    : std::max(types_[column].length, literal->type.length);
        types_[column].precision = std::max(types_[column].precision, literal->type.precision);
        continue;
      }
      types_[column] = CommonType(types_[column], literal->type);
      // Text of several lengths is of one kind; it needs no conversion.
      if (!IsText(types_[column].type) || !IsText(literal->type.type)) unified_[column] = true;
    }
  }

  const InsertStatement& insert_;
  std::vector<std::optional<Literal>> computed_;
  std::vector<TypeInfo> types_;
  std::vector<bool> unified_;
};

// Keeps the rows of an executed procedure to insert them.
class CollectingSink final : public ResultSink {
 public:
  explicit CollectingSink(ResultSink& outer) : outer_(outer) {}
  void Columns(const std::vector<ColumnInfo>& columns) override {
    types.clear();
    for (const ColumnInfo& column : columns) types.push_back(column.type);
  }
  void Row(std::span<const Value> values) override {
    rows.emplace_back(values.begin(), values.end());
  }
  void Done(std::optional<std::int64_t>) override {}
  void Message(const ServerMessage& message) override { outer_.Message(message); }
  void DatabaseChanged(std::string_view database) override { outer_.DatabaseChanged(database); }
  void TransactionChanged(std::uint64_t id, bool committed) override {
    outer_.TransactionChanged(id, committed);
  }
  void ReturnStatus(std::int32_t) override {}

  std::vector<TypeInfo> types;
  std::vector<std::vector<Value>> rows;

 private:
  ResultSink& outer_;
};

void CheckWidth(const InsertStatement& insert, const RowWriter& writer) {
  if (insert.width == writer.Width()) return;
  if (insert.columns.empty()) Raise(213);
  Raise(insert.width < writer.Width() ? 109 : 110);
}

}  // namespace

Flow Session::Run(const InsertStatement& insert) {
  DatabaseLink& link = LinkTo(insert.table.database);
  std::optional<CollectingSink> collected;
  if (insert.execute) {
    collected.emplace(*sink_);
    ResultSink* outer = std::exchange(sink_, &*collected);
    try {
      RunStatement(*insert.execute);
    } catch (...) {
      sink_ = outer;
      throw;
    }
    sink_ = outer;
  }
  link.BeginWrite();
  const TableDef& table = TargetTable(link, insert.table, 208);
  const bool explicit_identity = table.IdentityColumn() && identity_insert_ &&
                                 *identity_insert_ == std::pair(&link.State(), table.id);
  const auto identity =
      explicit_identity ? RowWriter::Identity::Explicit : RowWriter::Identity::Generated;
  if (explicit_identity && insert.columns.empty() && !insert.default_values)
    Raise(8101, table.name);
  if (!explicit_identity && insert.columns.empty() && insert.width == table.columns.size() &&
      table.IdentityColumn() && insert.rows > 0) {
    Raise(8101, table.name);
  }
  RowWriter writer(*this, link, table, insert.columns, identity);
  if (!insert.query && !insert.execute && !insert.default_values) CheckWidth(insert, writer);
  // One row that nothing looks at afterwards fails whole by itself.
  const bool simple = insert.rows == 1 && !writer.Plan().verifies;
  std::optional<StatementScope> scope;
  if (!simple) scope.emplace(link);
  auto rows = static_cast<std::int64_t>(insert.rows);
  if (insert.default_values) {
    writer.WriteDefaults();
  } else if (insert.query) {
    Binder binder(*this);
    rows = writer.WriteQuery(binder.BindQuery(*insert.query), binder);
  } else if (collected) {
    rows = static_cast<std::int64_t>(collected->rows.size());
    for (const auto& row : collected->rows) {
      if (row.size() != writer.Width()) Raise(213);
      std::vector<const Value*> cells;
      for (const Value& value : row) cells.push_back(&value);
      writer.Write(cells, collected->types);
    }
  } else {
    ValueRows(*this, insert).Write(writer);
  }
  writer.Finish();
  if (scope) scope->Keep();
  Done(rows);
  return Flow::Next;
}

}  // namespace sandbox
