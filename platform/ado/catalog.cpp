#include "platform/ado/catalog.h"

#include <algorithm>

#include "platform/text/number_text.h"

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
  auto found = std::ranges::find(infos, name, &TableInfo::name);
  if (found == infos.end()) {
    found = std::ranges::find_if(
        infos, [&](const TableInfo& info) { return text::EqualsIgnoringCase(info.name, name); });
  }
  if (found == infos.end()) {
    throw RunTimeError(kItemNotFound, "ADOX.Tables",
                       "Item cannot be found in the collection corresponding to the requested "
                       "name or ordinal.");
  }
  return tables_.try_emplace(found->name, connection_, *found).first->second;
}

}  // namespace dorvane::ado
