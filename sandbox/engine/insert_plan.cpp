#include "sandbox/engine/insert_plan.h"

#include <algorithm>
#include <chrono>

#include "sandbox/catalog/database_link.h"
#include "sandbox/catalog/session.h"
#include "sandbox/engine/constraints.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/ticks.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

std::string PlanKey(const TableDef& table, const std::vector<std::string>& columns,
                    RowWriter::Identity identity) {
  std::string key = fmt::format("{} {}", table.id, static_cast<int>(identity));
  for (const std::string& column : columns) key += '\n' + column;
  return key;
}

constexpr std::size_t kMostBlockColumns = 1000;

std::string InsertSql(const TableDef& table, std::size_t rows) {
  std::string names, marks;
  for (const ColumnDef& column : table.columns) {
    if (column.IsComputed()) continue;
    names += (names.empty() ? "" : ",") + TableDef::StoredColumn(column.id);
    marks += marks.empty() ? "(?" : ",?";
  }
  marks += ")";
  std::string sql = fmt::format("INSERT INTO {}({}) VALUES{}", table.StoredName(), names, marks);
  for (std::size_t i = 1; i < rows; ++i) sql += "," + marks;
  return sql;
}

bool TakesBlocks(const InsertPlan& plan) {
  using Source = InsertPlan::Source;
  return plan.slots.size() <= kMostBlockColumns &&
         std::none_of(plan.slots.begin(), plan.slots.end(), [](const InsertPlan::Slot& slot) {
           return slot.source == Source::Identity || slot.column.type.type == SqlType::Timestamp;
         });
}

// A row of values that are at hand.
class ReadyRow final : public RowCells {
 public:
  ReadyRow(std::span<const Value* const> values, std::span<const TypeInfo> types)
      : values_(values), types_(types) {}
  Cell Get(std::size_t cell) override { return {values_[cell], types_[cell]}; }

 private:
  std::span<const Value* const> values_;
  std::span<const TypeInfo> types_;
};

}  // namespace

Value RowVersionValue(std::int64_t version) {
  std::string bytes(8, '\0');
  for (std::size_t i = 8; i-- > 0; version >>= 8) bytes[i] = static_cast<char>(version & 0xFF);
  return BinaryValue{std::move(bytes)};
}

Value PeriodValue(const ColumnDef& column) {
  constexpr std::int32_t kLastDay = 3652058, kUnixEpoch = 719162;
  std::int64_t unit = 1;
  for (int digits = column.type.scale; digits < 7; ++digits) unit *= 10;
  if (column.generated == Generated::RowEnd) return DateTimeValue{kLastDay, kTicksPerDay - unit, 0};
  const std::int64_t now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                               std::chrono::system_clock::now().time_since_epoch())
                               .count() /
                           100;
  const std::int64_t of_day = now % kTicksPerDay;
  return DateTimeValue{kUnixEpoch + static_cast<std::int32_t>(now / kTicksPerDay),
                       of_day - of_day % unit, 0};
}

RowWriter::RowWriter(Session& session, DatabaseLink& link, const TableDef& table,
                     const std::vector<std::string>& columns, Identity identity)
    : session_(session), link_(link), table_(table) {
  std::shared_ptr<InsertPlan>& cached = link.insert_plans[PlanKey(table, columns, identity)];
  if (!cached) cached = MakePlan(columns, identity);
  plan_ = cached;
  stored_.resize(plan_->slots.size());
}

