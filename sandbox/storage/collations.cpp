#include "sandbox/storage/collations.h"

#include <sqlite3.h>

namespace sandbox {

namespace {

template <int (*compare)(std::string_view, std::string_view)>
int CollationCallback(void*, int left_size, const void* left, int right_size, const void* right) {
  return compare({static_cast<const char*>(left), static_cast<std::size_t>(left_size)},
                 {static_cast<const char*>(right), static_cast<std::size_t>(right_size)});
}

}  // namespace

const char* StoredCollation(TextOrder order) {
  static constexpr const char* kNames[] = {kTextCollation, "TSQL_CS", "TSQL_BIN"};
  return kNames[static_cast<int>(order)];
}

void RegisterTextOrder(sqlite3* connection) {
  const auto add = [&](TextOrder order, auto* callback) {
    sqlite3_create_collation(connection, StoredCollation(order), SQLITE_UTF8, nullptr, callback);
  };
  add(TextOrder::Default, CollationCallback<CompareText>);
  add(TextOrder::CaseSensitive, CollationCallback<CompareCaseSensitive>);
  add(TextOrder::Binary, CollationCallback<CompareBinary>);
}

}  // namespace sandbox
