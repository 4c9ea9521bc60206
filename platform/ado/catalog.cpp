#include "platform/ado/catalog.h"

#include "platform/ado/items.h"

namespace dorvane::ado {

namespace {

/// A server may spell a column differently in its lists.
void Respell(std::string& name, const std::vector<Column>& columns) {
  if (const Column* column = FindItemOrNull(columns, name)) name = column->name;
}

}  // namespace

const std::vector<Column>& Table::Columns() {
  if (!columns_) columns_ = connection_->Columns(info_.name);
  return *columns_;
}

const std::vector<Index>& Table::Indexes() {
  if (!indexes_) {
    std::vector<Index> indexes = connection_->Indexes(info_.name);
    for (Index& index : indexes) {
      for (std::string& name : index.columns) Respell(name, Columns());
    }
    indexes_ = std::move(indexes);
  }
  return *indexes_;
}

const std::vector<Key>& Table::Keys() {
  if (!keys_) {
    std::vector<Key> keys = connection_->Keys(info_.name);
    for (Key& key : keys) {
      for (KeyColumn& column : key.columns) Respell(column.name, Columns());
    }
    keys_ = std::move(keys);
  }
  return *keys_;
}

void Catalog::Read() {
  infos_ = Tables();
  listed_.clear();
  for (std::size_t i = 0; i < infos_.size(); ++i) listed_.try_emplace(infos_[i].name.Text(), i);
  details_ = connection_.AllTables();
}

const TableInfo* Catalog::Find(std::string_view listed) const {
  // So that a database of thousands of tables is not searched for each of them.
  if (const auto exact = listed_.find(listed); exact != listed_.end()) {
    return &infos_[exact->second];
  }
  return FindItemOrNull(infos_, listed, [](const TableInfo& info) { return info.name.Text(); });
}

Table& Catalog::TableByName(std::string_view listed) {
  if (const auto known = tables_.find(listed); known != tables_.end()) return known->second;
  const TableInfo* found = Find(listed);
  if (found == nullptr) {
    // The first question, or it may have been created since.
    Read();
    found = Find(listed);
  }
  if (found == nullptr) ThrowItemNotFound("ADOX.Tables");
  const std::string text = found->name.Text();
  if (const auto known = tables_.find(text); known != tables_.end()) return known->second;
  auto details = details_.extract(found->name);
  if (details.empty()) return tables_.try_emplace(text, connection_, *found).first->second;
  return tables_.try_emplace(text, connection_, *found, std::move(details.mapped())).first->second;
}

TableName Catalog::Listed(const TableName& name) {
  if (infos_.empty()) Read();
  const TableInfo* found = Find(name.Text());
  return found != nullptr ? found->name : name;
}

}  // namespace dorvane::ado
