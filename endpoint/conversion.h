#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "endpoint/database.h"
#include "endpoint/definition_statement.h"
#include "endpoint/failure.h"
#include "endpoint/references.h"
#include "endpoint/rehearsed_parents.h"
#include "endpoint/rehearsed_references.h"
#include "endpoint/rehearsed_server.h"
#include "endpoint/row_copier.h"
#include "endpoint/table_definition.h"
#include "endpoint/trial_rows.h"
#include "endpoint/trial_table.h"
#include "platform/ado/catalog.h"

namespace dorvane {

/// What rows of a destination table are opened for: to fill one that this run made, to add to one
/// that was there, or to be compared only.
enum class TableUse { New, Existing, Compared };

class EventRecord;
class Lanes;
class TableQueue;

/// One conversion, from opened connections to closed ones: it prepares the destination, converts
/// each listed table (definition, keys, rows) and then, on request, the relationships. It lives
/// exactly as long as the run and holds all of its state. Each direction derives its own and fills
/// in the steps; every failure becomes one of the events.
///
/// Where tables are converted side by side, each lane has a fork of the conversion: the same
/// direction over a pair of connections of its own, which knows what the conversion knows and
/// converts one table at a time in the lane's thread. What concerns several tables (names that
/// collide, what is dropped, rows that wait for others, relationships) stays with the conversion,
/// which does nothing else while its forks are at work.
class Conversion {
 public:
  struct Context {
    std::unique_ptr<ado::Connection> source;       // open, its database selected
    std::unique_ptr<ado::Connection> destination;  // likewise
    std::string source_database;
    ConversionOptions options;
    IConversionListener& events;  // this and the host must outlive the conversion
    IRunHost& host;
    CopyPlan copy = {};
    ado::StatementSink rehearsal = nullptr;  // for a rehearsal: see IDatabase::RehearseTransfer
  };

  virtual ~Conversion() = default;

  /// Converts the tables and closes both connections. Ends early, with the row block in hand
  /// finished, when the host is stopping.
  void Run(const NameList& src_tables);
  /// Compares the tables with those on the destination and closes both connections; see
  /// IDatabase::CompareWithDest.
  void Compare(const NameList& src_tables);

 protected:
  explicit Conversion(Context context);

  const ConversionOptions& Options() const { return options_; }
  bool IsMerging() const { return options_.convert_mode == convert_mode::kMerge; }
  bool KeepsComputed() const { return options_.computed_columns == ComputedColumns::Generated; }
  bool IsExact() const { return options_.types == TypeMapping::Exact; }
  bool IsOverwriting() const { return options_.convert_mode == convert_mode::kOverwrite; }
  /// True when the destination's table may be there from before the run.
  bool MayBeOld(const ado::TableName& name) const { return IsMerging() || failed_.contains(name); }
  bool IsRehearsing() const { return rehearsal_ != nullptr; }
  CopyStrategy Strategy() const { return copy_.strategy; }
  const std::string& SourceDatabase() const { return source_database_; }
  ado::Connection& Source() { return *source_; }
  ado::Connection& Destination() { return *destination_; }
  ado::Catalog& SourceCatalog() { return catalog_; }
  IConversionListener& Events() { return events_; }
  IRunHost& Host() { return host_; }

  /// Opens the connections again that were lost, so that one lost session costs one table only.
  /// Throws RunTimeError.
  void KeepConnected();
  /// Has the destination execute a statement that the table can do without, and notes `what` was
  /// left off and why when it refuses.
  void ExecuteOrNote(const TableDefinition& table, const std::string& statement,
                     std::string_view what);
  void RaiseError(std::string_view message, std::string_view title,
                  std::int32_t style = message_style::kError);
  /// A name as it is on the destination: blanks become "_" when that was asked for.
  std::string DestName(std::string_view name) const;
  /// The source's table that a list shows so; a bare name where the source has none.
  ado::TableName SourceTable(const std::string& listed);
  /// What a listed table is on the destination.
  ado::TableName DestTableOf(const std::string& listed) { return DestTable(SourceTable(listed)); }
  /// True when a table of this run stands in another schema than the login's.
  bool HasSchemas() const;
  /// In a rehearsal, ahead of the statement that gives a table of the destination which is there a
  /// primary key of these columns.
  void RehearseKey(const ado::TableName& dest_table, std::string name,
                   std::vector<std::string> columns) {
    if (IsRehearsing()) new_key_ = {dest_table, std::move(name), std::move(columns)};
  }
  /// True in a rehearsal for a table of the destination that has been dropped, or made anew.
  bool IsToBeDropped(const ado::TableName& dest_table) const {
    return references_ && references_->IsDropped(dest_table);
  }
  /// In a rehearsal, throws DestinationFailure when the destination would refuse a relationship
  /// since the table that it refers to will not be there. The tables are the destination's.
  void RehearseRelationship(const std::string& name, const ado::TableName& table,
                            const ado::TableName& referenced);
  /// The same since rows refer to none, as far as that can be known; a remark where it cannot. The
  /// table and the key are the source's.
  void RehearseRelatedRows(const ado::TableName& table, const ado::Key& key);
  /// How many rows of the destination's table refer to none by this key of it: those of the query,
  /// or those that a rehearsal foresees.
  std::string OrphansOf(const ado::TableName& dest_name, const ado::Key& key,
                        const std::string& query);
  /// The other table of this run that has the table's name on the destination; null when there is
  /// none.
  const ado::TableName* Namesake(const ado::TableName& source) const;

