#include "sandbox/catalog/database_link.h"
#include "sandbox/catalog/session.h"
#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

int MostBytes(const IndexDef& index) {
  return index.clustered ? 900 : 1700;
}

const char* KindName(const IndexDef& index) {
  return index.clustered ? "clustered" : "nonclustered";
}

bool IsVariable(SqlType type) {
  return type == SqlType::VarChar || type == SqlType::NVarChar || type == SqlType::VarBinary ||
         type == SqlType::Variant;
}

struct Lengths {
  int least = 0;  // bytes
  int most = 0;
};

Lengths LengthsOf(const TableDef& table, const IndexDef& index) {
  Lengths lengths;
  for (const IndexColumn& key : index.columns) {
    const TypeInfo& type = table.Column(key.column_id).type;
    const int bytes = type.type == SqlType::Variant ? 0 : MaxLength(type);
    lengths.most += bytes;
    if (!IsVariable(type.type)) lengths.least += bytes;
  }
  return lengths;
}

// The bytes of a row's key in SQLite's language.
std::string BytesText(const TableDef& table, const IndexDef& index) {
  std::string text;
  for (const IndexColumn& key : index.columns) {
    const TypeInfo& type = table.Column(key.column_id).type;
    const std::string column = TableDef::StoredColumn(key.column_id);
    text += text.empty() ? "" : " + ";
    text += !IsVariable(type.type) ? fmt::format("{}", MaxLength(type))
            : IsUnicode(type.type) ? fmt::format("2 * coalesce(length({}), 0)", column)
                                   : fmt::format("coalesce(length({}), 0)", column);
  }
  return text;
}

}  // namespace

void CheckKeyLength(Session& session, const TableDef& table, const IndexDef& index) {
  const Lengths lengths = LengthsOf(table, index);
  const int limit = MostBytes(index);
  if (lengths.least > limit) {
    const SqlError error = Error(1944, index.name, lengths.least, limit);
    throw index.IsConstraint() ? Followed(error, 1750) : error;
  }
  if (lengths.most <= limit) return;
  session.Message(1945, 10, 1,
                  fmt::format("Warning! The maximum key length for a {} index is {} bytes. The "
                              "index '{}' has maximum length of {} bytes. For some combination of "
                              "large values, the insert/update operation will fail.",
                              KindName(index), limit, index.name, lengths.most));
}

bool HasLongKeys(const TableDef& table) {
  for (const IndexDef& index : table.indexes) {
    if (LengthsOf(table, index).most > MostBytes(index)) return true;
  }
  return false;
}

void VerifyKeyLengths(DatabaseLink& link, const TableDef& table, std::int64_t first,
                      std::int64_t last) {
  for (const IndexDef& index : table.indexes) {
    if (index.disabled || LengthsOf(table, index).most <= MostBytes(index)) continue;
    SqliteStatement& statement =
        link.Cached(fmt::format("SELECT max({}) FROM {} WHERE rowid BETWEEN ?1 AND ?2",
                                BytesText(table, index), table.StoredName()));
    ResetGuard guard(statement);
    statement.Bind(1, first).Bind(2, last);
    if (!link.Step(statement) || statement.Integer(0) <= MostBytes(index)) continue;
    Raise(1946, statement.Integer(0), index.name, MostBytes(index), KindName(index));
  }
}

}  // namespace sandbox
