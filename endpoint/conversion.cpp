#include "endpoint/conversion.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <limits>
#include <utility>

#include "endpoint/generated_columns.h"
#include "endpoint/keep_open.h"
#include "platform/ado/items.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

std::int32_t Announced(std::int64_t rows) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(rows, kMost));
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
      copy_(context.copy),
      rehearsal_(std::move(context.rehearsal)) {
  if (IsRehearsing()) {
    destination_->Rehearse([this](std::string_view sql) { RehearseStatement(sql); });
  }
}

void Conversion::Run(const NameList& src_tables) {
  if (IsRehearsing()) OpenTrial();
  const NameList tables = WithoutCollisions(src_tables);
  if (IsRehearsing() && IsMerging()) LearnParents(tables);
  PrepareSchemas(tables);
  for (const std::string& name : tables) plans_->try_emplace(name);
  if (IsSideBySide(tables)) {
    ConvertSideBySide(tables);
  } else {
    ConvertOneByOne(tables);
  }
  if (!host_.IsStopping()) FinishPostponedTables();
  if (trial_) trial_->GiveUp();  // temporary tables have no relationships
  if (options_.convert_relationships) ForEachTable(tables, &Conversion::RelateListed);
  if (options_.copy_table_content && options_.verification != Verification::None) {
    CompareEach(tables);
  }
  source_->Close();
  destination_->Close();
}

void Conversion::ConvertOneByOne(const NameList& tables) {
  if (IsOverwriting()) {
    ForEachTable(tables, &Conversion::PlanListed);
    PrepareOverwriting(tables);
  }
  ForEachTable(tables, &Conversion::ConvertListed);
}

void Conversion::ForEachTable(const NameList& tables, Step step) {
  for (const std::string& name : tables) {
    if (host_.IsStopping()) return;
    TryStep(step, name);
  }
}

void Conversion::TryStep(Step step, const std::string& name) {
  host_.TableStepStarted(name);
  const auto started = std::chrono::steady_clock::now();
  try {
    (this->*step)(name);
  } catch (const RunTimeError& error) {
    failed_.insert(SourceTable(name));
    ReportTableFailure(name, error);
  }
  host_.TableStepEnded(name, std::chrono::steady_clock::now() - started);
}

void Conversion::PlanListed(const std::string& name) {
  Plan(name);
}

void Conversion::ConvertListed(const std::string& name) {
  events_.TableConversionStarted(name);
  ConvertTable(name);
}

void Conversion::RelateListed(const std::string& name) {
  KeepConnected();
  RelateTable(name);
}

Conversion::PlannedTable& Conversion::Plan(const std::string& name) {
  PlannedTable& planned = plans_->at(name);
  if (planned.IsThere()) return planned;
  try {
    KeepConnected();
    ado::Table& tab_src = catalog_.TableByName(name);
    // The list of tables may be older than its end.
    if (tab_src.Columns().empty()) ado::ThrowItemNotFound("ADOX.Tables");
    planned.definition = DefineTable(tab_src);
  } catch (const RunTimeError&) {
    planned.failure = std::current_exception();
  }
  host_.Yield();
  return planned;
}

NameList Conversion::WithoutCollisions(const NameList& src_tables) {
  std::map<std::string, std::vector<std::size_t>> positions;  // in the list, by folded name
  for (std::size_t i = 0; i < src_tables.size(); ++i) {
    const std::string folded = text::ToLower(DestTableOf(src_tables[i]).Text());
    positions[folded].push_back(i);
    tables_of_dest_[folded].push_back(SourceTable(src_tables[i]));
  }
  NameList accepted;
  for (std::size_t i = 0; i < src_tables.size(); ++i) {
    const std::string& name = src_tables[i];
    const ado::TableName dest = DestTableOf(name);
    // Which of two schemas is meant, only a person knows.
    const auto takes_name = [&](std::size_t other) {
      const bool is_first = other < i || (other > i && options_.schemas == SchemaPolicy::Drop);
      return is_first && (DestTableOf(src_tables[other]) == dest || FoldsTableNames());
    };
    const std::vector<std::size_t>& rivals = positions[text::ToLower(dest.Text())];
    const auto rival = std::ranges::find_if(rivals, takes_name);
    if (rival == rivals.end()) {
      accepted.push_back(name);
      continue;
    }
    events_.TableConversionStarted(name);
    RaiseError(fmt::format("Tables {} and {} have one name on the destination. Table {} was not "
                           "converted",
                           src_tables[*rival], name, name),
               "Table Conversion");
    events_.TableConversionFailed(name);
  }
  return accepted;
}

const ado::TableName* Conversion::Namesake(const ado::TableName& source) const {
  const ado::TableName dest = DestTable(source);
  const auto tables = tables_of_dest_.find(text::ToLower(dest.Text()));
  if (tables == tables_of_dest_.end()) return nullptr;
  const auto other = std::ranges::find_if(tables->second, [&](const ado::TableName& table) {
    return table != source && DestTable(table) == dest;
  });
  return other != tables->second.end() ? &*other : nullptr;
}

