#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/expression_values.h"

namespace dorvane {

/// A piece of an expression: a name unquoted, a text as the destination's literal, a word in lower
/// case.
struct ExpressionToken {
  enum class Kind { Name, Text, Number, Word, Sign };
  Kind kind;
  std::string text;
};

/// A function that means the same on both servers.
struct FunctionRule {
  std::string_view name;
  Arguments arguments;
  std::string_view form;  // on the destination, "abs({})"; empty where it is no function there
};

/// How a direction reads and writes expressions.
struct ExpressionRules {
  std::function<Operand(const std::string& name)> column;
  std::span<const FunctionRule> functions;
  bool plus_joins_texts;  // in the source's words
  std::string (*join)(const std::vector<std::string>& texts);
  /// An integer as it must stand so that its sums and products are of 64 bits.
  std::string (*wide)(const std::string& integer);
};

/// The expression in the destination's words; nothing where the destination would not compute the
/// same values of it for certain.
std::optional<Operand> TranslateExpression(std::span<const ExpressionToken> tokens,
                                           const ExpressionRules& rules);

// What both dialects write alike, taken off the front.

/// A number as it is written: "1", "2.50", "1e3". Nothing when a letter follows it.
std::optional<ExpressionToken> TakeNumber(std::string_view& rest);
/// Letters, digits and underscores; empty where something else stands.
ExpressionToken TakeWord(std::string_view& rest);
/// An operator, parenthesis or comma: one character unless it is a comparison of two.
ExpressionToken TakeSign(std::string_view& rest);

}  // namespace dorvane
