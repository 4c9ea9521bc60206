#include "mysql/to_mssql/key_text.h"

#include <algorithm>

namespace dorvane::to_mssql {

std::vector<KeyText> ReadKeys(ado::Recordset rows) {
  std::vector<KeyText> keys;
  for (; !rows.AtEnd(); rows.MoveNext()) {
    if (rows.Field("Seq_in_index").Text() == "1") {
      keys.push_back({.name = rows.Field("key_name").Text(),
                      .is_unique = rows.Field("Non_Unique").Text() == "0",
                      .type = rows.Field("Index_type").Text()});
    }
    if (keys.empty()) continue;
    keys.back().columns.push_back(rows.Field("column_name").Text());
    if (!rows.Field("Sub_part").IsNull()) keys.back().has_prefix = true;
  }
  std::ranges::stable_partition(keys, &KeyText::IsPrimary);
  return keys;
}

}  // namespace dorvane::to_mssql
