#include "mysql/to_mssql/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "endpoint/row_identity.h"
#include "endpoint/shown_value.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/literals.h"
#include "mysql/to_mssql/row_faults.h"
#include "mysql/to_mssql/row_question.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

// Fewer rows are there sooner as one INSERT than by the three trips of a load.
constexpr std::size_t kFewestLoadedRows = 100;
constexpr std::string_view kRollback = "if @@trancount > 0 rollback transaction";

/// A column that a table of the classic mapping has.
bool IsOldMoment(const ado::FieldInfo& column) {
  return column.server_type == "datetime" || column.server_type == "smalldatetime";
}

}  // namespace

RowsToMsSql::RowsToMsSql(ado::Connection& destination, Target target,
                         const std::vector<ado::FieldInfo>& fields, std::vector<ColumnFacts> facts)
    : destination_(destination),
      target_(std::move(target)),
      fields_(fields),
      facts_(std::move(facts)),
      inserts_(
          destination, target_.table, target_.columns, facts_,
          {.gives_identity = target_.has_identity_column, .sends_pieces = target_.sends_pieces}) {
  LearnTypes();
}

bool RowsToMsSql::TakesBlocks() {
  return target_.is_new || !(HasTriggers() || RefersToItself());
}

void RowsToMsSql::LearnTypes() {
  std::vector<ado::DataType> types(fields_.size(), ado::DataType::Empty);
  pages_ = std::move(target_.pages);
  pages_.resize(fields_.size());
  if (target_.is_new) {
    // Its columns were made for the source's.
    std::ranges::transform(fields_, types.begin(), &ado::FieldInfo::type);
  } else {
    try {
      LearnColumns(types);
    } catch (const RunTimeError&) {
      // Without a type numbers are not joined.
    }
  }
  inserts_.SetTypes(std::move(types));
}

void RowsToMsSql::LearnColumns(std::vector<ado::DataType>& types) {
  std::map<std::string, std::shared_ptr<const CodePage>> pages;  // of collations
  for (const ado::Column& column : destination_.Columns(target_.table)) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (!text::EqualsIgnoringCase(target_.columns[i], column.name)) continue;
      types[i] = column.type;
      if (IsOldMoment(column)) facts_[i].is_exact = false;
      const std::string& collation = column.kind.collation;
      if (!IsOfCodePage(column.server_type) || collation.empty()) continue;
      const auto [page, is_unknown] = pages.try_emplace(collation);
      if (is_unknown) {
        page->second = PageOfCollation(destination_, fmt::format("'{}'", SqlText(collation)));
      }
      pages_[i] = page->second;
    }
  }
}

bool RowsToMsSql::HasTriggers() {
  try {
    ado::Recordset count =
        destination_.Execute("select count(*) from sys.triggers where parent_id = object_id('" +
                             SqlText(MsSqlTable(target_.table)) + "')");
    return !count.AtEnd() && count.Field(0).Text() != "0";
  } catch (const RunTimeError&) {
    // A server that does not tell is taken for one that would see the difference.
    return true;
  }
}

bool RowsToMsSql::RefersToItself() {
  const std::string name = target_.table.Text();
  try {
    return std::ranges::any_of(destination_.Keys(target_.table), [&name](const ado::Key& key) {
      return key.type == ado::KeyType::Foreign &&
             text::EqualsIgnoringCase(key.related_table.Text(), name);
    });
  } catch (const RunTimeError&) {
    return true;
  }
}

ado::Value RowsToMsSql::ConvertValue(const ado::Value& value, std::size_t column,
                                     ado::Arena& storage) {
  const ColumnFacts& facts = facts_[column];
  if (facts.is_exact) return ExactValue(value, fields_[column].type, facts, storage);
  const auto* moment = std::get_if<ado::DateTime>(&value);
  return moment != nullptr ? StorableMoment(*moment) : value;
}

BlockResult RowsToMsSql::StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                    std::size_t count) {
  const bool is_loaded = count >= kFewestLoadedRows && OpenLoad();
  const BlockResult result =
      is_loaded ? LoadBlock(converted, first, count) : InsertBlock(converted, first, count);
  if (result == BlockResult::Stored) handled_ += static_cast<std::int64_t>(count);
  return result;
}

