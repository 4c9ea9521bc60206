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
  /// A mark of one or two characters.
  bool IsSymbol(std::string_view symbol) const {
    return kind == TokenKind::Symbol && text.size() == symbol.size() &&
           text.front() == symbol.front() && text.back() == symbol.back();
  }
  /// A name, bare or quoted.
  bool IsName() const { return kind == TokenKind::Word || kind == TokenKind::Quoted; }
};

/// Cuts T-SQL text into tokens, one at a time. The text must outlive it.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}
  /// Raises 105 for an open string, 113 for an open comment.
  void Read(Token& token);

 private:
  void SkipBlanks();
  void SkipBlockComment();
  void Quoted(TokenKind kind, char close, Token& token);
  void Number(Token& token);
  void Finish(TokenKind kind, std::size_t start, std::size_t end, Token& token);
  char At(std::size_t position) const { return position < text_.size() ? text_[position] : '\0'; }

  std::string_view text_;
  std::size_t position_ = 0;
  int line_ = 1;
};

/// Text between quotes with its doubled quotes made single.
std::string Unquote(std::string_view text, char quote);

}  // namespace sandbox
