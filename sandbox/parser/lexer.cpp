#include "sandbox/parser/lexer.h"

#include <algorithm>

#include "sandbox/parser/hex_digit.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

// The symbols of two characters: what their second may follow.
bool IsPair(char first, char second) {
  constexpr std::string_view kBeforeEquals = "<>!+-*/%&|^";
  if (second == '=') return kBeforeEquals.find(first) != std::string_view::npos;
  if (second == '>') return first == '<' || first == '!';
  return second == '<' && first == '!';
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsHexDigit(char c) {
  return HexDigit(c) != kNoHexDigit;
}
bool StartsName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' || (c & 0x80);
}
bool ContinuesName(char c) {
  return StartsName(c) || IsDigit(c) || c == '@' || c == '$';
}
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

}  // namespace

bool Token::Is(std::string_view keyword) const {
  return kind == TokenKind::Word && text.size() == keyword.size() &&
         std::equal(text.begin(), text.end(), keyword.begin(),
                    [](char a, char b) { return Lower(a) == Lower(b); });
}

void Lexer::SkipBlockComment() {
  int depth = 1;
  for (position_ += 2; position_ < text_.size(); ++position_) {
    const std::string_view two = text_.substr(position_, 2);
    if (text_[position_] == '\n') ++line_;
    if (two == "/*") {
      ++depth;
      ++position_;
    } else if (two == "*/") {
      ++position_;
      if (--depth == 0) {
        ++position_;
        return;
      }
    }
  }
  Raise(113);
}

void Lexer::SkipBlanks() {
  while (position_ < text_.size()) {
    const auto c = static_cast<unsigned char>(text_[position_]);
    if (c == '\n') ++line_;
    if (c <= ' ') {
      ++position_;
    } else if (c == 0xC2 && text_.substr(position_, 2) == "\xC2\xA0") {
      position_ += 2;
    } else if (c == 0xEF && text_.substr(position_, 3) == "\xEF\xBB\xBF") {
      position_ += 3;
    } else if (c == '-' && At(position_ + 1) == '-') {
      position_ = std::min(text_.find('\n', position_), text_.size());
    } else if (c == '/' && At(position_ + 1) == '*') {
      SkipBlockComment();
    } else {
      return;
    }
  }
}

void Lexer::Finish(TokenKind kind, std::size_t start, std::size_t end, Token& token) {
  token.kind = kind;
  token.text = text_.substr(start, end - start);
  token.line = line_;
  token.offset = start;
  token.escaped = false;
  position_ = end;
}

// The text between the quote at `position_` and the single `close` that ends it.
void Lexer::Quoted(TokenKind kind, char close, Token& token) {
  const std::size_t start = position_ + 1;
  const int line = line_;
  bool escaped = false;
  std::size_t end = start;
  while (true) {
    end = text_.find(close, end);
    if (end == std::string_view::npos) Raise(105, text_.substr(start, 128));
    if (end + 1 >= text_.size() || text_[end + 1] != close) break;
    escaped = true;
    end += 2;
  }
  Finish(kind, start, end, token);
  token.line = line;
  token.escaped = escaped;
  line_ += static_cast<int>(std::count(token.text.begin(), token.text.end(), '\n'));
  ++position_;
}

void Lexer::Number(Token& token) {
  const std::size_t start = position_;
  std::size_t end = start;
  const auto digits = [&] {
    while (end < text_.size() && IsDigit(text_[end])) ++end;
  };
  if (text_[end] == '0' && end + 1 < text_.size() && Lower(text_[end + 1]) == 'x') {
    const auto stop = std::find_if_not(text_.begin() + end + 2, text_.end(), IsHexDigit);
    end = static_cast<std::size_t>(stop - text_.begin());
    return Finish(TokenKind::Hex, start, end, token);
  }
  digits();
  TokenKind kind = TokenKind::Integer;
  if (end < text_.size() && text_[end] == '.') {
    kind = TokenKind::Decimal;
    ++end;
    digits();
  }
  if (end < text_.size() && Lower(text_[end]) == 'e') {
    std::size_t exponent = end + 1;
    if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) ++exponent;
    end = exponent;
    digits();
    kind = TokenKind::Float;
  }
  Finish(kind, start, end, token);
}

void Lexer::Read(Token& token) {
  SkipBlanks();
  if (position_ >= text_.size()) return Finish(TokenKind::End, text_.size(), text_.size(), token);
  const char c = text_[position_];
  const char next = At(position_ + 1);
  if ((c == 'N' || c == 'n') && next == '\'') {
    ++position_;
    return Quoted(TokenKind::NString, '\'', token);
  }
  if (c == '\'') return Quoted(TokenKind::String, '\'', token);
  if (c == '[') return Quoted(TokenKind::Quoted, ']', token);
  if (c == '"') return Quoted(TokenKind::Quoted, '"', token);
  if (IsDigit(c) || (c == '.' && IsDigit(next))) return Number(token);
  std::size_t end = position_ + 1;
  const auto name = [&] {
    while (end < text_.size() && ContinuesName(text_[end])) ++end;
  };
  if (StartsName(c)) {
    name();
    return Finish(TokenKind::Word, position_, end, token);
  }
  if (c == '@') {
    name();
    return Finish(TokenKind::Variable, position_, end, token);
  }
  if (c == '$' && (IsDigit(next) || next == '.')) {
    while (end < text_.size() && (IsDigit(text_[end]) || text_[end] == '.')) ++end;
    return Finish(TokenKind::Money, position_, end, token);
  }
  Finish(TokenKind::Symbol, position_, position_ + (IsPair(c, next) ? 2 : 1), token);
}

std::string Unquote(std::string_view text, char quote) {
  std::string single;
  single.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    single += text[i];
    if (text[i] == quote) ++i;
  }
  return single;
}

}  // namespace sandbox
