#pragma once

#include <string>
#include <string_view>

namespace sandbox {

enum class TokenKind {
  End,
  Word,
  Quoted,
  String,
  NString,
  Integer,
  Decimal,
  Float,
  Money,
  Hex,
  Variable,
  Symbol
};

struct Token {
  TokenKind kind = TokenKind::End;
  std::string_view text;  // as written, without the quotes of strings and quoted names
  int line = 1;
  std::size_t offset = 0;
  bool escaped = false;  // a doubled quote is inside

  bool Is(std::string_view keyword) const;  // a word, whatever its case
  bool IsSymbol(std::string_view symbol) const {
    return kind == TokenKind::Symbol && text == symbol;
  }
  /// A name, bare or quoted.
  bool IsName() const { return kind == TokenKind::Word || kind == TokenKind::Quoted; }
};

/// Cuts T-SQL text into tokens, one at a time. The text must outlive it.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}
  /// Raises 105 for an open string, 113 for an open comment.
  Token Next();

 private:
  void SkipBlanks();
  void SkipBlockComment();
  Token Quoted(TokenKind kind, char close);
  Token Number();
  Token Finish(TokenKind kind, std::size_t start, std::size_t end);

  std::string_view text_;
  std::size_t position_ = 0;
  int line_ = 1;
};

/// The text of a string or quoted name with its doubled quotes made single.
std::string Unquote(const Token& token, char quote);

}  // namespace sandbox
