#pragma once

#include <string>
#include <vector>

#include "endpoint/database_base.h"
#include "tests/endpoint/recorders.h"
#include "tests/endpoint/scripted_provider.h"

namespace dorvane::test {

/// Two endpoints on scripted servers and all that hears of them.
template <typename SourceEndpoint, typename DestEndpoint>
struct TransferRig {
  ScriptedServer source;
  ScriptedServer dest;
  HostRecorder host;
  EventRecorder events;
  SourceEndpoint src{host, source.Lookup()};
  DestEndpoint dst{host, dest.Lookup()};

  TransferRig() {
    src.SetListener(&events);
    dst.SetListener(&events);
    src.SetDbName("shop");
  }

  void Transfer(const NameList& tables) { src.TransferToDest(dst, tables); }
};

/// A column of a scripted catalog.
inline ado::Column MakeColumn(std::string name, ado::DataType type, bool nullable = true) {
  ado::Column column;
  column.name = std::move(name);
  column.type = type;
  column.attributes = nullable ? ado::kColumnNullable : 0;
  return column;
}

/// One of 20 characters where that matters.
inline ado::Column ColumnOf(std::string name, std::string server_type, int digits = 0,
                            int scale = 0) {
  ado::Column column = MakeColumn(std::move(name), ado::DataType::Integer);
  column.server_type = std::move(server_type);
  column.precision = digits;
  column.numeric_scale = scale;
  column.defined_size = 20;
  return column;
}

inline ado::Column WithSize(ado::Column column, std::int64_t size) {
  column.defined_size = size;
  return column;
}

inline ado::Column WithDigits(ado::Column column, int precision, int scale) {
  column.precision = precision;
  column.numeric_scale = scale;
  return column;
}

inline ado::Column WithDefault(ado::Column column, std::string value) {
  column.default_value = std::move(value);
  return column;
}

}  // namespace dorvane::test
