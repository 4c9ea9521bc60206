#include "endpoint/table_queue.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "platform/text/ascii.h"

namespace dorvane {

TableQueue::TableQueue(NameList tables) {
  for (std::string& table : tables) waiting_.push_back({std::move(table), {}});
}

TableQueue::TableQueue(NameList tables, const std::vector<ado::TableName>& dest_names,
                       const std::vector<Reference>& references)
    : TableQueue(std::move(tables)) {
  std::map<std::string, std::set<std::size_t>> positions;  // a folding server may have several
  for (std::size_t i = 0; i < dest_names.size(); ++i) {
    positions[text::ToLower(dest_names[i].Text())].insert(i);
  }
  for (const Reference& reference : references) {
    for (const std::size_t one : positions[text::ToLower(reference.table.Text())]) {
      for (const std::size_t other : positions[text::ToLower(reference.referenced.Text())]) {
        const auto [first, second] = std::minmax(one, other);
        if (first != second) waiting_[second].blockers.push_back(waiting_[first].table);
      }
    }
  }
}

std::optional<std::string> TableQueue::Begin() {
  const auto next = std::ranges::find_if(
      waiting_, [](const Waiting& waiting) { return waiting.blockers.empty(); });
  if (next == waiting_.end()) return std::nullopt;
  std::string table = std::move(next->table);
  waiting_.erase(next);
  return table;
}

void TableQueue::End(const std::string& table) {
  for (Waiting& waiting : waiting_) std::erase(waiting.blockers, table);
}

}  // namespace dorvane
