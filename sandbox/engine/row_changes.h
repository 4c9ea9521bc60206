#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "sandbox/storage/catalog.h"
#include "sandbox/values/types.h"

namespace sandbox {

class DatabaseLink;
class Session;

/// New values for one row, by column id, already in the columns' types.
struct RowChange {
  std::int64_t row = 0;
  std::map<int, Value> values;
};

/// Changes and deletes rows with all that follows from it: keys, cascades, checks. Within a write
/// transaction and a StatementScope, which undoes what failed.
class RowChanger {
 public:
  /// `statement` is the word in messages: "UPDATE" or "DELETE".
  RowChanger(Session& session, DatabaseLink& link, std::string_view statement)
      : session_(session), link_(link), statement_(statement) {}

  void Update(const TableDef& table, const std::vector<RowChange>& changes);
  void Delete(const TableDef& table, const std::vector<std::int64_t>& rows);

 private:
  using Key = std::vector<Value>;
  struct Reference;

  std::vector<Reference> ReferencesTo(const TableDef& table) const;
  Key ReadKey(const TableDef& table, const std::vector<int>& columns, std::int64_t row);
  std::vector<std::int64_t> RowsWithKey(const TableDef& table, const TableDef& key_table,
                                        const std::vector<int>& columns,
                                        const std::vector<int>& key_columns, const Key& key);
  void SetAside(const TableDef& table, const std::vector<RowChange>& changes);
  void WriteRow(const TableDef& table, const RowChange& change);
  void FollowKeys(const Reference& reference, const TableDef& parent,
                  const std::vector<Key>& before, const std::vector<Key>* after);

  Session& session_;
  DatabaseLink& link_;
  const std::string_view statement_;
  int depth_ = 0;
};

}  // namespace sandbox
