#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "endpoint/conversion.h"
#include "endpoint/database.h"

namespace dorvane {

/// What both endpoints do alike: they hold the settings, open connections with them and start a
/// conversion.
class DatabaseBase : public IDatabase {
 public:
  const ado::ConnectionSettings& Settings() const override { return settings_; }
  void SetSettings(ado::ConnectionSettings settings) override { settings_ = std::move(settings); }
  const ConversionOptions& Options() const override { return options_; }
  void SetOptions(ConversionOptions options) override { options_ = options; }
  void SetListener(IConversionListener* listener) override { listener_ = listener; }

  std::unique_ptr<ado::Connection> OpenConnection(bool with_db_name) override;
  std::vector<TableSize> GetTableSizes() override;
  std::optional<ServerInfo> GetServerInfo() override;
  void CompareWithDest(IDatabase& dest, const NameList& src_tables) override;
  void TransferToDest(IDatabase& dest, const NameList& src_tables) override;
  void RehearseTransfer(IDatabase& dest, const NameList& src_tables,
                        const ado::StatementSink& statements) override;

 protected:
  /// `host` must outlive the endpoint.
  DatabaseBase(IRunHost& host, ado::ProviderLookup providers);

  IRunHost& Host() { return host_; }
  IConversionListener& Events();

 private:
  /// Schema (empty: the default one, or none), name, rows and bytes of each table of the database.
  virtual std::string_view SizesQuestion() const = 0;
  /// Throws RunTimeError.
  virtual ServerInfo AskServerInfo(ado::Connection& connection) const = 0;
  /// None when there is nothing to report.
  virtual std::optional<ConnectionFailure> DescribeConnectionFailure(
      const RunTimeError& error, const ado::Connection& connection) const = 0;
  /// The conversion of this kind of source.
  virtual std::unique_ptr<Conversion> MakeConversion(Conversion::Context context) = 0;
  /// A part of a conversion.
  using Part = void (Conversion::*)(const NameList& src_tables);
  /// Opens both connections and runs that part; as a rehearsal when there is a sink.
  void RunConversion(IDatabase& dest, const NameList& src_tables, Part part,
                     const ConversionOptions& options, const ado::StatementSink& rehearsal);

  IRunHost& host_;
  ado::ProviderLookup providers_;
  IConversionListener* listener_ = nullptr;
  ado::ConnectionSettings settings_;
  ConversionOptions options_;
};

/// A message by native error number, for tables of them.
struct NativeMessage {
  std::int32_t native_error;
  std::string_view text;
};

/// The text of a native error in a table, or none.
template <typename Table>
std::optional<std::string_view> FindMessage(const Table& table, std::int32_t native_error) {
  for (const NativeMessage& row : table) {
    if (row.native_error == native_error) return row.text;
  }
  return std::nullopt;
}

}  // namespace dorvane
