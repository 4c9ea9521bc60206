#include "endpoint/rehearsed_rights.h"

#include <algorithm>
#include <array>

#include "endpoint/names.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

struct RightOfWord {
  std::string_view word;
  TableRight right;
};
constexpr std::array kRights{
    RightOfWord{"create table ", TableRight::Create},
    RightOfWord{"alter table ", TableRight::Alter},
    RightOfWord{"drop table if exists ", TableRight::Drop},
    RightOfWord{"drop table ", TableRight::Drop},
    RightOfWord{"create index ", TableRight::Index},
    RightOfWord{"create unique index ", TableRight::Index},
};

}  // namespace

std::optional<std::pair<TableRight, ado::TableName>> NeededRight(std::string_view sql) {
  const auto* found = std::ranges::find_if(kRights, [&](const RightOfWord& each) {
    return text::EqualsIgnoringCase(sql.substr(0, each.word.size()), each.word);
  });
  if (found == kRights.end()) return std::nullopt;
  sql.remove_prefix(found->word.size());
  if (found->right == TableRight::Index) {
    constexpr std::string_view kOn = " on ";
    TakeTableName(sql);
    sql.remove_prefix(std::min(sql.find(kOn), sql.size()));
    sql.remove_prefix(std::min(kOn.size(), sql.size()));
  }
  sql.remove_prefix(std::min(sql.find_first_not_of(' '), sql.size()));
  return std::pair(found->right, TakeTableName(sql));
}

}  // namespace dorvane