std::shared_ptr<InsertPlan> RowWriter::MakePlan(const std::vector<std::string>& columns,
                                                Identity identity) {
  auto plan = std::make_shared<InsertPlan>();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const ColumnDef* column = table_.FindColumn(columns[i]);
    if (!column) Raise(207, columns[i]);
    if (column->IsComputed()) Raise(271, column->name);
    for (std::size_t j = 0; j < i; ++j) {
      if (SameName(columns[i], columns[j])) Raise(264, columns[i]);
    }
  }
  for (const ColumnDef& column : table_.columns) {
    if (column.IsComputed()) continue;
    InsertPlan::Slot& slot = plan->slots.emplace_back();
    slot.column = column;
    const bool row_version = column.type.type == SqlType::Timestamp;
    const auto listed = std::find_if(columns.begin(), columns.end(), [&](const std::string& name) {
      return SameName(name, column.name);
    });
    const bool generated = column.identity && identity == Identity::Generated;
    if (!column.default_text.empty()) {
      Parser parser(column.default_text);
      slot.default_value = parser.ParseExpressionText();
    }
    if (listed != columns.end()) {
      slot.cell = static_cast<std::size_t>(listed - columns.begin());
      slot.source = InsertPlan::Source::Cell;
      if (column.identity && generated) Raise(544, table_.name);
    } else if (row_version && !columns.empty()) {
      slot.source = InsertPlan::Source::RowVersion;
    } else if (column.generated != Generated::No && (column.hidden || !columns.empty())) {
      slot.source = InsertPlan::Source::Period;
    } else if (generated) {
      slot.source = InsertPlan::Source::Identity;
    } else if (columns.empty()) {
      slot.source = InsertPlan::Source::Cell;
      slot.cell = plan->cells++;
    } else if (column.identity) {
      Raise(545, table_.name);
    } else {
      slot.source = slot.default_value ? InsertPlan::Source::Default : InsertPlan::Source::Null;
    }
    if (column.identity) plan->has_explicit_identity = slot.source == InsertPlan::Source::Cell;
  }
  if (!columns.empty()) plan->cells = columns.size();
  for (const InsertPlan::Slot& slot : plan->slots) {
    if (slot.column.identity) plan->identity = &slot.column;
  }
  plan->insert = link_.Connection().Prepare(InsertSql(table_, 1));
  plan->takes_blocks = TakesBlocks(*plan);
  plan->verifies = !table_.foreign_keys.empty() || !table_.checks.empty() || HasLongKeys(table_);
  return plan;
}

Value RowWriter::DefaultOf(const InsertPlan::Slot& slot) {
  return slot.default_value ? session_.Evaluate(*slot.default_value, &slot.column.type) : Value();
}

void RowWriter::Store(const Place& place, const ColumnDef& column, const Value& value,
                      const TypeInfo& from) {
  Value& stored = stored_[static_cast<std::size_t>(place.index - 1)];
  if (IsNull(value)) {
    if (!column.nullable) {
      Raise(515, column.name, fmt::format("{}.{}", link_.Name(), table_.FullName()), "INSERT");
    }
    sqlite3_bind_null(place.statement.get(), place.index);
    stored = Value();
    return;
  }
  stored = StoreValue(link_, table_, column, value, from);
  BindKeptValue(place.statement.get(), place.index, stored, column.type);
}

void RowWriter::BindSlot(const InsertPlan::Slot& slot, const Place& place, RowCells& row) {
  using Source = InsertPlan::Source;
  Source source = slot.source;
  if (source == Source::Cell) {
    const RowCells::Cell cell = row.Get(slot.cell);
    if (cell.value) return BindCell(slot, place, cell);
    source = slot.column.type.type == SqlType::Timestamp ? Source::RowVersion
             : slot.column.generated != Generated::No    ? Source::Period
                                                         : Source::Default;
  }
  switch (source) {
    case Source::Identity:
      return Store(place, slot.column, link_.NextIdentity(table_, slot.column), BigIntType());
    case Source::RowVersion:
      return Store(place, slot.column, RowVersionValue(link_.NextRowVersion()), slot.column.type);
    case Source::Period:
      return Store(place, slot.column, PeriodValue(slot.column), slot.column.type);
    default:
      return Store(place, slot.column, DefaultOf(slot), slot.column.type);
  }
}

void RowWriter::BindCell(const InsertPlan::Slot& slot, const Place& place,
                         const RowCells::Cell& cell) {
  if (slot.column.type.type == SqlType::Timestamp) Raise(273);
  if (slot.column.generated != Generated::No) Raise(13536, table_.FullName());
  Store(place, slot.column, *cell.value, cell.type);
  if (!slot.column.identity) return;
  const Value as_number = Convert(*cell.value, cell.type, BigIntType());
  link_.NoteIdentity(table_, slot.column, std::get<std::int64_t>(as_number));
}

void RowWriter::BindRow(SqliteStatement& statement, int first_index, RowCells& row) {
  int index = first_index;
  for (const InsertPlan::Slot& slot : plan_->slots) BindSlot(slot, {statement, index++}, row);
}

