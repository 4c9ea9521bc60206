#pragma once

#include <span>
#include <string>
#include <string_view>

namespace dorvane {

/// What a value is, as far as both servers compute alike with it. A column of any other type may
/// only be asked whether it is NULL.
enum class ValueKind { Integer, Decimal, Money, Double, Text, Date, Condition, Null, Other };

/// A part of an expression in the destination's words.
struct Operand {
  std::string text = {};
  ValueKind kind = ValueKind::Other;
  int digits = 0;  // of an exact number, all of them; of a text, its most characters
  int scale = 0;   // digits behind the point
  bool is_literal = false;
};

/// What a function takes, and thereby what it gives.
enum class Arguments {
  Number,         // and gives one alike
  Fraction,       // a number, of which it gives the whole part
  Text,           // and gives one
  TextAndCounts,  // a text, then numbers above zero as they stand
  Date,           // and gives an integer
  Texts,          // to be joined
  Alternatives,   // values of one kind, of which it gives the first that is not NULL
  Replacement,    // a value, and one that stands for its NULL and has its type
  Choice,         // a condition, and a value for each outcome
};

/// Both servers would not compute the same values for certain.
struct NotTranslatable {};

// All throw NotTranslatable; what they give has no text yet.

void Expect(bool holds);
/// For two values that are compared. Texts are compared by collations, which differ.
void ExpectComparable(const Operand& a, const Operand& b);
/// What a value is that is one of two.
Operand Unified(const Operand& a, const Operand& b);
/// A sum, difference or product, by its sign.
Operand Calculated(const Operand& left, std::string_view sign, const Operand& right);
Operand ResultOf(Arguments takes, std::span<const Operand> arguments);
/// A number as it is written.
Operand NumberLiteral(const std::string& text);

bool IsNumber(ValueKind kind);
/// True when a column of that kind holds the values as they are, or rounded as both servers round.
bool CanBeStoredAs(const Operand& value, ValueKind column);

}  // namespace dorvane
