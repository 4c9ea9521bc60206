#include "sandbox/parser/ast.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

std::string Quoted(const std::string& text, bool unicode) {
  std::string quoted = unicode ? "N'" : "'";
  for (const char c : text) quoted.append(c == '\'' ? 2 : 1, c);
  return quoted + "'";
}

std::string Bracketed(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) {
    std::string name;
    for (const char c : part) name.append(c == ']' ? 2 : 1, c);
    text += (text.empty() ? "[" : ".[") + name + "]";
  }
  return text;
}

std::string TextOfLiteral(const Expr& expr) {
  const Literal& literal = expr.literal;
  if (literal.is_null) return "NULL";
  if (const auto* text = std::get_if<std::string>(&literal.value)) {
    return Quoted(*text, IsUnicode(literal.type.type));
  }
  if (std::holds_alternative<BinaryValue>(literal.value)) return expr.text;
  return "(" + expr.text + ")";
}

std::string List(const std::vector<ExprPtr>& args, std::size_t first = 0) {
  std::string text;
  for (std::size_t i = first; i < args.size(); ++i) {
    text += (i > first ? "," : "") + NormalisedText(*args[i]);
  }
  return text;
}

// An operand that is an operation itself stands in parentheses, so that the text reads back as it
// was.
std::string Operand(const Expr& expr) {
  const bool operation = expr.kind == ExprKind::Binary && expr.text != "and" && expr.text != "or" &&
                         std::string_view("+-*/%&|^").find(expr.text) != std::string_view::npos;
  return operation ? "(" + NormalisedText(expr) + ")" : NormalisedText(expr);
}

std::string CaseText(const Expr& expr) {
  std::string text = "case";
  std::size_t i = 0;
  if (expr.has_operand) text += " " + NormalisedText(*expr.args[i++]);
  const std::size_t end = expr.args.size() - (expr.has_else ? 1 : 0);
  for (; i + 1 < end; i += 2) {
    text += " when " + NormalisedText(*expr.args[i]) + " then " + NormalisedText(*expr.args[i + 1]);
  }
  if (expr.has_else) text += " else " + NormalisedText(*expr.args.back());
  return text + " end";
}

}  // namespace

std::string NormalisedText(const Expr& expr) {
  switch (expr.kind) {
    case ExprKind::Literal:
      return TextOfLiteral(expr);
    case ExprKind::Column:
      return Bracketed(expr.parts);
    case ExprKind::Variable:
      return expr.text;
    case ExprKind::Unary:
      return expr.text == "not" ? "NOT (" + NormalisedText(*expr.args[0]) + ")"
                                : expr.text + Operand(*expr.args[0]);
    case ExprKind::Binary:
      if (expr.text == "and" || expr.text == "or") {
        return "(" + NormalisedText(*expr.args[0]) + (expr.text == "and" ? " AND " : " OR ") +
               NormalisedText(*expr.args[1]) + ")";
      }
      return Operand(*expr.args[0]) + expr.text + Operand(*expr.args[1]);
    case ExprKind::IsNull:
      return NormalisedText(*expr.args[0]) + (expr.negated ? " IS NOT NULL" : " IS NULL");
    case ExprKind::In:
      return NormalisedText(*expr.args[0]) + (expr.negated ? " NOT IN (" : " IN (") +
             List(expr.args, 1) + ")";
    case ExprKind::Between:
      return NormalisedText(*expr.args[0]) + (expr.negated ? " NOT" : "") + " BETWEEN " +
             NormalisedText(*expr.args[1]) + " AND " + NormalisedText(*expr.args[2]);
    case ExprKind::Like:
      return NormalisedText(*expr.args[0]) + (expr.negated ? " NOT" : "") + " LIKE " +
             NormalisedText(*expr.args[1]) +
             (expr.args.size() > 2 ? " ESCAPE " + NormalisedText(*expr.args[2]) : "");
    case ExprKind::Case:
      return CaseText(expr);
    case ExprKind::Collate:
      return NormalisedText(*expr.args[0]) + " collate " + expr.text;
    case ExprKind::Cast: {
      std::string type = TypeText(expr.type);
      const std::size_t measure = type.find('(');
      const std::string name = type.substr(0, measure);
      type = "[" + name + "]" + (measure == std::string::npos ? "" : type.substr(measure));
      return "CONVERT(" + type + "," + List(expr.args) + ")";
    }
    case ExprKind::Function:
      return expr.text + "(" + List(expr.args) + ")";
    default:
      return "NULL";
  }
}

}  // namespace sandbox
