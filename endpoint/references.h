#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/ado/catalog.h"

namespace dorvane {

/// A foreign key of the destination between two tables of it.
struct Reference {
  std::string name;
  ado::TableName table;
  ado::TableName referenced;
};

/// The keys between `tables` that can be dropped so that the tables can be. A table that a key from
/// elsewhere keeps stays with all of its keys, and keeps the tables that it refers to in turn.
/// `folds`: names that differ in letter case are one.
std::vector<Reference> ReferencesToDrop(std::vector<Reference> references,
                                        const std::set<ado::TableName>& tables, bool folds);

/// A column of the source.
struct ColumnPlace {
  ado::TableName table;
  std::string column;
};

/// The column and those that it refers to by foreign keys, directly or through others: its values
/// are theirs, so it takes the type that they need. Tables that cannot be read refer to nothing.
std::vector<ColumnPlace> WithReferencedColumns(ado::Catalog& catalog, ColumnPlace column);

}  // namespace dorvane
