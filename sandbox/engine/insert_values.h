#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "sandbox/engine/insert_plan.h"

namespace sandbox {

/// The rows of a VALUES list, with each column's values brought to one type where the rows differ,
/// as the server does before it looks at the table.
class InsertValues final : public RowCells {
 public:
  /// Evaluates the expressions. The statement must outlive this.
  InsertValues(Session& session, const InsertStatement& insert);

  void Select(std::size_t row) override { row_ = row; }
  Cell Get(std::size_t cell) override;

 private:
  struct Column {
    std::optional<TypeInfo> common;  // what the values are converted to, if they are
    Value converted;                 // of the row that is written
  };

  const Expr* At(std::size_t row, std::size_t column) const {
    return insert_.cells[row * insert_.width + column].get();
  }
  const Literal& ValueOf(const Expr& cell) const;
  std::optional<TypeInfo> CommonTypeOf(std::size_t column) const;

  const InsertStatement& insert_;
  std::vector<Column> columns_;
  std::unordered_map<const Expr*, Literal> computed_;  // what is more than a literal
  std::size_t row_ = 0;
};

}  // namespace sandbox
