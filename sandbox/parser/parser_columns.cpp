#include <algorithm>
#include <cstdint>

#include "sandbox/parser/parser.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

TypeInfo Parser::ParseType(int position, std::string_view column, int default_length,
                           ObjectName* alias) {
  if (!token_.IsName()) Fail();
  const ObjectName full_name = TakeObjectName();  // "sys.int"
  const std::string& name = full_name.name;
  std::vector<int> args;
  if (AcceptSymbol("(")) {
    do {
      if (Accept("max")) {
        args.push_back(-1);
      } else {
        args.push_back(static_cast<int>(std::min<std::int64_t>(TakeInteger(), INT32_MAX)));
      }
    } while (AcceptSymbol(","));
    ExpectSymbol(")");
  }
  auto type = DeclaredType(name, args, position, column);
  if (!type && alias && args.empty()) {
    *alias = full_name;
    return {};
  }
  if (!type) Raise(2715, position, name);
  const bool sized = IsText(type->type) || IsBinary(type->type);
  if (args.empty() && sized && type->length == 1) type->length = default_length;
  return *type;
}

void Parser::ParseTableElement(std::vector<ColumnSyntax>& columns,
                               std::vector<ConstraintSyntax>& constraints) {
  if (AtConstraint()) {
    constraints.push_back(ParseConstraint(""));
  } else if (token_.Is("period") && PeekSecond().Is("for")) {  // its columns say it themselves
    for (const char* word : {"period", "for", "system_time"}) Expect(word);
    TakeNameList();
  } else {
    ParseColumn(columns, constraints);
  }
}

void Parser::ParseColumn(std::vector<ColumnSyntax>& columns,
                         std::vector<ConstraintSyntax>& constraints) {
  ColumnSyntax column;
  column.line = token_.line;
  column.column.name = TakeName();
  if (Accept("as")) {
    column.computed = ParseExpr();
    column.column.persisted = Accept("persisted");
  } else {
    column.column.type =
        ParseType(static_cast<int>(columns.size()) + 1, column.column.name, 1, &column.alias_type);
  }
  ParseColumnOptions(column, constraints);
  columns.push_back(std::move(column));
}

// What else a column may be told to be. False with nothing taken when there is none of it.
bool Parser::ParseColumnTrait(ColumnDef& column) {
  if (Accept("rowguidcol")) return column.row_guid = true;
  if (Accept("sparse")) return column.sparse = true;
  if (Accept("collate")) {
    column.collation = TakeName();
    return true;
  }
  if (Accept("masked")) {
    Expect("with");
    ExpectSymbol("(");
    Expect("function");
    ExpectSymbol("=");
    TakeAlias();
    ExpectSymbol(")");
    return column.masked = true;
  }
  if (!Accept("generated")) return false;
  for (const char* word : {"always", "as", "row"}) Expect(word);
  column.generated = token_.Is("end") ? Generated::RowEnd : Generated::RowStart;
  if (!Accept("end")) Expect("start");
  column.hidden = Accept("hidden");
  return true;
}

void Parser::ParseIdentity(ColumnDef& column) {
  column.identity = true;
  if (AcceptSymbol("(")) {
    column.seed = TakeInteger();
    ExpectSymbol(",");
    column.increment = TakeInteger();
    ExpectSymbol(")");
  }
}

void Parser::ParseColumnOptions(ColumnSyntax& column, std::vector<ConstraintSyntax>& constraints) {
  while (true) {
    if (Accept("null")) {
      column.nullable = true;
    } else if (Accept("not")) {
      Expect("null");
      column.nullable = false;
    } else if (Accept("identity")) {
      ParseIdentity(column.column);
    } else if (ParseColumnTrait(column.column)) {
      continue;
    } else if (AtConstraint() || token_.Is("default") || token_.Is("references")) {
      constraints.push_back(ParseConstraint(column.column.name));
    } else {
      return;
    }
  }
}

}  // namespace sandbox
