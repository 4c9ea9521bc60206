#include "endpoint/definition_statement.h"

#include <algorithm>
#include <array>
#include <utility>

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
    RightOfWord{"create database ", TableRight::MakeSchema},
    RightOfWord{"create schema ", TableRight::MakeSchema},
};

}  // namespace

std::optional<DefinitionStatement> ReadDefinition(std::string_view sql) {
  const auto* found = std::ranges::find_if(kRights, [&](const RightOfWord& each) {
    return text::EqualsIgnoringCase(sql.substr(0, each.word.size()), each.word);
  });
  if (found == kRights.end()) return std::nullopt;
  std::string_view rest = sql.substr(found->word.size());
  if (found->right == TableRight::Index) {
    constexpr std::string_view kOn = " on ";
    TakeTableName(rest);
    rest.remove_prefix(std::min(rest.find(kOn), rest.size()));
    rest.remove_prefix(std::min(kOn.size(), rest.size()));
  }
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  const std::size_t begin = sql.size() - rest.size();
  ado::TableName table = TakeTableName(rest);
  return DefinitionStatement{found->right, std::move(table), begin, sql.size() - rest.size()};
}

}  // namespace dorvane
