#include <algorithm>

#include "sandbox/engine/definitions.h"
#include "sandbox/engine/insert_plan.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/parser/parser.h"

namespace sandbox {

namespace {

// Rows that are written together.
class BulkRows final : public RowCells {
 public:
  BulkRows(std::vector<TypeInfo> types, std::vector<bool> defaults)
      : types_(std::move(types)), defaults_(std::move(defaults)) {}

  bool IsFull() const { return count_ == RowWriter::kBlockRows; }
  std::size_t Count() const { return count_; }
  void Clear() { count_ = 0; }
  void Add(std::span<const Value> row) {
    if (count_ == rows_.size()) rows_.emplace_back();
    rows_[count_++].assign(row.begin(), row.end());
  }

  void Select(std::size_t row) override { row_ = row; }
  Cell Get(std::size_t cell) override {
    const Value& value = rows_[row_][cell];
    if (IsNull(value) && defaults_[cell]) return {};
    return {&value, types_[cell]};
  }

 private:
  const std::vector<TypeInfo> types_;
  const std::vector<bool> defaults_;  // by column: whether a NULL becomes the default
  std::vector<std::vector<Value>> rows_;
  std::size_t count_ = 0;
  std::size_t row_ = 0;
};

// One bulk load: all its rows are kept together, or none.
class BulkLoad final : public BulkTarget {
 public:
  BulkLoad(SqlSession& session, DatabaseLink& link, const TableDef& table,
           const std::vector<std::string>& names, std::vector<ColumnInfo> columns,
           const InsertBulkStatement& statement)
      : session_(session),
        link_(link),
        columns_(std::move(columns)),
        table_(table),
        checks_constraints_(statement.checks_constraints) {
    const bool keeps_identity = std::ranges::any_of(columns_, &ColumnInfo::identity);
    scope_.emplace(link_);
    writer_.emplace(
        session_, link_, table_, names,
        keeps_identity ? RowWriter::Identity::Explicit : RowWriter::Identity::Generated);
    std::vector<TypeInfo> types;
    for (const ColumnInfo& column : columns_) types.push_back(column.type);
    rows_.emplace(std::move(types),
                  statement.keeps_nulls ? std::vector<bool>(columns_.size()) : Defaults());
  }

  ~BulkLoad() override {
    scope_.reset();  // undoes what was not finished
    if (!session_.InTransaction() && !finished_) link_.Rollback();
  }

  const std::vector<ColumnInfo>& Columns() const override { return columns_; }

  bool Row(std::span<const Value> values, ResultSink& sink) override {
    if (failed_) return false;
    ++count_;
    rows_->Add(values);
    return !rows_->IsFull() || Guarded(sink, [&] { WriteRows(); });
  }

  std::int64_t Finish(ResultSink& sink) override {
    if (failed_) return 0;
    const Requests::Guard at_work = session_.AtWork();
    Guarded(sink, [&] {
      WriteRows();
      writer_->Finish(checks_constraints_);
      scope_->Keep();
      finished_ = true;
      session_.CommitImplicit();
    });
    return failed_ ? 0 : count_;
  }

 private:
  void WriteRows() {
    writer_->WriteRows(*rows_, rows_->Count());
    rows_->Clear();
  }

  std::vector<bool> Defaults() const {
    std::vector<bool> defaults(columns_.size());
    for (const InsertPlan::Slot& slot : writer_->Plan().slots) {
      if (slot.source == InsertPlan::Source::Cell)
        defaults[slot.cell] = slot.default_value != nullptr;
    }
    return defaults;
  }

  template <typename Body>
  bool Guarded(ResultSink& sink, Body body) {
    try {
      body();
      return true;
    } catch (const SqlError& error) {
      for (ServerMessage message : error.messages) {
        if (message.line == 0) message.line = 1;
        sink.Message(message);
      }
    } catch (const Cancelled&) {
    } catch (const std::exception& error) {
      sink.Message({15034, 1, 17, error.what(), "", 1});
    }
    failed_ = true;
    return false;
  }

  SqlSession& session_;
  DatabaseLink& link_;
  std::vector<ColumnInfo> columns_;
  const TableDef table_;
  const bool checks_constraints_;
  std::optional<StatementScope> scope_;
  std::optional<RowWriter> writer_;
  std::optional<BulkRows> rows_;
  std::int64_t count_ = 0;
  bool failed_ = false;
  bool finished_ = false;
};

}  // namespace

std::unique_ptr<BulkTarget> SqlSession::BeginBulk(std::string_view statement, ResultSink& sink) {
  state_.batch = {&sink, {}, 1};
  try {
    Parser parser(statement);
    const InsertBulkStatement bulk = parser.ParseInsertBulk();
    CommitImplicit();
    DatabaseLink& link = LinkTo(bulk.table.database);
    link.BeginWrite();
    const TableDef& table = TargetTable(link, bulk.table, 208);
    std::vector<std::string> names;
    std::vector<ColumnInfo> columns;
    for (const ColumnSyntax& column : bulk.columns) {
      const ColumnDef* found = table.FindColumn(column.column.name);
      if (!found) Raise(207, column.column.name);
      if (found->type.type == SqlType::Timestamp) Raise(273);
      names.push_back(found->name);
      columns.push_back({found->name, column.column.type, found->nullable, found->identity});
    }
    return std::make_unique<BulkLoad>(*this, link, table, names, std::move(columns), bulk);
  } catch (const SqlError& error) {
    EndImplicit();
    Report(error, 1, false);
  } catch (const std::exception& error) {
    EndImplicit();
    Message(15034, 17, 1, error.what());
  }
  return nullptr;
}

}  // namespace sandbox