void RowWriter::WriteRow(RowCells& row) {
  BindRow(plan_->insert, 1, row);
  try {
    link_.Run(plan_->insert);
  } catch (const SqliteError& error) {
    const auto value = [&](int column_id) -> Value {
      const auto slot = std::ranges::find(
          plan_->slots, column_id, [](const InsertPlan::Slot& each) { return each.column.id; });
      if (slot == plan_->slots.end()) return {};  // computed
      return stored_[static_cast<std::size_t>(slot - plan_->slots.begin())];
    };
    RaiseDuplicate(link_, table_, error, value, 0);
  }
  last_row_ = sqlite3_last_insert_rowid(link_.Connection().get());
  if (first_row_ == 0) first_row_ = last_row_;
}

// False with nothing written when any of the rows is refused.
bool RowWriter::WriteBlock(RowCells& rows, std::size_t first) {
  const std::size_t width = plan_->slots.size();
  if (!plan_->insert_block) {
    plan_->insert_block = link_.Connection().Prepare(InsertSql(table_, kBlockRows));
  }
  stored_.resize(kBlockRows * width);
  try {
    for (std::size_t i = 0; i < kBlockRows; ++i) {
      rows.Select(first + i);
      BindRow(plan_->insert_block, static_cast<int>(i * width) + 1, rows);
    }
    link_.Run(plan_->insert_block);
  } catch (const SqlError&) {
    return false;
  } catch (const SqliteError&) {
    return false;
  }
  last_row_ = sqlite3_last_insert_rowid(link_.Connection().get());
  if (first_row_ == 0) first_row_ = last_row_ - static_cast<std::int64_t>(kBlockRows) + 1;
  return true;
}

void RowWriter::WriteRows(RowCells& rows, std::size_t count) {
  for (std::size_t row = 0; row < count;) {
    const bool block = plan_->takes_blocks && count - row >= kBlockRows;
    if (block && WriteBlock(rows, row)) {
      row += kBlockRows;
      continue;
    }
    // Of a block that was refused the row at fault raises its error by itself.
    const std::size_t end = block ? row + kBlockRows : count;
    for (; row < end; ++row) {
      rows.Select(row);
      WriteRow(rows);
    }
  }
}

void RowWriter::Write(std::span<const Value* const> values, std::span<const TypeInfo> types) {
  ReadyRow row(values, types);
  WriteRow(row);
}

void RowWriter::WriteDefaults() {
  const std::vector<const Value*> none(plan_->cells, nullptr);
  const std::vector<TypeInfo> types(plan_->cells);
  Write(none, types);
}

std::int64_t RowWriter::WriteQuery(const BoundQuery& query, const Binder& binder) {
  if (query.columns.size() != Width())
    Raise(query.columns.size() < Width() ? ErrorNumber<0>(120) : ErrorNumber<0>(121));
  std::vector<TypeInfo> types;
  for (const ColumnInfo& column : query.columns) types.push_back(column.type);
  for (const InsertPlan::Slot& slot : plan_->slots) {
    if (slot.source == InsertPlan::Source::Cell) {
      CheckConvertible(types[slot.cell], slot.column.type, false);
    }
  }
  DatabaseLink& source = session_.Link();  // names are bound to the session's own database
  SqliteStatement statement = source.Connection().Prepare(query.sql);
  binder.SetParameters(statement);
  std::vector<Value> row(types.size());
  std::vector<const Value*> cells;
  cells.reserve(row.size());
  for (const Value& value : row) cells.push_back(&value);
  const auto read = [&] {
    for (std::size_t i = 0; i < row.size(); ++i) {
      ReadColumn(statement.get(), static_cast<int>(i), types[i], row[i]);
    }
  };
  std::int64_t rows = 0;
  // A query that reads the table it fills must not meet its own rows: it is read to the end first.
  std::vector<std::vector<Value>> kept;
  const bool self = query.sql.find(table_.StoredName() + " AS ") != std::string::npos;
  for (; source.Step(statement); ++rows) {
    read();
    if (self) {
      kept.push_back(row);
    } else {
      Write(cells, types);
    }
  }
  for (std::vector<Value>& values : kept) {
    std::move(values.begin(), values.end(), row.begin());
    Write(cells, types);
  }
  return rows;
}

void RowWriter::Finish(bool checks_constraints) {
  if (!plan_->verifies || last_row_ < 0) return;
  VerifyKeyLengths(link_, table_, first_row_, last_row_);
  if (checks_constraints) VerifyRows(session_, link_, table_, first_row_, last_row_, "INSERT");
}

}  // namespace sandbox