 private:
  // The steps of a direction. They throw RunTimeError, and DestinationFailure for what the
  // destination refused, unless they say that they report it.

  /// The definition of a table, complete enough to make the table again before it is dropped.
  virtual TableDefinition DefineTable(ado::Table& tab_src) = 0;
  /// Makes the schema, or the database, that tables of the destination stand in, unless it is
  /// there.
  virtual void MakeSchema(const std::string& name) = 0;
  /// In overwrite mode, ahead of the first table: `tables` are all that can be made, in their
  /// order. Reports its failures.
  virtual void PrepareOverwriting(const std::vector<const TableDefinition*>& tables) = 0;
  /// The foreign keys of the destination's tables, of those at least that refer to one of these.
  virtual std::vector<Reference> DestReferences(const std::set<ado::TableName>& tables) = 0;
  /// In overwrite mode, right before the table is created.
  virtual void PrepareTable(const TableDefinition& table) = 0;
  virtual std::string CreateTableStatement(const TableDefinition& table) const = 0;
  /// The server's number for a table that is there already.
  virtual std::int32_t TableExistsError() const = 0;
  /// Changes a definition that was refused with this number so that it may be taken, and notes what
  /// was changed. False when there is no cure, or none any more.
  virtual bool CureTable(TableDefinition& table, std::int32_t native_error) = 0;
  /// Primary key and indexes of a table just created. Reports its failures.
  virtual void AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) = 0;
  /// What a merge needs of a table that was there: the key by which rows are told apart. Reports
  /// its failures.
  virtual void CheckExistingTable(ado::Table& tab_src, const TableDefinition& table) = 0;
  /// The table that rows are copied into. `facts` are those of `fields`, one each; both outlive it.
  virtual std::unique_ptr<IRowDestination> OpenRows(const TableDefinition& table, TableUse use,
                                                    const std::vector<ado::FieldInfo>& fields,
                                                    const std::vector<ColumnFacts>& facts) = 0;
  /// What a new table of the exact mapping gets when its rows are there, the next identity value
  /// among it. What is refused is noted.
  virtual void CompleteTable(const TableDefinition& table) = 0;
  /// For a rehearsal: the destination's server, asked over a connection that outlives the result.
  virtual std::unique_ptr<IRehearsedServer> ServerOver(ado::Connection& connection) const = 0;
  /// For a rehearsal: true when the destination may refuse or change rows of a new table although
  /// there is room in it for each of their values.
  virtual bool MayRefuseRows(const TableDefinition& table,
                             const std::vector<ado::FieldInfo>& fields) = 0;
  /// After the last table: stores the rows that were postponed, and adds those that were refused
  /// for good to the account of their destination table.
  virtual void StorePostponedRows(std::map<std::string, RowAccount>& /*accounts*/) {}
  /// Another conversion of the direction, to which the direction adds what it knows already.
  virtual std::unique_ptr<Conversion> Fork(Context context) const = 0;
  /// Takes over what a fork has learnt about tables that the conversion goes on with.
  virtual void Join(Conversion& fork) = 0;
  /// The foreign keys of a table. Throws only for a table that is not in the source's catalog.
  virtual void RelateTable(const std::string& name) = 0;

