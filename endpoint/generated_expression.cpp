#include "endpoint/generated_expression.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/text/ascii.h"

namespace dorvane {

namespace {

using Kind = ExpressionToken::Kind;

constexpr int kDeepest = 100;  // parts within each other

/// Reads an expression from its operators that bind least to those that bind most.
class Translator {
 public:
  Translator(std::span<const ExpressionToken> tokens, const ExpressionRules& rules)
      : tokens_(tokens), rules_(rules) {}

  Operand Whole() {
    Operand value = Disjunction();
    Expect(tokens_.empty());
    return value;
  }

 private:
  bool Is(Kind kind, std::string_view text) const {
    return !tokens_.empty() && tokens_.front().kind == kind && tokens_.front().text == text;
  }
  bool Take(Kind kind, std::string_view text) {
    if (!Is(kind, text)) return false;
    tokens_ = tokens_.subspan(1);
    return true;
  }
  bool TakeSign(std::string_view sign) { return Take(Kind::Sign, sign); }
  bool TakeWord(std::string_view word) { return Take(Kind::Word, word); }
  void ExpectSign(std::string_view sign) { Expect(TakeSign(sign)); }
  void ExpectWord(std::string_view word) { Expect(TakeWord(word)); }
  ExpressionToken Next() {
    Expect(!tokens_.empty());
    ExpressionToken token = tokens_.front();
    tokens_ = tokens_.subspan(1);
    return token;
  }

  Operand Condition(Operand value) {
    Expect(value.kind == ValueKind::Condition);
    return value;
  }

  Operand Disjunction() {
    Expect(++depth_ <= kDeepest);
    Operand left = Conjunction();
    while (TakeWord("or")) left = Joined(std::move(left), "or", Conjunction());
    --depth_;
    return left;
  }

  Operand Conjunction() {
    Operand left = Negation();
    while (TakeWord("and")) left = Joined(std::move(left), "and", Negation());
    return left;
  }

  Operand Joined(Operand left, std::string_view word, Operand right) {
    left = Condition(std::move(left));
    right = Condition(std::move(right));
    return {fmt::format("({} {} {})", left.text, word, right.text), ValueKind::Condition};
  }

  Operand Negation() {
    if (!TakeWord("not")) return Comparison();
    Expect(++depth_ <= kDeepest);
    const Operand value = Condition(Negation());
    --depth_;
    return {fmt::format("(not {})", value.text), ValueKind::Condition};
  }

  Operand Comparison() {
    Operand left = Sum();
    if (TakeWord("is")) {
      const bool is_not = TakeWord("not");
      ExpectWord("null");
      return {fmt::format("({} is {}null)", left.text, is_not ? "not " : ""), ValueKind::Condition};
    }
    constexpr std::array<std::string_view, 7> kSigns = {"=", "<>", "!=", "<=", ">=", "<", ">"};
    for (const std::string_view sign : kSigns) {
      if (!TakeSign(sign)) continue;
      const Operand right = Sum();
      ExpectComparable(left, right);
      return {fmt::format("({} {} {})", left.text, sign, right.text), ValueKind::Condition};
    }
    return left;
  }

  Operand Sum() {
    Operand left = Product();
    for (;;) {
      if (TakeSign("+")) {
        left = Plus(left, Product());
      } else if (TakeSign("-")) {
        left = Computed(left, "-", Product());
      } else {
        return left;
      }
    }
  }

  Operand Plus(const Operand& left, const Operand& right) {
    if (left.kind != ValueKind::Text || right.kind != ValueKind::Text) {
      return Computed(left, "+", right);
    }
    Expect(rules_.plus_joins_texts);
    return {rules_.join({left.text, right.text}), ValueKind::Text, left.digits + right.digits};
  }

  Operand Product() {
    Operand left = Signed();
    for (;;) {
      if (TakeSign("*")) {
        left = Computed(left, "*", Signed());
      } else if (TakeSign("%")) {
        left = Remainder(left, Signed());
      } else {
        return left;
      }
    }
  }

  Operand Computed(const Operand& left, std::string_view sign, const Operand& right) {
    Operand result = Calculated(left, sign, right);
    const bool are_integers = result.kind == ValueKind::Integer;
    result.text = fmt::format("({} {} {})", are_integers ? rules_.wide(left.text) : left.text, sign,
                              right.text);
    return result;
  }

  /// Of a division by zero each server thinks otherwise.
  Operand Remainder(const Operand& left, const Operand& right) {
    Expect(left.kind == ValueKind::Integer && right.kind == ValueKind::Integer);
    Expect(right.is_literal && right.text.find_first_not_of("(0)") != std::string::npos);
    return {fmt::format("({} % {})", left.text, right.text), ValueKind::Integer, left.digits};
  }

  Operand Signed() {
    if (!TakeSign("-")) return Primary();
    Expect(++depth_ <= kDeepest);
    Operand value = Signed();
    --depth_;
    Expect(IsNumber(value.kind));
    value.text = fmt::format("(-{})", value.text);
    value.is_literal = false;
    return value;
  }

