#include "endpoint/database_base.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace dorvane {

namespace {

/// Stands in while no listener is attached.
class SilentListener : public IConversionListener {
  void ErrorOccured(std::string_view, std::int32_t, std::string_view) override {}
  void ConversionStarted(std::int16_t, bool) override {}
  void ConversionEnded() override {}
  void TableConversionSuccessed(std::string_view) override {}
  void TableConversionFailed(std::string_view) override {}
  void TableContentTransferStarted(std::string_view, std::int32_t) override {}
  void TableRecordConverted() override {}
  void TableConversionStarted(std::string_view) override {}
  void TableRelationsConversionStarted(std::string_view) override {}
};

/// A person should know where whoever is on the way can read along.
void TellExposure(IRunHost& host, std::string_view side, const IDatabase& endpoint,
                  const ado::Connection& connection) {
  if (!connection.IsExposed()) return;
  host.Inform(
      fmt::format("The connection to the {} server {} is not encrypted", side, endpoint.Server()));
}

std::int64_t NumberOf(ado::Field& field) {
  const std::string text = field.IsNull() ? "" : field.Text();
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::int16_t TableCount(const NameList& tables) {
  constexpr std::size_t kMost = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::min(tables.size(), kMost));
}

}  // namespace

DatabaseBase::DatabaseBase(IRunHost& host, ado::ProviderLookup providers)
    : host_(host), providers_(std::move(providers)) {}

IConversionListener& DatabaseBase::Events() {
  static SilentListener silent;
  return listener_ != nullptr ? *listener_ : silent;
}

std::unique_ptr<ado::Connection> DatabaseBase::OpenConnection(bool with_db_name) {
  auto connection = std::make_unique<ado::Connection>(providers_(Kind()));
  ado::ConnectionSettings settings = settings_;
  if (!with_db_name) settings.database.clear();
  try {
    connection->Open(std::move(settings));
    return connection;
  } catch (const RunTimeError& error) {
    if (const auto failure = DescribeConnectionFailure(error, *connection)) {
      host_.ConnectionFailed(*failure);
    }
    return nullptr;
  }
}

std::vector<TableSize> DatabaseBase::GetTableSizes() {
  try {
    ado::Connection connection(providers_(Kind()));
    connection.Open(settings_);
    std::vector<TableSize> sizes;
    for (ado::Recordset rows = connection.Execute(SizesQuestion()); !rows.AtEnd();
         rows.MoveNext()) {
      const ado::TableName name(rows.Field(0).Text(), rows.Field(1).Text());
      sizes.push_back({name.Text(), NumberOf(rows.Field(2)), NumberOf(rows.Field(3))});
    }
    return sizes;
  } catch (const RunTimeError&) {
    return {};
  }
}

std::optional<ServerInfo> DatabaseBase::GetServerInfo() {
  try {
    ado::Connection connection(providers_(Kind()));
    ado::ConnectionSettings settings = settings_;
    settings.database.clear();
    connection.Open(std::move(settings));
    return AskServerInfo(connection);
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
}

void DatabaseBase::CompareWithDest(IDatabase& dest, const NameList& src_tables) {
  RunConversion(dest, src_tables, &Conversion::Compare, options_, nullptr);
}

void DatabaseBase::TransferToDest(IDatabase& dest, const NameList& src_tables) {
  RunConversion(dest, src_tables, &Conversion::Run, options_, nullptr);
}

void DatabaseBase::RehearseTransfer(IDatabase& dest, const NameList& src_tables,
                                    const ado::StatementSink& statements) {
  ConversionOptions options = options_;
  options.verification = Verification::None;  // there is nothing to compare
  options.tables_at_once = 1;                 // the statements of a table stand together
  RunConversion(dest, src_tables, &Conversion::Run, options, statements);
}

void DatabaseBase::RunConversion(IDatabase& dest, const NameList& src_tables, Part part,
                                 const ConversionOptions& options,
                                 const ado::StatementSink& rehearsal) {
  Events().ConversionStarted(TableCount(src_tables), options.convert_relationships);
  auto source = OpenConnection(true);
  if (!source) return;
  auto destination = dest.OpenConnection(true);
  if (!destination) return;
  TellExposure(host_, "source", *this, *source);
  TellExposure(host_, "destination", dest, *destination);
  const std::unique_ptr<Conversion> conversion =
      MakeConversion({.source = std::move(source),
                      .destination = std::move(destination),
                      .source_database = DbName(),
                      .options = options,
                      .events = Events(),
                      .host = host_,
                      .rehearsal = rehearsal});
  (conversion.get()->*part)(src_tables);
  Events().ConversionEnded();
}

}  // namespace dorvane
