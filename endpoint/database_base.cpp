#include "endpoint/database_base.h"

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

template <typename Narrow>
Narrow Clamped(std::uint64_t count) {
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<Narrow>::max());
  return static_cast<Narrow>(std::min(count, kMax));
}

}  // namespace

DatabaseBase::DatabaseBase(IRunHost& host, ado::ProviderLookup providers)
    : host_(host), providers_(std::move(providers)) {}

IConversionListener& DatabaseBase::Events() {
  static SilentListener silent;
  return listener_ != nullptr ? *listener_ : silent;
}

void DatabaseBase::RaiseError(std::string_view message, std::string_view title,
                              std::int32_t style) {
  Events().ErrorOccured(message, style, title);
}

std::string DatabaseBase::DestName(std::string_view name) const {
  std::string dest_name(name);
  if (replace_space_) std::replace(dest_name.begin(), dest_name.end(), ' ', '_');
  return dest_name;
}

ado::ConnectionSettings DatabaseBase::LogonSettings(bool with_db_name) const {
  ado::ConnectionSettings settings;
  settings.server = server_;
  settings.port = port_no_;
  settings.user_id = user_id_;
  settings.password = password_;
  if (with_db_name) settings.database = db_name_;
  return settings;
}

std::unique_ptr<ado::Connection> DatabaseBase::OpenConnection(bool with_db_name) {
  auto connection = std::make_unique<ado::Connection>(providers_);
  try {
    PrepareConnection(*connection, with_db_name);
    connection->Open();
    return connection;
  } catch (const RunTimeError& error) {
    if (const auto failure = DescribeConnectionFailure(error, *connection)) {
      host_.ConnectionFailed(*failure);
    }
    return nullptr;
  }
}

std::optional<NameList> DatabaseBase::GetDatabases() {
  const auto connection = OpenConnection(false);
  if (!connection) return std::nullopt;
  try {
    NameList names = ReadDatabases(*connection);
    connection->Close();
    return names;
  } catch (const RunTimeError& error) {
    ReportListingFailure(error, connection->Errors());
    return std::nullopt;
  }
}

bool DatabaseBase::CreateDatabase(const std::string& name) {
  const auto connection = OpenConnection(false);
  if (!connection) return false;
  try {
    connection->Execute(CreateDatabaseStatement(name));
    return true;
  } catch (const RunTimeError& error) {
    ReportCreationFailure(name, error, connection->Errors());
    return false;
  }
}

std::optional<NameList> DatabaseBase::GetTablesFromDatabase() {
  const auto connection = OpenConnection(true);
  if (!connection) return std::nullopt;
  NameList names;
  for (const ado::TableInfo& table : ado::Catalog(*connection).Tables()) {
    if (IsListed(table)) names.push_back(table.name);
  }
  connection->Close();
  return names;
}

void DatabaseBase::TransferToDest(IDatabase& dest, const NameList& src_tables) {
  Events().ConversionStarted(Clamped<std::int16_t>(src_tables.size()), convert_relationships_);

  Transfer transfer;
  transfer.source = OpenConnection(true);
  if (!transfer.source) return;
  transfer.destination = dest.OpenConnection(true);
  if (!transfer.destination) return;
  transfer.catalog.emplace(*transfer.source);

  // The steps find the transfer in the endpoint; whatever ends them, nothing of it stays behind.
  struct Release {
    std::optional<Transfer>& transfer;
    ~Release() { transfer.reset(); }
  };
  {
    const Release release{transfer_};
    transfer_.emplace(std::move(transfer));
    ConvertListedTables(src_tables);
    Source().Close();
    Destination().Close();
  }
  Events().ConversionEnded();
}

void DatabaseBase::ConvertListedTables(const NameList& src_tables) {
  PrepareDestination(src_tables);
  for (const std::string& name : src_tables) {
    if (host_.IsStopping()) return;
    Events().TableConversionStarted(name);
    ConvertTable(name);
  }
  if (!convert_relationships_) return;
  for (const std::string& name : src_tables) {
    if (host_.IsStopping()) return;
    RelateTable(name);
  }
}

bool DatabaseBase::CopyRows(ado::Recordset& source, IRowDestination& rows) {
  RowCopier copier(rows, Events(), host_, copy_strategy_, block_limits_);
  return copier.Copy([&source](ado::RowBlock& block) { return source.GetRows(block); });
}

std::int32_t DatabaseBase::CountRows(std::string_view sql) {
  const std::string text = Source().Execute(sql).Field("Rows_No").Text();
  std::uint64_t count = 0;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return Clamped<std::int32_t>(count);
}

}  // namespace dorvane
