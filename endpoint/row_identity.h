#pragma once

#include <cstddef>
#include <vector>

#include "platform/ado/catalog_types.h"

namespace dorvane {

/// The fields, by position, whose exact values tell whether the destination has a row already. A
/// duplicate need not say that: its collation may take two keys for one, or another key than the
/// row's own may be taken. Empty where every duplicate is the row itself, or nothing tells.
std::vector<std::size_t> IdentifyingFields(const std::vector<ado::Index>& indexes,
                                           const std::vector<ado::FieldInfo>& fields);

/// The fields, by position, of the primary key, else of a key that tells rows apart; empty where
/// there is neither.
std::vector<std::size_t> KeyFields(const std::vector<ado::Index>& indexes,
                                   const std::vector<ado::FieldInfo>& fields);

/// True for the types of text that a server may fold.
bool IsFoldedType(ado::DataType type);
/// True for text of a fixed length, whose trailing blanks mean nothing.
bool IsPaddedType(ado::DataType type);

}  // namespace dorvane