  /// What counts the rows where count(*) overflows; empty for a source where it does not.
  virtual std::string_view WideCount() const { return {}; }
  /// A table's name, or a column's, quoted for the source.
  virtual std::string SourceName(const ado::TableName& name) const = 0;
  /// A table of the source as it is named on the destination.
  virtual ado::TableName DestTable(const ado::TableName& name) const = 0;
  /// A table or column quoted for the destination, where it has that name.
  virtual std::string DestQuoted(const ado::TableName& name) const = 0;
  virtual ServerKind DestinationKind() const = 0;
  /// True when the destination takes names that differ in letter case for one.
  virtual bool FoldsTableNames() = 0;
  virtual void ReportTableFailure(const std::string& name, const RunTimeError& error) = 0;
  /// "Unexpected error while transfering data of table ... - " and the problem.
  virtual void ReportCopyProblem(const TableDefinition& table, std::string_view problem) = 0;

  /// A table's definition, or why there is none.
  struct PlannedTable {
    std::optional<TableDefinition> definition;
    std::exception_ptr failure;
    bool IsThere() const { return definition || failure; }
  };
  using Plans = std::map<std::string, PlannedTable>;
  PlannedTable& Plan(const std::string& name);
  /// A step for one listed table. Throws RunTimeError.
  using Step = void (Conversion::*)(const std::string& name);
  /// Returns early when the host is stopping.
  void ForEachTable(const NameList& tables, Step step);
  /// Reports the step's failure.
  void TryStep(Step step, const std::string& name);
  void PlanListed(const std::string& name);
  void ConvertListed(const std::string& name);
  void RelateListed(const std::string& name);
  /// The listed tables but for those whose destination name another one takes; reports these.
  NameList WithoutCollisions(const NameList& src_tables);
  /// Makes what the tables will stand in. Reports its failures.
  void PrepareSchemas(const NameList& tables);
  void ConvertOneByOne(const NameList& tables);
  /// All definitions were made, as far as they can be, before anything is dropped.
  void PrepareOverwriting(const NameList& tables);
  void ConvertTable(const std::string& name);
  bool CreateTable(TableDefinition& table);
  /// Changes a definition that was refused so that it may be taken.
  bool Cure(TableDefinition& table, const DestinationFailure& failure);
  void TellNotes(const TableDefinition& table);
  /// How the copy of a table's rows ended, as far as the run is concerned.
  enum class Copied { AsFarAsPossible, WithRowsPostponed, Stopped };
  Copied CopyTableContent(const TableDefinition& table, bool is_new);
  void Postpone(const TableDefinition& table, std::int64_t announced, const RowAccount& account);
  /// The tables some of whose rows were postponed end here.
  void FinishPostponedTables();

  // side_by_side.cpp
  using ConnectionPair = std::pair<std::unique_ptr<ado::Connection>,   // to the source
                                   std::unique_ptr<ado::Connection>>;  // to the destination
  bool IsSideBySide(const NameList& tables) const {
    return options_.tables_at_once > 1 && tables.size() > 1;
  }
  void ConvertSideBySide(const NameList& tables);
  /// Pairs beside the conversion's own for so many tables, one at least: as many as the options
  /// want and the servers allow.
  std::vector<ConnectionPair> OpenPairs(std::size_t tables);
  /// The order that the tables of a merge must keep; none when the destination does not tell.
  std::optional<TableQueue> MergingOrder(const NameList& tables);
  /// Runs a step of the forks for each table. The first lane works over the conversion's own pair.
  void OnLanes(Lanes& lanes, std::vector<ConnectionPair>& pairs, TableQueue tables, Step step);
  std::unique_ptr<Conversion> ForkOver(ConnectionPair pair, EventRecord& record) const;
  ConnectionPair JoinFork(Conversion& fork);
  bool TryKeepConnected();