BlockResult RowsToMsSql::InsertBlock(const ado::RowBlock& converted, std::size_t first,
                                     std::size_t count) {
  try {
    inserts_.Begin("begin transaction;");
    for (std::size_t row = first; row < first + count; ++row) inserts_.Add(converted.Row(row));
    inserts_.Finish();
    destination_.Execute("commit transaction");
    return BlockResult::Stored;
  } catch (const RunTimeError& error) {
    TryExecute(destination_, kRollback);
    // The switch is no part of the transaction, and a session has it for one table only.
    if (!inserts_.After().empty()) TryExecute(destination_, inserts_.After());
    return IsRowRefusal(error.Number()) ? BlockResult::Refused : BlockResult::Failed;
  }
}

bool RowsToMsSql::OpenLoad() {
  if (!target_.is_loaded || load_) return target_.is_loaded;
  try {
    load_ = destination_.OpenTable(MsSqlTable(target_.table), target_.columns);
  } catch (const RunTimeError&) {
    target_.is_loaded = false;
  }
  return target_.is_loaded;
}

BlockResult RowsToMsSql::LoadBlock(const ado::RowBlock& converted, std::size_t first,
                                   std::size_t count) {
  not_loaded_.clear();
  for (std::size_t row = first; row < first + count; ++row) {
    if (!load_->TakesRow(converted.Row(row))) not_loaded_.push_back(row);
  }
  if (count - not_loaded_.size() < kFewestLoadedRows) return InsertBlock(converted, first, count);
  try {
    LoadRows(converted, first, count);
    return BlockResult::Stored;
  } catch (const RunTimeError& error) {
    TryExecute(destination_, kRollback);
    if (!inserts_.After().empty()) TryExecute(destination_, inserts_.After());
    if (IsRowRefusal(error.Number())) return BlockResult::Refused;
    // The login may not load, or the server cannot. Statements tell whether it is more than that.
    target_.is_loaded = false;
    return InsertBlock(converted, first, count);
  }
}

void RowsToMsSql::LoadRows(const ado::RowBlock& converted, std::size_t first, std::size_t count) {
  if (not_loaded_.empty()) {
    load_->InsertRows(converted, first, count);  // a transaction by itself
    return;
  }
  loaded_.Clear(converted.Columns());
  auto other = not_loaded_.begin();
  for (std::size_t row = first; row < first + count; ++row) {
    if (other != not_loaded_.end() && *other == row) {
      ++other;
    } else {
      std::ranges::copy(converted.Row(row), loaded_.AppendRow().begin());
    }
  }
  destination_.Execute("begin transaction");
  load_->InsertRows(loaded_, 0, loaded_.Rows());
  inserts_.Begin({});
  for (const std::size_t row : not_loaded_) inserts_.Add(converted.Row(row));
  inserts_.Finish();
  destination_.Execute("commit transaction");
}

RowOutcome RowsToMsSql::StoreRow(const ado::RowBlock& converted, std::size_t row) {
  ++handled_;
  RowOutcome outcome = ExecuteRow(converted.Row(row));
  if (outcome.result == RowResult::Duplicate && !IsThere(converted.Row(row))) {
    outcome.result = RowResult::Refused;
  }
  if (!inserts_.After().empty()) ExecuteOn(destination_, inserts_.After());
  return outcome;
}

RowOutcome RowsToMsSql::ExecuteRow(std::span<const ado::Value> row) {
  try {
    OnDestination(destination_, [&] { inserts_.ExecuteRow(row); });
    return {};
  } catch (const DestinationFailure& failure) {
    const ado::Error* entry = failure.Primary();
    const RowFault fault = entry != nullptr ? FaultOf(entry->native_error) : RowFault::None;
    if (fault == RowFault::None) {
      // The next table's rows need the switch, which a session has for one table only.
      if (!inserts_.After().empty()) TryExecute(destination_, inserts_.After());
      throw;
    }
    if (fault == RowFault::Duplicate) {
      return {RowResult::Duplicate, {entry->native_error, entry->description}};
    }
    return RefusalOf(*entry, row);
  }
}

RowOutcome RowsToMsSql::RefusalOf(const ado::Error& error, std::span<const ado::Value> row) {
  ErrorSummary reason{error.native_error, error.description};
  if (target_.waiting != nullptr && MayComeRight(error) &&
      target_.waiting->Add({.table = target_.table.Text(),
                            .position = handled_,
                            .statement = inserts_.StatementOf(row),
                            .after = inserts_.After(),
                            .reason = reason})) {
    return {RowResult::Postponed};
  }
  return {RowResult::Refused, std::move(reason)};
}

