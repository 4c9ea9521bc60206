#include "sandbox/parser/parser.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

constexpr std::size_t kMaxRowValues = 1000;

}  // namespace

void Parser::ParseValuesRows(InsertStatement& insert) {
  Expect("values");
  do {
    ExpectSymbol("(");
    const std::size_t before = insert.cells.size();
    do {
      insert.cells.push_back(Accept("default") ? nullptr : ParseExpr());
    } while (AcceptSymbol(","));
    ExpectSymbol(")");
    const std::size_t width = insert.cells.size() - before;
    if (insert.rows == 0) {
      insert.width = width;
    } else if (width != insert.width) {
      Raise(10709);
    }
    if (++insert.rows > kMaxRowValues) Raise(10738);
  } while (AcceptSymbol(","));
}

Statement Parser::ParseInsert() {
  Expect("insert");
  Accept("into");
  InsertStatement insert;
  insert.table = TakeObjectName();
  if (token_.IsSymbol("(") && !PeekSecond().Is("select")) insert.columns = TakeNameList();
  if (Accept("default")) {
    Expect("values");
    insert.default_values = true;
    insert.rows = 1;
  } else if (token_.Is("values")) {
    ParseValuesRows(insert);
  } else if (token_.Is("select") || token_.IsSymbol("(")) {
    insert.query = ParseQuery();
  } else {
    Fail();
  }
  return {1, std::move(insert)};
}

Statement Parser::ParseUpdate() {
  if (PeekSecond().Is("statistics")) return SkipStatistics();
  Expect("update");
  UpdateStatement update;
  update.table = TakeObjectName();
  Expect("set");
  do {
    Assignment assignment;
    assignment.column = TakeObjectName().name;
    ExpectSymbol("=");
    assignment.value = ParseSum();
    update.assignments.push_back(std::move(assignment));
  } while (AcceptSymbol(","));
  if (Accept("where")) update.where = ParseExpr();
  return {1, std::move(update)};
}

Statement Parser::ParseDelete() {
  Expect("delete");
  DeleteStatement remove;
  Accept("from");
  remove.table = TakeObjectName();
  if (Accept("where")) remove.where = ParseExpr();
  return {1, std::move(remove)};
}

}  // namespace sandbox
