#pragma once

#include <string>

#include "sandbox/storage/catalog.h"
#include "sandbox/values/types.h"

namespace sandbox {

/// A type as the ODBC catalog procedures describe it; NULL where it has no such measure.
struct OdbcFacts {
  Value data_type, precision, length, scale, radix, sql_data_type, datetime_sub, octet_length,
      ss_data_type;
};

/// `version3`: dates by their ODBC 3 codes.
OdbcFacts FactsForOdbc(const TypeInfo& type, bool version3);

/// The name of an alias type, else of the server's own.
std::string ColumnTypeName(const Catalog& catalog, const ColumnDef& column);

/// TYPE_NAME: "int", "int identity", "numeric() identity".
std::string OdbcTypeName(const Catalog& catalog, const ColumnDef& column);

}  // namespace sandbox