bool RowsToMsSql::IsThere(std::span<const ado::Value> row) {
  if (target_.is_new) return false;
  if (target_.identity.empty()) return true;
  try {
    return !destination_
                .Execute(
                    RowQuestion(target_.table, target_.columns, fields_, target_.identity, row))
                .AtEnd();
  } catch (const RunTimeError&) {
    // The server's word for it must do.
    return true;
  }
}

void RowsToMsSql::RowStored(std::span<const ado::Value> source_row) {
  for (std::size_t i = 0; i < source_row.size(); ++i) {
    const auto* text = std::get_if<std::string_view>(&source_row[i]);
    if (text != nullptr && pages_[i] && !pages_[i]->Takes(*text)) {
      ++replaced_texts_.count;
      std::string& first = replaced_texts_.first;
      if (first.empty()) first = ShownValue(target_.columns[i], *text);
    }
    const auto* moment = std::get_if<ado::DateTime>(&source_row[i]);
    if (moment == nullptr) continue;
    if (facts_[i].is_exact) {
      if (!IsOfCalendar(*moment)) {
        Count(facts_[i].nullable ? dates_left_out_ : first_days_, fields_[i], *moment);
      }
      continue;
    }
    const unsigned changes = ChangesOf(*moment, fields_[i].type);
    for (unsigned bit = 0; changes >> bit != 0; ++bit) {
      if ((changes >> bit & 1) != 0) Count(changes_[bit], fields_[i], *moment);
    }
  }
}

std::vector<ValueChanges> RowsToMsSql::Changes() const {
  std::vector<ValueChanges> changes{replaced_texts_, dates_left_out_, first_days_};
  changes.insert(changes.end(), changes_.begin(), changes_.end());
  return changes;
}

std::unique_ptr<IRowDestination> MySqlToMsSql::OpenRows(const TableDefinition& table, TableUse use,
                                                        const std::vector<ado::FieldInfo>& fields,
                                                        const std::vector<ColumnFacts>& facts) {
  const bool is_new = use == TableUse::New;
  RowsToMsSql::Target target{.table = table.dest_name,
                             .columns = {},
                             .has_identity_column = table.Identity() != nullptr &&
                                                    (is_new || HasIdentity(table.dest_name)),
                             .is_new = is_new,
                             .is_loaded = Strategy() == CopyStrategy::Blocks,
                             .sends_pieces = Strategy() != CopyStrategy::RowByRow,
                             .waiting = is_new ? nullptr : &waiting_};
  for (const ado::FieldInfo& field : fields) target.columns.push_back(DestName(field.name));
  if (is_new) {
    for (const ado::FieldInfo& field : fields) {
      const ColumnDefinition* column = table.Find(field.name);
      const bool is_of_page = column != nullptr && IsOfCodePage(column->type);
      target.pages.push_back(is_of_page ? DatabasePage() : nullptr);
    }
  } else {
    target.identity =
        IdentifyingFields(SourceCatalog().TableByName(table.name.Text()).Indexes(), fields);
  }
  return std::make_unique<RowsToMsSql>(Destination(), std::move(target), fields, facts);
}

std::shared_ptr<const CodePage> MySqlToMsSql::DatabasePage() {
  if (database_page_) return *database_page_;
  database_page_.emplace();
  try {
    *database_page_ = PageOfCollation(
        Destination(), "(select collation_name from sys.databases where name = db_name())");
  } catch (const RunTimeError&) {
    // Then it is taken to have every character.
  }
  return *database_page_;
}

bool MySqlToMsSql::HasIdentity(const ado::TableName& dest_table) {
  ado::Recordset count = OnDestination(Destination(), [&] {
    return Destination().Execute(
        "select count(*) from sys.columns where is_identity = 1 and object_id = object_id('" +
        SqlText(MsSqlTable(dest_table)) + "')");
  });
  return count.AtEnd() || count.Field(0).Text() != "0";
}

void MySqlToMsSql::StorePostponedRows(std::map<std::string, RowAccount>& accounts) {
  waiting_.Store(Destination(), accounts);
}

void MySqlToMsSql::ReportCopyProblem(const TableDefinition& table, std::string_view problem) {
  RaiseError(fmt::format("Unexpected error while transfering data of table {} - {}",
                         MsSqlTable(table.dest_name), problem),
             "MS SQL Server");
}

}  // namespace dorvane::to_mssql
