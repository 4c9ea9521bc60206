#include "mysql/to_mssql/foreign_key_text.h"

#include <algorithm>
#include <cstddef>

#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

/// A piece of the definition: a name or text in quotes, a word, or a single character.
struct Token {
  std::string_view text;
  bool is_word = false;
};

bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '$' || (c & 0x80) != 0;
}

/// Behind the closing quote of the quoted piece at the text's start; a doubled quote stands for
/// one.
std::size_t QuotedEnd(std::string_view text) {
  const char quote = text.front();
  const bool has_escapes = quote != '`';
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (has_escapes && text[i] == '\\') {
      ++i;
    } else if (text[i] == quote) {
      if (i + 1 == text.size() || text[i + 1] != quote) return i + 1;
      ++i;
    }
  }
  return text.size();
}

std::vector<Token> Tokens(std::string_view text) {
  std::vector<Token> tokens;
  while (!text.empty()) {
    const char first = text.front();
    std::size_t size = 1;
    if (first == '`' || first == '\'' || first == '"') {
      size = QuotedEnd(text);
    } else if (IsWordCharacter(first)) {
      size =
          static_cast<std::size_t>(std::ranges::find_if_not(text, IsWordCharacter) - text.begin());
    }
    const bool is_blank = first == ' ' || first == '\n' || first == '\r' || first == '\t';
    if (!is_blank) tokens.push_back({text.substr(0, size), IsWordCharacter(first)});
    text.remove_prefix(size);
  }
  return tokens;
}

/// One item of the definition's outer list, read token by token.
class ItemReader {
 public:
  ItemReader(const Token* begin, const Token* end) : next_(begin), end_(end) {}

  bool TakeWord(std::string_view word) {
    if (next_ == end_ || !next_->is_word || !text::EqualsIgnoringCase(next_->text, word)) {
      return false;
    }
    ++next_;
    return true;
  }
  bool TakeWords(std::string_view first, std::string_view second) {
    const Token* start = next_;
    if (TakeWord(first) && TakeWord(second)) return true;
    next_ = start;
    return false;
  }
  /// The text from here to right before the next token of that text, exactly as it stands.
  std::string_view TextUpTo(std::string_view token) {
    const Token* start = next_;
    next_ = std::find_if(next_, end_, [token](const Token& t) { return t.text == token; });
    return Between(start, next_);
  }
  bool Take(std::string_view token) {
    if (next_ == end_ || next_->text != token) return false;
    ++next_;
    return true;
  }
  /// The words from here on that are no clause of their own, as they stand.
  std::string_view Rule() {
    const Token* start = next_;
    while (next_ != end_ && next_->is_word && !text::EqualsIgnoringCase(next_->text, "ON")) {
      ++next_;
    }
    return Between(start, next_);
  }
  bool AtEnd() const { return next_ == end_; }
  void Skip() { ++next_; }

 private:
  static std::string_view Between(const Token* start, const Token* end) {
    if (start == end) return {};
    const Token* last = end - 1;
    return {start->text.data(),
            static_cast<std::size_t>(last->text.data() + last->text.size() - start->text.data())};
  }

  const Token* next_;
  const Token* end_;
};

/// True when the item is a foreign key.
bool ReadForeignKey(ItemReader item, ForeignKeyText& key) {
  if (!item.TakeWord("CONSTRAINT")) return false;
  key.name = item.TextUpTo("FOREIGN");
  if (!item.TakeWords("FOREIGN", "KEY")) return false;
  if (!item.Take("(")) return false;
  key.columns = item.TextUpTo(")");
  if (!item.Take(")") || !item.TakeWord("REFERENCES")) return false;
  key.referenced = item.TextUpTo(")");
  if (!item.Take(")")) return false;
  key.referenced += ')';

  key.delete_rule = key.update_rule = "RESTRICT";
  while (!item.AtEnd()) {
    if (item.TakeWords("ON", "DELETE")) {
      key.delete_rule = item.Rule();
    } else if (item.TakeWords("ON", "UPDATE")) {
      key.update_rule = item.Rule();
    } else {
      item.Skip();
    }
  }
  return true;
}

}  // namespace

std::vector<ForeignKeyText> ReadForeignKeys(std::string_view definition) {
  const std::vector<Token> tokens = Tokens(definition);
  std::vector<ForeignKeyText> keys;
  const Token* item = tokens.data();
  const Token* const end = tokens.data() + tokens.size();
  int depth = 0;
  for (const Token* token = tokens.data(); token != end; ++token) {
    if (token->text == "(") {
      if (++depth == 1) item = token + 1;
      continue;
    }
    const bool closes = token->text == ")";
    const bool ends_item = depth == 1 && (closes || token->text == ",");
    if (closes) --depth;
    if (!ends_item) continue;
    ForeignKeyText key;
    if (ReadForeignKey(ItemReader(item, token), key)) keys.push_back(std::move(key));
    // What follows the outer list are the table's options.
    if (closes) break;
    item = token + 1;
  }
  return keys;
}

std::string ChangeNames(std::string_view definition_part,
                        const std::function<std::string(std::string)>& change) {
  std::string changed;
  while (!definition_part.empty()) {
    const std::size_t quote = std::min(definition_part.find('`'), definition_part.size());
    changed += definition_part.substr(0, quote);
    definition_part.remove_prefix(quote);
    if (definition_part.empty()) break;
    const std::size_t size = QuotedEnd(definition_part);
    std::string name;
    for (std::size_t i = 1; i + 1 < size; ++i) {
      if (definition_part[i] == '`') ++i;
      name += definition_part[i];
    }
    changed += '`' + change(std::move(name)) + '`';
    definition_part.remove_prefix(size);
  }
  return changed;
}

}  // namespace dorvane::to_mssql
