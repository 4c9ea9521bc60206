#include "platform/ado/odbc/catalog_reader.h"

namespace dorvane::ado::odbc {

const CatalogReader::Catalog& CatalogReader::Opened() {
  if (catalog_) return *catalog_;
  if (std::optional<SystemViews> views = SystemViews::Find(logon_)) {
    catalog_ = *std::move(views);
  } else {
    catalog_ = DriverCatalog(logon_);
  }
  return *catalog_;
}

std::vector<TableInfo> CatalogReader::Tables() {
  return std::visit([](const auto& catalog) { return catalog.Tables(); }, Opened());
}

std::vector<Column> CatalogReader::Columns(const TableName& table) {
  return std::visit([&](const auto& catalog) { return catalog.Columns(table); }, Opened());
}

std::vector<Index> CatalogReader::Indexes(const TableName& table) {
  return std::visit([&](const auto& catalog) { return catalog.Indexes(table); }, Opened());
}

std::vector<Key> CatalogReader::Keys(const TableName& table) {
  return std::visit([&](const auto& catalog) { return catalog.Keys(table); }, Opened());
}

std::map<TableName, TableDetails> CatalogReader::AllTables() {
  const auto* views = std::get_if<SystemViews>(&Opened());
  return views != nullptr ? views->AllTables() : std::map<TableName, TableDetails>();
}

}  // namespace dorvane::ado::odbc
