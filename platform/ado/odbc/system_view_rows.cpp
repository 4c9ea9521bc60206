#include "platform/ado/odbc/system_view_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/ado/odbc/described_column.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

// The number of every type that is an object in .NET, the spatial ones among them.
constexpr std::int64_t kObjectType = 240;

/// The size that ODBC's catalog function would tell: characters, bytes or digits.
DeclaredSize SizeOf(std::string_view type, std::int64_t max_length, std::int64_t precision,
                    std::int64_t scale) {
  if (type == "nchar" || type == "nvarchar") return {max_length / 2};
  const bool is_number = type == "decimal" || type == "numeric";
  return {is_number ? precision : max_length, static_cast<int>(scale)};
}

struct IndexRow {
  enum At : std::size_t {
    kObject,
    kName,
    kType,
    kTypeWords,
    kIsUnique,
    kIsPrimary,
    kIsDisabled,
    kIsHypothetical,
    kFilter,
    kColumn,
    kIsDescending
  };
};

constexpr std::array<std::int64_t, 3> kPlainIndexes = {1, 2, 7};  // clustered, not, hashed

/// Why the index is none to make again; empty for one that is.
std::string WhyLeftOut(const QueryRow& row) {
  if (row.Flag(IndexRow::kIsDisabled)) return "it is disabled";
  if (row.Flag(IndexRow::kIsHypothetical)) return "it is hypothetical";
  const bool is_plain =
      std::ranges::find(kPlainIndexes, row.Number(IndexRow::kType)) != kPlainIndexes.end();
  return is_plain ? "" : "its type is " + text::ToLower(row.Text(IndexRow::kTypeWords));
}

// By the number that the server has for each.
constexpr std::array kRules = {RuleType::None, RuleType::Cascade, RuleType::SetNull,
                               RuleType::SetDefault};

RuleType ToRule(std::int64_t action) {
  const auto i = static_cast<std::size_t>(action);
  return i < kRules.size() ? kRules[i] : RuleType::None;
}

}  // namespace

void AddColumnRow(const QueryRow& row, TableDetails& details) {
  enum At : std::size_t {
    kObject,
    kName,
    kSystemType,
    kMaxLength,
    kPrecision,
    kScale,
    kIsNullable,
    kBaseType,
    kAliasType,
    kDefault,
    kCollation,
    kComputed,
    kIsPersisted,
    kIsIdentity,
    kSeed,
    kIncrement,
    kLast,
    kIsMasked,
    kIsHidden,
    kGenerated
  };
  const std::string type = row.Text(kBaseType);
  Column column = DescribeColumn(
      {.name = row.Text(kName),
       .type_name = type,
       .type_code = row.Number(kSystemType) == kObjectType ? kSqlUserDefined : SQLSMALLINT{0},
       .size = SizeOf(type, row.Number(kMaxLength), row.Number(kPrecision), row.Number(kScale)),
       .is_nullable = row.Flag(kIsNullable),
       .default_expression = row.OptionalText(kDefault)});
  if (row.Flag(kIsIdentity)) {
    column.identity = Identity{row.Text(kSeed), row.Text(kIncrement), row.Text(kLast)};
  }
  column.kind = {.base_type = type,
                 .alias_type = row.Text(kAliasType),
                 .collation = row.Text(kCollation),
                 .computed = row.Text(kComputed),
                 .is_given = !row.Text(kComputed).empty() || row.Number(kGenerated) != 0 ||
                             type == "timestamp",
                 .is_persisted = row.Flag(kIsPersisted),
                 .is_masked = row.Flag(kIsMasked),
                 .is_hidden = row.Flag(kIsHidden),
                 .generated_always = static_cast<int>(row.Number(kGenerated))};
  details.columns.push_back(std::move(column));
}

void AddIndexRow(const QueryRow& row, TableDetails& details) {
  const std::string name = row.Text(IndexRow::kName);
  if (const std::string why = WhyLeftOut(row); !why.empty()) {
    std::string note = fmt::format("index {} was left out: {}", name, why);
    if (details.left_out.empty() || details.left_out.back() != note) {
      details.left_out.push_back(std::move(note));
    }
    return;
  }
  if (details.indexes.empty() || details.indexes.back().name != name) {
    details.indexes.push_back({.name = name,
                               .primary_key = row.Flag(IndexRow::kIsPrimary),
                               .unique = row.Flag(IndexRow::kIsUnique),
                               .columns = {},
                               .filter = row.Text(IndexRow::kFilter)});
  }
  Index& index = details.indexes.back();
  index.is_descending |= row.Flag(IndexRow::kIsDescending);
  std::string column = row.Text(IndexRow::kColumn);
  if (std::ranges::find(index.columns, column) == index.columns.end()) {
    index.columns.push_back(std::move(column));
  }
}

void AddKeyRow(const QueryRow& row, TableDetails& details) {
  enum At : std::size_t {
    kObject,
    kName,
    kColumn,
    kSchema,
    kTable,
    kRelatedColumn,
    kOnDelete,
    kOnUpdate,
    kIsDisabled,
    kIsNotTrusted
  };
  const std::string name = row.Text(kName);
  if (details.keys.empty() || details.keys.back().name != name) {
    details.keys.push_back({.name = name,
                            .type = KeyType::Foreign,
                            .related_table = {row.Text(kSchema), row.Text(kTable)},
                            .delete_rule = ToRule(row.Number(kOnDelete)),
                            .update_rule = ToRule(row.Number(kOnUpdate)),
                            .columns = {},
                            .is_disabled = row.Flag(kIsDisabled),
                            .is_trusted = !row.Flag(kIsNotTrusted)});
  }
  details.keys.back().columns.push_back({row.Text(kColumn), row.Text(kRelatedColumn)});
}

void CompleteKeys(TableDetails& details) {
  std::ranges::stable_sort(details.keys, {}, &Key::name);
  const auto primary = std::ranges::find(details.indexes, true, &Index::primary_key);
  if (primary == details.indexes.end()) return;
  Key key{.name = primary->name, .columns = {}};
  for (const std::string& column : primary->columns) key.columns.push_back({column, ""});
  details.keys.insert(details.keys.begin(), std::move(key));
}

}  // namespace dorvane::ado::odbc
