#include "platform/ado/odbc/bulk_writer.h"

#include <fmt/format.h>
#include <sqlext.h>

#include <algorithm>

#include "platform/ado/odbc/catalog_rows.h"
#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

std::vector<BulkColumnFacts> ReadFacts(const std::shared_ptr<Logon>& logon,
                                       std::string_view table) {
  const auto rows = ReadCatalog(
      logon,
      fmt::format("select name, type_name(system_type_id) as type_name, column_id, max_length, "
                  "\"precision\" as digits, scale, is_nullable, is_identity, is_computed, "
                  "convert(int, collationproperty(collation_name, 'CodePage')) as code_page "
                  "from sys.columns where object_id = object_id('{}') order by column_id",
                  text::Doubled(table, '\'')));
  std::vector<BulkColumnFacts> facts;
  for (const CatalogRow& row : rows) {
    facts.push_back({.name = row.Text("name"),
                     .type = row.Text("type_name"),
                     .ordinal = static_cast<int>(facts.size()) + 1,
                     .max_bytes = row.Number("max_length"),
                     .precision = row.Number("digits"),
                     .scale = row.Number("scale"),
                     .is_nullable = row.Number("is_nullable") != 0,
                     .is_identity = row.Number("is_identity") != 0,
                     .is_computed = row.Number("is_computed") != 0,
                     .code_page = row.Number("code_page")});
  }
  return facts;
}

[[noreturn]] void ThrowNotLoaded(std::string_view what, std::string_view name) {
  throw LibraryError(hresult::kFail, fmt::format("{} {} takes no bulk load.", what, name));
}

}  // namespace

BulkWriter::BulkWriter(std::shared_ptr<Logon> logon, std::string_view table,
                       const std::vector<std::string>& columns)
    : logon_(std::move(logon)),
      functions_(FindBulkFunctions(logon_->Connection())),
      table_(ToUtf16(table)) {
  if (functions_ == nullptr) ThrowNotLoaded("The driver of table", table);
  const std::vector<BulkColumnFacts> facts = ReadFacts(logon_, table);
  // A column that gets no value would get NULL instead of its default.
  if (facts.size() != columns.size()) ThrowNotLoaded("Table", table);
  for (const std::string& name : columns) {
    const auto found = std::ranges::find_if(facts, [&name](const BulkColumnFacts& each) {
      return text::EqualsIgnoringCase(each.name, name);
    });
    if (found == facts.end() || found->is_computed) ThrowNotLoaded("Column", name);
    std::optional<BulkColumn> column = BulkColumn::Of(*found);
    if (!column) ThrowNotLoaded("Column", name);
    keeps_identity_ = keeps_identity_ || found->is_identity;
    columns_.push_back(std::move(*column));
  }
}

bool BulkWriter::Takes(std::span<const Value> row) const {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!columns_[i].Takes(row[i])) return false;
  }
  return true;
}

void BulkWriter::Insert(const RowBlock& rows, std::size_t first, std::size_t count) {
  logon_->Watch([&] { Load(rows, first, count); });
}

void BulkWriter::Load(const RowBlock& rows, std::size_t first, std::size_t count) {
  functions_->Init(table_, keeps_identity_);
  for (const BulkColumn& column : columns_) {
    functions_->Bind(column.Cell(), column.Type(), column.Ordinal());
  }
  try {
    SendRows(rows, first, count);
  } catch (const ProviderError&) {
    try {
      functions_->Done();  // else the connection takes no other statement
    } catch (const ProviderError&) {
      // The first failure says why.
    }
    throw;
  }
  functions_->Done();
}

void BulkWriter::SendRows(const RowBlock& rows, std::size_t first, std::size_t count) {
  for (std::size_t position = first; position < first + count; ++position) {
    const std::span<const Value> row = rows.Row(position);
    for (std::size_t i = 0; i < row.size(); ++i) columns_[i].Put(row[i]);
    functions_->SendRow();
  }
}

}  // namespace dorvane::ado::odbc