  // rehearsal.cpp
  /// A server that takes no further connection is not asked.
  void OpenTrial();
  /// Throws ProviderError, as the server would refuse it.
  void RehearseStatement(std::string_view sql);
  /// A line of the script for a person to read.
  void Remark(std::string_view text);
  void RemarkUnforeseen(std::string_view what, std::string_view why);
  /// True when the destination has a table of that name.
  bool TellWhatIsThere(const TableDefinition& table);
  /// Throws ProviderError when rows of the table share its new key.
  void TryNewKey();
  /// Why the login is denied the right, asked once.
  const std::optional<ado::ProviderError>& DenialOf(TableRight right, const ado::TableName& table);
  /// Throws DestinationFailure when it is.
  void NeedRight(TableRight right, const ado::TableName& table);
  /// Tries from now on what is said of this table, on a copy of the destination's when it is kept.
  void BeginTrial(const TableDefinition& table, bool is_kept);
  void MakeCopy(const TableDefinition& table);
  /// The rows of the trial table; none when there is no trial.
  std::unique_ptr<TrialRows> OpenTrialRows(const TableDefinition& table, bool is_new,
                                           const std::vector<ado::FieldInfo>& fields,
                                           const std::vector<ColumnFacts>& facts);
  /// How rows meet those of an existing table.
  TrialRows::Meeting MeetingWith(const TableDefinition& table,
                                 const std::vector<ado::FieldInfo>& fields);
  /// Shows examples of the values that were changed or refused.
  void ShowExamples(const IRowDestination& rows);
  std::unique_ptr<IRowDestination> Rehearse(std::unique_ptr<IRowDestination> rows,
                                            const TableDefinition& table, bool is_new,
                                            const std::vector<ado::FieldInfo>& fields,
                                            const std::vector<ColumnFacts>& facts);

  // rehearsed_relationships.cpp
  /// In overwrite mode, when the tables are planned.
  void LearnReferences();
  /// In merge mode, ahead of the first table.
  void LearnParents(const NameList& tables);
  bool IsMariaDb();
  /// True for a table that the rehearsal has made.
  bool IsMade(const ado::TableName& dest_table) const;
  /// True when rows of the source's table refer to none by its key.
  bool HasOrphans(const ado::TableName& table, const ado::Key& key);

  // generated_columns.cpp
  /// The columns that get no values, since the destination computes them or gives them itself.
  /// Tells of those that an existing table has.
  std::set<std::string> ColumnsLeftOut(const TableDefinition& table, bool is_new);
  /// The columns that are read, as they stand behind "select ".
  std::string SelectList(const TableDefinition& table, const std::set<std::string>& left_out) const;

  // verification.cpp
  void CompareEach(const NameList& tables);
  void CompareListed(const std::string& name);
  void CompareCounts(const TableDefinition& table, std::int64_t source_rows);
  void CompareValues(const TableDefinition& table, std::int64_t source_rows);
  void ReportEqual(const TableDefinition& table, std::string_view what, std::int64_t additional);
  void ReportDifference(const TableDefinition& table, std::string_view difference);

  std::int64_t CountRows(std::string_view source_name);
  static std::int64_t CountRows(ado::Connection& connection, std::string_view function,
                                std::string_view table);
  void ReportShortfall(const TableDefinition& table, std::int64_t announced, std::int64_t read);
  void ReportRows(const TableDefinition& table, std::int64_t announced, const RowAccount& account);
  void ReportChanges(const TableDefinition& table, const std::vector<ValueChanges>& changes);

  std::unique_ptr<ado::Connection> source_;
  std::unique_ptr<ado::Connection> destination_;
  ado::Catalog catalog_;  // the source's
  const std::string source_database_;
  const ConversionOptions options_;
  IConversionListener& events_;
  IRunHost& host_;
  const CopyPlan copy_;
  const ado::StatementSink rehearsal_;
  std::unique_ptr<TrialTable> trial_;  // none: this is no rehearsal, or the server takes none
  std::unique_ptr<IRehearsedServer> server_;         // none: likewise
  std::unique_ptr<RehearsedParents> parents_;        // none: likewise, or nothing is merged
  std::unique_ptr<RehearsedReferences> references_;  // none: likewise, or nothing is overwritten
  std::map<std::pair<TableRight, ado::TableName>, std::optional<ado::ProviderError>> denials_;
  std::vector<ado::TableName> rehearsed_tables_;  // that a rehearsal has made
  struct NewKey {
    ado::TableName table;
    std::string name;
    std::vector<std::string> columns;
  };
  NewKey new_key_;                           // of a table that was there: the last one
  std::set<ado::TableName> refused_tables_;  // of which rows were refused
  // Shared with the forks. It has an entry for every listed table before they begin, and each of
  // them touches the entries of its own tables only.
  std::shared_ptr<Plans> plans_ = std::make_shared<Plans>();
  std::set<ado::TableName> failed_;  // tables that were not made
  // The tables of the run by their names on the destination, in lower case.
  std::map<std::string, std::vector<ado::TableName>> tables_of_dest_;

  /// A table that waits for rows of other tables.
  struct PostponedTable {
    const TableDefinition* table;
    std::int64_t announced;
  };
  std::vector<PostponedTable> postponed_tables_;
  std::map<std::string, RowAccount> postponed_accounts_;  // by name on the destination
};

}  // namespace dorvane