bool Conversion::HasSchemas() const {
  return std::ranges::any_of(tables_of_dest_, [](const auto& entry) {
    return std::ranges::any_of(entry.second,
                               [](const ado::TableName& table) { return !table.IsBare(); });
  });
}

void Conversion::PrepareSchemas(const NameList& tables) {
  std::set<std::string> schemas;
  for (const std::string& name : tables) schemas.insert(DestTableOf(name).schema);
  schemas.erase("");
  for (const std::string& schema : schemas) {
    try {
      MakeSchema(schema);
    } catch (const RunTimeError& error) {
      const ErrorSummary summary = SummaryOf(error);
      RaiseError(fmt::format("Can not create {} for its tables - Error no. {} - {}", schema,
                             summary.number, summary.description),
                 "Table Conversion");
    }
  }
}

void Conversion::PrepareOverwriting(const NameList& tables) {
  if (host_.IsStopping()) return;
  if (IsRehearsing()) LearnReferences();
  std::vector<const TableDefinition*> definitions;
  for (const std::string& name : tables) {
    const PlannedTable& planned = plans_->at(name);
    if (planned.definition) definitions.push_back(&*planned.definition);
  }
  PrepareOverwriting(definitions);
}

void Conversion::KeepConnected() {
  KeepOpen(*source_, "source", host_);
  KeepOpen(*destination_, "destination", host_);
}

void Conversion::ConvertTable(const std::string& name) {
  KeepConnected();
  PlannedTable& planned = Plan(name);
  if (planned.failure) std::rethrow_exception(planned.failure);
  TableDefinition& table = *planned.definition;
  ado::Table& tab_src = catalog_.TableByName(name);
  const bool is_there = IsRehearsing() && TellWhatIsThere(table);
  if (IsRehearsing()) BeginTrial(table, is_there && IsMerging());
  if (IsOverwriting()) PrepareTable(table);
  const bool is_new = !(is_there && IsMerging()) && CreateTable(table);
  if (is_new) {
    if (IsRehearsing()) rehearsed_tables_.push_back(table.dest_name);
    AddPrimaryKeyConstraint(tab_src, table);
    TellNotes(table);
  } else {
    CheckExistingTable(tab_src, table);
  }
  if (options_.copy_table_content && CopyTableContent(table, is_new) != Copied::AsFarAsPossible) {
    return;
  }
  if (is_new && IsExact()) CompleteTable(table);
  events_.TableConversionSuccessed(name);
}

void Conversion::ExecuteOrNote(const TableDefinition& table, const std::string& statement,
                               std::string_view what) {
  try {
    ExecuteOn(*destination_, statement);
  } catch (const DestinationFailure& failure) {
    host_.Inform(fmt::format("Table {}: {} was left off: {}", table.name.Text(), what,
                             failure.Summary().description));
  }
}

bool Conversion::CreateTable(TableDefinition& table) {
  for (;;) {
    try {
      ExecuteOn(*destination_, CreateTableStatement(table));
      return true;
    } catch (const DestinationFailure& failure) {
      const std::int32_t native_error = failure.NativeError();
      if (IsMerging() && native_error == TableExistsError()) return false;
      if (!Cure(table, failure)) throw;
    }
  }
}

bool Conversion::Cure(TableDefinition& table, const DestinationFailure& failure) {
  return CureTable(table, failure.NativeError()) ||
         HoldRefusedValues(table, DestinationKind() == ServerKind::MySql ? "MySQL" : "SQL Server",
                           failure.Summary().description);
}

void Conversion::TellNotes(const TableDefinition& table) {
  const auto tell = [&](const std::string& note) {
    host_.Inform(fmt::format("Table {}: {}", table.name.Text(), note));
  };
  for (const ColumnDefinition& column : table.columns) std::ranges::for_each(column.notes, tell);
  std::ranges::for_each(table.notes, tell);
}

