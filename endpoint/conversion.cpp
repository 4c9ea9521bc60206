#include "endpoint/conversion.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace dorvane {

namespace {

/// The facts of the fields' columns, in the order of the fields.
std::vector<ColumnFacts> FactsOf(const std::vector<ado::FieldInfo>& fields,
                                 const TableDefinition& table) {
  std::vector<ColumnFacts> facts;
  for (const ado::FieldInfo& field : fields) {
    const TableDefinition::Column* column = table.Find(field.name);
    facts.push_back(column != nullptr ? column->facts : ColumnFacts());
  }
  return facts;
}

}  // namespace

Conversion::Conversion(Context context)
    : source_(std::move(context.source)),
      destination_(std::move(context.destination)),
      catalog_(*source_),
      source_database_(std::move(context.source_database)),
      options_(context.options),
      events_(context.events),
      host_(context.host),
      copy_(context.copy) {}

void Conversion::Run(const NameList& src_tables) {
  ConvertListedTables(src_tables);
  source_->Close();
  destination_->Close();
}

void Conversion::ConvertListedTables(const NameList& src_tables) {
  PrepareDestination(src_tables);
  for (const std::string& name : src_tables) {
    if (host_.IsStopping()) return;
    events_.TableConversionStarted(name);
    try {
      ConvertTable(name);
    } catch (const RunTimeError& error) {
      ReportTableFailure(name, error);
    }
  }
  if (!options_.convert_relationships) return;
  for (const std::string& name : src_tables) {
    if (host_.IsStopping()) return;
    try {
      RelateTable(name);
    } catch (const RunTimeError& error) {
      ReportTableFailure(name, error);
    }
  }
}

void Conversion::ConvertTable(const std::string& name) {
  ado::Table& tab_src = catalog_.TableByName(name);
  const TableDefinition table = DefineTable(tab_src);
  PrepareTable(table);
  const bool is_new = CreateTable(table);
  if (is_new) AddPrimaryKeyConstraint(tab_src, table);
  if (options_.copy_table_content && !CopyTableContent(table, is_new)) return;
  events_.TableConversionSuccessed(name);
}

bool Conversion::CreateTable(const TableDefinition& table) {
  try {
    ExecuteOn(*destination_, CreateTableStatement(table));
    return true;
  } catch (const DestinationFailure& failure) {
    if (IsMerging() && failure.Number() == ado::hresult::kErrorsInCommand) return false;
    throw;
  }
}

bool Conversion::CopyTableContent(const TableDefinition& table, bool is_new) {
  const std::string source_name = SourceName(table.name);
  try {
    ado::Recordset source = source_->Execute("select * from " + source_name);
    const std::vector<ado::FieldInfo>& fields = source.FieldInfos();
    events_.TableContentTransferStarted(table.name, CountRows(source_name));

    const std::vector<ColumnFacts> facts = FactsOf(fields, table);
    const std::unique_ptr<IRowDestination> rows = OpenRows(table, is_new, fields, facts);
    RowCopier copier(*rows, events_, host_, copy_);
    return copier.Copy([&source](ado::RowBlock& block) { return source.GetRows(block); });
  } catch (const RunTimeError& error) {
    ReportCopyFailure(table, SummaryOf(error));
    return true;
  }
}

std::int32_t Conversion::CountRows(std::string_view source_name) {
  const std::string text =
      source_->Execute("select count(*) as Rows_No from " + std::string(source_name))
          .Field("Rows_No")
          .Text();
  std::uint64_t count = 0;
  std::from_chars(text.data(), text.data() + text.size(), count);
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(count, kMost));
}

void Conversion::RaiseError(std::string_view message, std::string_view title, std::int32_t style) {
  events_.ErrorOccured(message, style, title);
}

std::string Conversion::DestName(std::string_view name) const {
  std::string dest_name(name);
  if (options_.replace_space_with_underscore) std::ranges::replace(dest_name, ' ', '_');
  return dest_name;
}

}  // namespace dorvane
