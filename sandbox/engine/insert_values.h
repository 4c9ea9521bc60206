#pragma once

#include <map>
#include <optional>
#include <vector>

#include "sandbox/engine/insert_plan.h"

namespace sandbox {

/// The rows of a VALUES list, with each column's values brought to one type where the rows differ,
/// as the server does before it looks at the table. Literals that a column takes as they are
/// written go there without that.
class InsertValues final : public RowCells {
 public:
  /// Evaluates the expressions. The statement, and the text it was read from, must outlive this.
  InsertValues(Session& session, const InsertStatement& insert, const RowWriter& writer);

  void Select(std::size_t row) override { row_ = row; }
  const LiteralText* AsWritten(std::size_t cell) const override;
  Cell Get(std::size_t cell) override;

 private:
  struct Column {
    unsigned kinds = 0;
    bool as_written = false;
    bool typed = false;              // whether `common` has been worked out
    std::optional<TypeInfo> common;  // what the values are converted to, if they are
    Value value;                     // of the row that is written
  };

  const InsertCell& At(std::size_t row, std::size_t column) const {
    return insert_.cells[row * insert_.width + column];
  }
  Literal Read(std::size_t row, std::size_t column) const;
  std::optional<TypeInfo> CommonTypeOf(std::size_t column) const;

  const InsertStatement& insert_;
  std::vector<Column> columns_;
  std::map<const InsertCell*, Literal> computed_;
  std::size_t row_ = 0;
};

}  // namespace sandbox
