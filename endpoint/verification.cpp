// How what has arrived is compared with what was sent.

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "endpoint/conversion.h"
#include "endpoint/lanes.h"
#include "endpoint/row_identity.h"
#include "endpoint/table_comparison.h"

namespace dorvane {

namespace {

constexpr std::size_t kMostTextOfKey = 60;

std::string Shortened(const std::string& text) {
  return text.size() <= kMostTextOfKey ? text : text.substr(0, kMostTextOfKey) + "...";
}

std::string NamesAt(const std::vector<ado::FieldInfo>& fields,
                    const std::vector<std::size_t>& positions) {
  std::string names;
  for (const std::size_t i : positions) names += (names.empty() ? "" : ", ") + fields[i].name;
  return names;
}

/// "missing 5", "different 7 (Name, Price)": a row that is not alike, by its key's values.
std::string TextOf(const RowDifference& row, const std::vector<ado::FieldInfo>& fields) {
  constexpr std::string_view kKinds[] = {"missing", "additional", "different"};
  std::string text(kKinds[static_cast<std::size_t>(row.kind)]);
  for (const std::string& value : row.key) {
    text += fmt::format("{} {}", &value == &row.key.front() ? "" : ",", Shortened(value));
  }
  if (!row.columns.empty()) text += fmt::format(" ({})", NamesAt(fields, row.columns));
  return text;
}

void AppendCount(std::string& text, std::int64_t count, std::string_view what) {
  if (count == 0) return;
  text += fmt::format("{}{} {} {}", text.empty() ? "" : ", ", count,
                      count == 1 ? "row is" : "rows are", what);
}

/// "2 rows are missing, 1 row is different. The first: missing 5; ...". `may_have_more`: additional
/// rows are no difference.
std::string TextOf(const ComparisonResult& result, bool may_have_more,
                   const std::vector<ado::FieldInfo>& fields) {
  std::string text;
  AppendCount(text, result.missing, "missing");
  AppendCount(text, may_have_more ? 0 : result.additional, "additional");
  AppendCount(text, result.different, "different");
  std::string_view separator = ". The first: ";
  for (const RowDifference& row : result.examples) {
    if (may_have_more && row.kind == RowDifference::Kind::Additional) continue;
    text += separator;
    text += TextOf(row, fields);
    separator = "; ";
  }
  return text;
}

/// Reads a statement's rows anew each time it is called.
TableReader ReaderOf(ado::Connection& connection, std::string statement) {
  return [&connection, statement = std::move(statement)]() -> BlockSource {
    auto rows = std::make_shared<ado::Recordset>(connection.Execute(statement));
    return [rows = std::move(rows)](ado::RowBlock& block) { return rows->GetRows(block); };
  };
}

/// The rows of a reader as the destination takes them.
TableReader Converted(TableReader reader, IRowDestination& destination) {
  return [reader = std::move(reader), &destination]() -> BlockSource {
    auto block = std::make_shared<ado::RowBlock>(kTravellingBlock);
    return [source = reader(), block = std::move(block), &destination](ado::RowBlock& converted) {
      const bool has_more = source(*block);
      if (has_more) ConvertRows(*block, destination, converted);
      return has_more;
    };
  };
}

std::vector<ado::FieldInfo> FieldsOf(ado::Connection& connection, const std::string& statement) {
  return connection.Execute(statement + " where 1 = 0").FieldInfos();
}

}  // namespace

void Conversion::Compare(const NameList& src_tables) {
  for (const std::string& name : src_tables) plans_->try_emplace(name);
  CompareEach(src_tables);
  source_->Close();
  destination_->Close();
}

void Conversion::CompareEach(const NameList& tables) {
  host_.ComparisonStarted();
  if (!IsSideBySide(tables)) return ForEachTable(tables, &Conversion::CompareListed);
  SourceTable(tables.front());  // the catalog is read once, not by each lane
  std::vector<ConnectionPair> pairs = OpenPairs(tables.size());
  Lanes lanes(pairs.size() + 1, events_, host_);
  OnLanes(lanes, pairs, TableQueue(tables), &Conversion::CompareListed);
}

void Conversion::CompareListed(const std::string& name) {
  if (failed_.contains(SourceTable(name))) return;  // told already
  KeepConnected();
  const PlannedTable& planned = Plan(name);
  if (planned.failure) std::rethrow_exception(planned.failure);
  const TableDefinition& table = *planned.definition;
  try {
    const std::int64_t source_rows = CountRows(SourceName(table.name));
    host_.TableComparisonStarted(name, source_rows);
    if (options_.verification == Verification::Counts) {
      CompareCounts(table, source_rows);
    } else {
      CompareValues(table, source_rows);
    }
  } catch (const RunTimeError& error) {
    const ErrorSummary summary = SummaryOf(error);
    ReportDifference(table, fmt::format("it could not be compared: {} - {}", summary.number,
                                        summary.description));
  }
}

void Conversion::CompareCounts(const TableDefinition& table, std::int64_t source_rows) {
  const std::int64_t destination =
      CountRows(*destination_, "count(*)", DestQuoted(table.dest_name));
  const std::int64_t additional = destination - source_rows;
  if (additional == 0 || (additional > 0 && IsMerging())) {
    return ReportEqual(table, fmt::format("{} rows on both sides", source_rows), additional);
  }
  ReportDifference(
      table, fmt::format("the source has {} rows, the destination {}", source_rows, destination));
}

void Conversion::CompareValues(const TableDefinition& table, std::int64_t source_rows) {
  const std::string from_source =
      fmt::format("select {} from {}", SelectList(table, {}), SourceName(table.name));
  const std::vector<ado::FieldInfo> fields = FieldsOf(*source_, from_source);
  std::string columns;
  for (const ado::FieldInfo& field : fields) {
    columns += (columns.empty() ? "" : ", ") + DestQuoted(DestName(field.name));
  }
  const std::string from_destination =
      fmt::format("select {} from {}", columns, DestQuoted(table.dest_name));

  ComparedTables tables;
  for (const ado::FieldInfo& field : FieldsOf(*destination_, from_destination)) {
    tables.types.push_back(field.type);
  }
  tables.key = KeyFields(catalog_.TableByName(table.name.Text()).Indexes(), fields);
  // The rules that convert say what must have arrived.
  const std::unique_ptr<IRowDestination> rules =
      OpenRows(table, TableUse::Compared, fields, FactsOf(fields, table));
  tables.source = Converted(ReaderOf(*source_, from_source), *rules);
  tables.destination = ReaderOf(*destination_, from_destination);
  const std::optional<ComparisonResult> result =
      CompareTables(tables, [this, source_rows](std::int64_t rows) {
        host_.ShowRowsCompared(std::min(rows, source_rows));  // some are read more than once
        host_.Yield();
        return !host_.IsStopping();
      });
  if (!result) return;
  if (result->missing == 0 && result->different == 0 && (result->additional == 0 || IsMerging())) {
    return ReportEqual(table, fmt::format("{} rows equal", result->source_rows),
                       result->additional);
  }
  ReportDifference(table, TextOf(*result, IsMerging(), fields));
}

void Conversion::ReportEqual(const TableDefinition& table, std::string_view what,
                             std::int64_t additional) {
  std::string text = fmt::format("Table {}: Verified: {}", table.name.Text(), what);
  if (additional > 0) text += fmt::format(", {} more on the destination", additional);
  host_.Inform(text);
}

void Conversion::ReportDifference(const TableDefinition& table, std::string_view difference) {
  RaiseError(fmt::format("Table {}: {}", table.name.Text(), difference), "Verification");
}

}  // namespace dorvane
