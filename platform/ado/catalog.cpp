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
  if (details_ != nullptr) return details_->columns;
  if (!columns_) columns_ = connection_->Columns(info_.name);
  return *columns_;
}

const std::vector<Index>& Table::Indexes() {
  if (details_ != nullptr) return details_->indexes;
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
  if (details_ != nullptr) return details_->keys;
  if (!keys_) {
    std::vector<Key> keys = connection_->Keys(info_.name);
    for (Key& key : keys) {
      for (KeyColumn& column : key.columns) Respell(column.name, Columns());
    }
    keys_ = std::move(keys);
  }
  return *keys_;
}

const std::vector<std::string>& Table::LeftOut() const {
  static const std::vector<std::string> kNothing;
  return details_ != nullptr ? details_->left_out : kNothing;
}

void Catalog::Read() {
  auto content = std::make_shared<Content>();
  content->infos = Tables();
  for (std::size_t i = 0; i < content->infos.size(); ++i) {
    content->listed.try_emplace(content->infos[i].name.Text(), i);
  }
  for (auto& [name, details] : connection_.AllTables()) {
    content->details[name] = std::make_shared<const TableDetails>(std::move(details));
  }
  content_ = std::move(content);
}

const TableInfo* Catalog::Find(std::string_view listed) const {
  // So that a database of thousands of tables is not searched for each of them.
  if (const auto exact = content_->listed.find(listed); exact != content_->listed.end()) {
    return &content_->infos[exact->second];
  }
  return FindItemOrNull(content_->infos, listed,
                        [](const TableInfo& info) { return info.name.Text(); });
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
  const auto details = content_->details.find(found->name);
  const bool is_told = details != content_->details.end();
  return tables_
      .try_emplace(found->name.Text(), connection_, *found, is_told ? details->second : nullptr)
      .first->second;
}

TableName Catalog::Listed(const TableName& name) {
  if (content_->infos.empty()) Read();
  const TableInfo* found = Find(name.Text());
  return found != nullptr ? found->name : name;
}

}  // namespace dorvane::ado