  Operand Primary() {
    const ExpressionToken token = Next();
    switch (token.kind) {
      case Kind::Name:
        return rules_.column(token.text);
      case Kind::Text:
        return {.text = token.text,
                .kind = ValueKind::Text,
                .digits = static_cast<int>(token.text.size()),
                .is_literal = true};
      case Kind::Number:
        return NumberLiteral(token.text);
      case Kind::Word:
        return OfWord(token.text);
      case Kind::Sign:
        break;
    }
    Expect(token.text == "(");
    Operand value = Disjunction();
    ExpectSign(")");
    return value;
  }

  Operand OfWord(const std::string& word) {
    if (word == "null") return {"null", ValueKind::Null};
    if (word == "case") return Case();
    const auto rule = std::ranges::find(rules_.functions, word, &FunctionRule::name);
    Expect(rule != rules_.functions.end());
    ExpectSign("(");
    std::vector<Operand> arguments;
    do {
      arguments.push_back(Disjunction());
    } while (TakeSign(","));
    ExpectSign(")");
    return Called(*rule, arguments);
  }

  Operand Case() {
    const bool has_subject = !Is(Kind::Word, "when");
    const Operand subject = has_subject ? Disjunction() : Operand();
    std::string text = has_subject ? "case " + subject.text : "case";
    Operand result{.kind = ValueKind::Null};
    while (TakeWord("when")) {
      const Operand when = Disjunction();
      has_subject ? ExpectComparable(subject, when) : Expect(when.kind == ValueKind::Condition);
      ExpectWord("then");
      const Operand then = Disjunction();
      result = Unified(result, then);
      text += fmt::format(" when {} then {}", when.text, then.text);
    }
    if (TakeWord("else")) {
      const Operand otherwise = Disjunction();
      result = Unified(result, otherwise);
      text += " else " + otherwise.text;
    }
    ExpectWord("end");
    Expect(result.kind != ValueKind::Condition && result.kind != ValueKind::Null);
    result.text = "(" + text + " end)";
    result.is_literal = false;
    return result;
  }

  Operand Called(const FunctionRule& rule, std::span<const Operand> arguments) {
    std::vector<std::string> texts;
    for (const Operand& argument : arguments) texts.push_back(argument.text);
    Operand result = ResultOf(rule.arguments, arguments);
    result.is_literal = false;
    if (rule.arguments == Arguments::Texts) {
      result.text = rules_.join(texts);
    } else if (rule.arguments == Arguments::Choice) {
      result.text = fmt::format("(case when {} then {} else {} end)", texts[0], texts[1], texts[2]);
    } else {
      result.text = fmt::format(fmt::runtime(rule.form), fmt::join(texts, ", "));
    }
    return result;
  }

  std::span<const ExpressionToken> tokens_;
  const ExpressionRules& rules_;
  int depth_ = 0;
};

}  // namespace

std::optional<Operand> TranslateExpression(std::span<const ExpressionToken> tokens,
                                           const ExpressionRules& rules) {
  try {
    return Translator(tokens, rules).Whole();
  } catch (const NotTranslatable&) {
    return std::nullopt;
  }
}

std::optional<ExpressionToken> TakeNumber(std::string_view& rest) {
  std::size_t size = 0;
  const auto take_digits = [&] {
    while (size < rest.size() && text::IsDigit(rest[size])) ++size;
  };
  take_digits();
  if (size < rest.size() && rest[size] == '.') {
    ++size;
    take_digits();
  }
  if (size < rest.size() && text::ToLower(rest[size]) == 'e') {
    ++size;
    if (size < rest.size() && (rest[size] == '+' || rest[size] == '-')) ++size;
    take_digits();
  }
  std::string number = text::ToLower(rest.substr(0, size));
  rest.remove_prefix(size);
  const char next = rest.empty() ? ' ' : text::ToLower(rest.front());
  if ((next >= 'a' && next <= 'z') || next == '_' || next == '.') return std::nullopt;
  return ExpressionToken{Kind::Number, std::move(number)};
}

ExpressionToken TakeWord(std::string_view& rest) {
  const auto is_of_word = [](char c) {
    const char lower = text::ToLower(c);
    return text::IsDigit(c) || (lower >= 'a' && lower <= 'z') || c == '_';
  };
  std::size_t size = 0;
  while (size < rest.size() && is_of_word(rest[size])) ++size;
  ExpressionToken word{Kind::Word, text::ToLower(rest.substr(0, size))};
  rest.remove_prefix(size);
  return word;
}

ExpressionToken TakeSign(std::string_view& rest) {
  constexpr std::array<std::string_view, 4> kPairs = {"<=", ">=", "<>", "!="};
  const auto is_there = [&](std::string_view pair) { return rest.starts_with(pair); };
  const std::size_t size = std::ranges::any_of(kPairs, is_there) ? 2 : 1;
  ExpressionToken sign{Kind::Sign, std::string(rest.substr(0, size))};
  rest.remove_prefix(size);
  return sign;
}

}  // namespace dorvane