Conversion::Copied Conversion::CopyTableContent(const TableDefinition& table, bool is_new) {
  const std::string source_name = SourceName(table.name);
  const auto report = [&](const RunTimeError& error) {
    const ErrorSummary summary = SummaryOf(error);
    ReportCopyProblem(table, fmt::format("{} - {}", summary.number, summary.description));
  };
  try {
    const std::set<std::string> left_out = ColumnsLeftOut(table, is_new);
    ado::Recordset source =
        source_->Execute("select " + SelectList(table, left_out) + " from " + source_name);
    const std::vector<ado::FieldInfo>& fields = source.FieldInfos();
    const std::int64_t announced = CountRows(source_name);
    events_.TableContentTransferStarted(table.name.Text(), Announced(announced));

    const std::vector<ColumnFacts> facts = FactsOf(fields, table);
    std::unique_ptr<IRowDestination> rows =
        OpenRows(table, is_new ? TableUse::New : TableUse::Existing, fields, facts);
    if (IsRehearsing()) rows = Rehearse(std::move(rows), table, is_new, fields, facts);
    RowCopier copier(*rows, events_, host_, copy_);
    bool is_stopped = false;
    try {
      is_stopped = !copier.Copy([&](ado::RowBlock& block) { return source.GetRows(block); });
      if (!is_stopped) ReportShortfall(table, announced, copier.Account().read);
    } catch (const RunTimeError& error) {
      // What became of the rows before the failure is told all the same.
      report(error);
    }
    ReportChanges(table, rows->Changes());
    const RowAccount& account = copier.Account();
    const bool waits = account.postponed > 0 && !is_stopped;
    if (waits) {
      Postpone(table, announced, account);
    } else {
      ReportRows(table, announced, account);
    }
    if (account.refused > 0) refused_tables_.insert(table.name);
    if (IsRehearsing()) ShowExamples(*rows);
    if (waits) return Copied::WithRowsPostponed;
    return is_stopped ? Copied::Stopped : Copied::AsFarAsPossible;
  } catch (const RunTimeError& error) {
    report(error);
    return Copied::AsFarAsPossible;
  }
}

void Conversion::Postpone(const TableDefinition& table, std::int64_t announced,
                          const RowAccount& account) {
  host_.Inform(fmt::format("Table {}: {} of {} rows wait for the rows that they refer to",
                           table.name.Text(), account.postponed,
                           std::max(announced, account.read)));
  postponed_tables_.push_back({&table, announced});
  postponed_accounts_[table.dest_name.Text()] = account;
}

void Conversion::FinishPostponedTables() {
  if (postponed_tables_.empty()) return;
  try {
    KeepConnected();
  } catch (const RunTimeError&) {
    // Then every row is refused, and reported.
  }
  if (parents_) {
    parents_->FinishPostponed(postponed_accounts_);
  } else {
    StorePostponedRows(postponed_accounts_);
  }
  for (const auto& [table, announced] : postponed_tables_) {
    events_.TableConversionStarted(table->name.Text());
    ReportRows(*table, announced, postponed_accounts_[table->dest_name.Text()]);
    events_.TableConversionSuccessed(table->name.Text());
  }
}

std::int64_t Conversion::CountRows(std::string_view source_name) {
  try {
    return CountRows(*source_, "count(*)", source_name);
  } catch (const RunTimeError&) {
    if (WideCount().empty()) throw;
    return CountRows(*source_, WideCount(), source_name);
  }
}

std::int64_t Conversion::CountRows(ado::Connection& connection, std::string_view function,
                                   std::string_view table) {
  const std::string text =
      connection.Execute(fmt::format("select {} as Rows_No from {}", function, table))
          .Field("Rows_No")
          .Text();
  std::int64_t count = 0;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return count;
}

void Conversion::ReportShortfall(const TableDefinition& table, std::int64_t announced,
                                 std::int64_t read) {
  if (read >= announced) return;
  // Rows that somebody deleted meanwhile are nobody's loss.
  if (CountRows(SourceName(table.name)) < announced) return;
  ReportCopyProblem(table, fmt::format("the source gave {} of {} rows", read, announced));
}

void Conversion::ReportRows(const TableDefinition& table, std::int64_t announced,
                            const RowAccount& account) {
  if (account.refused > 0) {
    ReportCopyProblem(
        table,
        fmt::format("{} of {} rows were not copied; the first: {} - {} (row {})", account.refused,
                    std::max(announced, account.read), account.first_reason.number,
                    account.first_reason.description, account.first_refused));
  }
  if (account.duplicates > 0) {
    host_.Inform(fmt::format("Table {}: {} of {} rows were there already and were left out",
                             table.name.Text(), account.duplicates,
                             std::max(announced, account.read)));
  }
}

void Conversion::ReportChanges(const TableDefinition& table,
                               const std::vector<ValueChanges>& changes) {
  std::string by_rule;
  for (const ValueChanges& each : changes) {
    if (each.count == 0) continue;
    if (each.is_loss) {
      RaiseError(fmt::format("{} values of table {} {}", each.count, table.name.Text(), each.what),
                 "Insertion Error");
    } else {
      by_rule += fmt::format("{}{} {}", by_rule.empty() ? "" : ", ", each.count, each.what);
    }
  }
  if (!by_rule.empty()) host_.Inform(fmt::format("Table {}: {}", table.name.Text(), by_rule));
}

void Conversion::RaiseError(std::string_view message, std::string_view title, std::int32_t style) {
  events_.ErrorOccured(message, style, title);
}

std::string Conversion::DestName(std::string_view name) const {
  std::string dest_name(name);
  if (options_.replace_space_with_underscore) std::ranges::replace(dest_name, ' ', '_');
  return dest_name;
}

ado::TableName Conversion::SourceTable(const std::string& listed) {
  try {
    return catalog_.TableByName(listed).Name();
  } catch (const RunTimeError&) {
    return listed;
  }
}

}  // namespace dorvane
