#include "endpoint/row_identity.h"

#include <algorithm>

namespace dorvane {

namespace {

using ado::DataType;

/// Values that arrive as they are; a moment may lose its fraction, a float its last digits.
bool IsExact(DataType type) {
  switch (type) {
    case DataType::Single:
    case DataType::Double:
    case DataType::Date:
    case DataType::DBDate:
    case DataType::DBTime:
    case DataType::DBTimeStamp:
      return false;
    default:
      return true;
  }
}

/// The primary key, else a key that tells rows apart; null when there is neither.
const ado::Index* RowKey(const std::vector<ado::Index>& indexes) {
  const auto primary = std::ranges::find(indexes, true, &ado::Index::primary_key);
  if (primary != indexes.end()) return &*primary;
  const auto is_whole = [](const ado::Index& index) {
    return index.unique && index.filter.empty();
  };
  const auto unique = std::ranges::find_if(indexes, is_whole);
  return unique != indexes.end() ? &*unique : nullptr;
}

}  // namespace

std::vector<std::size_t> KeyFields(const std::vector<ado::Index>& indexes,
                                   const std::vector<ado::FieldInfo>& fields) {
  const ado::Index* key = RowKey(indexes);
  if (key == nullptr) return {};
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (std::ranges::find(key->columns, fields[i].name) != key->columns.end()) {
      positions.push_back(i);
    }
  }
  return positions;
}

std::vector<std::size_t> IdentifyingFields(const std::vector<ado::Index>& indexes,
                                           const std::vector<ado::FieldInfo>& fields) {
  const auto tells_rows_apart = [](const ado::Index& index) {
    return index.unique || index.primary_key;
  };
  bool may_mislead = std::ranges::count_if(indexes, tells_rows_apart) > 1;
  std::vector<std::size_t> positions;
  for (const std::size_t i : KeyFields(indexes, fields)) {
    may_mislead |= IsFoldedType(fields[i].type);
    if (IsExact(fields[i].type)) positions.push_back(i);
  }
  if (!may_mislead) positions.clear();
  return positions;
}

bool IsFoldedType(ado::DataType type) {
  return IsPaddedType(type) || type == DataType::VarChar || type == DataType::VarWChar ||
         type == DataType::LongVarChar || type == DataType::LongVarWChar;
}

bool IsPaddedType(ado::DataType type) {
  return type == DataType::Char || type == DataType::WChar;
}

}  // namespace dorvane
