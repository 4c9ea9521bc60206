#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "sandbox/values/errors.h"
#include "sandbox/values/types.h"

struct sqlite3;

namespace sandbox {

/// The connection that functions are registered for.
class FunctionHost {
 public:
  virtual ~FunctionHost() = default;
  /// What object_name() and other functions that depend on the session give for these arguments.
  virtual std::pair<Value, TypeInfo> SessionValue(std::string_view name,
                                                  const std::vector<Value>& args) = 0;
  /// What a function called by SQLite raised; the step that fails of it throws it.
  std::optional<SqlError> raised;
};

/// A function's arguments as it gets them.
struct FunctionCall {
  std::span<const Value> values;
  std::span<const TypeInfo> types;
  TypeInfo result;
};

/// A scalar function of the language.
struct ScalarFunction {
  const char* name;
  int min_args, max_args;
  TypeInfo (*result)(std::span<const TypeInfo> types);
  Value (*evaluate)(const FunctionCall& call);
  bool takes_null = false;  // else one NULL argument makes the result NULL
};

/// The position of a function in the table, or nothing.
std::optional<std::size_t> FindFunction(std::string_view name);
const ScalarFunction& Function(std::size_t position);

/// The unit of dateadd, datediff, datepart ("mm" is "month"); nothing when it is none.
std::optional<std::string_view> DateUnit(std::string_view word);

/// Makes the language's functions known to SQLite. What a table's definition in storage uses has
/// the prefix "fixed_", which promises that equal arguments give equal results, and names scalar
/// functions instead of their positions.
/// - tsql_call(position, result type, type, value, ...)
/// - tsql_session(name, result type, type, value, ...)
/// - tsql_convert(from, to, style, value)
/// - tsql_math(operator, left type, right type, result type, left, right)
/// - tsql_like(text, pattern[, escape])
/// - tsql_sum(type, value), tsql_avg(type, value)
/// - tsql_one(value): 512 on a second row
void RegisterFunctions(sqlite3* connection, FunctionHost& host);

/// The types of sum and avg over values of a type.
TypeInfo SumType(const TypeInfo& type);
TypeInfo AverageType(const TypeInfo& type);

/// Matches LIKE's wildcards % _ [], without regard to case unless told to.
bool MatchesPattern(std::string_view text, std::string_view pattern, char32_t escape = 0,
                    bool with_case = false);

}  // namespace sandbox
