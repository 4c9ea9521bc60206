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
  const bool is_fresh = infos_.empty();
  if (is_fresh) infos_ = Tables();
  const TableInfo* found = FindItemOrNull(infos_, name);
  if (found == nullptr && !is_fresh) {
    // It may have been created since.
    infos_ = Tables();
    found = FindItemOrNull(infos_, name);
  }
  if (found == nullptr) ThrowItemNotFound("ADOX.Tables");
  return tables_.try_emplace(found->name, connection_, *found).first->second;
}

}  // namespace dorvane::ado
