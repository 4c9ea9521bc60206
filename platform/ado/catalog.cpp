#include "platform/ado/catalog.h"

#include "platform/ado/items.h"

namespace dorvane::ado {

const std::vector<Column>& Table::Columns() {
  if (!columns_) columns_ = connection_->Columns(info_.name);
  return *columns_;
}

const std::vector<Index>& Table::Indexes() {
  if (!indexes_) indexes_ = connection_->Indexes(info_.name);
  return *indexes_;
}

const std::vector<Key>& Table::Keys() {
  if (!keys_) keys_ = connection_->Keys(info_.name);
  return *keys_;
}

Table& Catalog::TableByName(std::string_view name) {
  if (const auto known = tables_.find(name); known != tables_.end()) return known->second;
  // Read afresh for every name not met before: tables may have been created since.
  const std::vector<TableInfo> infos = Tables();
  const TableInfo& found = FindItem(infos, name, "ADOX.Tables");
  return tables_.try_emplace(found.name, connection_, found).first->second;
}

}  // namespace dorvane::ado
