// What a rehearsal knows of the relationships between tables.

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/conversion.h"
#include "endpoint/names.h"
#include "platform/ado/errors.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

[[noreturn]] void ThrowRefusal(ServerKind server, std::int32_t number, const std::string& words,
                               std::int32_t hresult) {
  const ado::ProviderError refusal = Refusal(server, number, words, hresult);
  throw DestinationFailure(refusal, refusal.Entries());
}

}  // namespace

void Conversion::LearnReferences() {
  try {
    std::set<ado::TableName> tables;
    for (const auto& [name, planned] : *plans_) {
      if (planned.definition) tables.insert(planned.definition->dest_name);
    }
    references_ = std::make_unique<RehearsedReferences>(DestinationKind(), IsMariaDb(),
                                                        FoldsTableNames(), DestReferences(tables));
  } catch (const RunTimeError&) {
    // The conversion tells of what it cannot read.
  }
}

bool Conversion::IsMariaDb() {
  if (DestinationKind() != ServerKind::MySql) return false;
  ado::Recordset version = destination_->Execute("select version()");
  return !version.AtEnd() && version.Field(0).Text().find("MariaDB") != std::string::npos;
}

void Conversion::LearnParents(const NameList& tables) {
  if (!trial_ || !options_.copy_table_content) return;
  OrphanRule rule = OrphanRule::Postponed;
  if (DestinationKind() == ServerKind::MySql) {
    rule = options_.convert_relationships ? OrphanRule::Stored : OrphanRule::Refused;
  }
  auto parents = std::make_unique<RehearsedParents>(*trial_, *server_, rule);
  try {
    for (const std::string& name : tables) {
      const ado::TableName table = DestTableOf(name);
      parents->Add(table, trial_->Connection().Keys(table));
    }
    parents_ = std::move(parents);
  } catch (const RunTimeError& error) {
    RemarkUnforeseen("rows whose parents are missing", error.Description());
  }
}

std::string Conversion::OrphansOf(const ado::TableName& dest_name, const ado::Key& key,
                                  const std::string& query) {
  const auto foreseen = parents_ ? parents_->Orphans(dest_name, key) : std::nullopt;
  return foreseen ? std::to_string(*foreseen) : destination_->Execute(query).Field(0).Text();
}

bool Conversion::IsMade(const ado::TableName& dest_table) const {
  return std::ranges::any_of(rehearsed_tables_, [&](const ado::TableName& made) {
    return text::EqualsIgnoringCase(made.Text(), dest_table.Text());
  });
}

void Conversion::RehearseRelationship(const std::string& name, const ado::TableName& table,
                                      const ado::TableName& referenced) {
  if (!IsRehearsing()) return;
  // A server asks for the rights first.
  NeedRight(TableRight::Alter, table);
  NeedRight(TableRight::Refer, referenced);
  if (IsMade(referenced)) return;
  if (!IsToBeDropped(referenced) && !destination_->Columns(referenced).empty()) return;
  const bool is_ms_sql = DestinationKind() == ServerKind::MsSql;
  const std::int32_t hresult = is_ms_sql ? ado::hresult::kErrorsInCommand : ado::hresult::kFail;
  const auto refuse = [&](std::int32_t number, const std::string& words) {
    ThrowRefusal(DestinationKind(), number, words, hresult);
  };
  if (is_ms_sql) {
    refuse(1767,
           fmt::format("Foreign key '{}' references invalid table '{}'.", name, referenced.Text()));
  }
  if (!IsMariaDb()) {
    refuse(1824, fmt::format("Failed to open the referenced table '{}'", referenced.name));
  }
  const std::string database = destination_->Execute("select database()").Field(0).Text();
  refuse(1005, fmt::format("Can't create table `{}`.`{}` (errno: 150 \"Foreign key constraint is "
                           "incorrectly formed\")",
                           table.IsBare() ? database : table.schema, table.name));
}

bool Conversion::HasOrphans(const ado::TableName& table, const ado::Key& key) {
  // SQL Server tells of keys that not every row was checked against, MySQL does not.
  if (DestinationKind() == ServerKind::MySql && key.is_trusted) return false;
  std::string is_set;
  std::string is_parent;
  for (const ado::KeyColumn& column : key.columns) {
    const std::string name = SourceName(column.name);
    is_set += fmt::format("c.{} is not null and ", name);
    is_parent += fmt::format("{}p.{} = c.{}", is_parent.empty() ? "" : " and ",
                             SourceName(column.related_column), name);
  }
  ado::Recordset answer = source_->Execute(
      fmt::format("select case when exists (select 1 from {} c where {}not exists (select 1 from "
                  "{} p where {})) then 1 else 0 end",
                  SourceName(table), is_set, SourceName(key.related_table), is_parent));
  return !answer.AtEnd() && answer.Field(0).Text() == "1";
}

void Conversion::RehearseRelatedRows(const ado::TableName& table, const ado::Key& key) {
  if (!IsRehearsing() || !server_ || !options_.copy_table_content) return;
  const ado::TableName dest_table = DestTable(table);
  const ado::TableName dest_related = DestTable(key.related_table);
  std::string why;
  for (const ado::TableName& each : {dest_table, dest_related}) {
    if (!IsMade(each)) why = each.Text() + " is there from before";
  }
  if (refused_tables_.contains(key.related_table)) {
    why = fmt::format("rows of {} are refused", key.related_table.Text());
  }
  if (!why.empty()) {
    RemarkUnforeseen(fmt::format("whether relationship {} can be made", key.name), why);
  } else if (HasOrphans(table, key)) {
    ado::Key made = key;  // as it is on the destination
    made.related_table = dest_related;
    for (ado::KeyColumn& column : made.columns) {
      column = {DestName(column.name), DestName(column.related_column)};
    }
    const ErrorSummary refusal = server_->LackOfParents(dest_table, made);
    const bool is_ms_sql = DestinationKind() == ServerKind::MsSql;
    ThrowRefusal(DestinationKind(), refusal.number, refusal.description,
                 is_ms_sql ? ado::hresult::kIntegrityViolation : ado::hresult::kErrorsInCommand);
  }
}

}  // namespace dorvane
