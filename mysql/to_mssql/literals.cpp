#include "mysql/to_mssql/literals.h"

#include <algorithm>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "platform/text/code_page.h"

namespace dorvane {

namespace {

// Seventeen fifty-three begins the server's datetime.
constexpr ado::DateTime kEarliest{1753, 1, 1, 0, 0};

/// Appends what `writer` puts into at most `size` bytes.
template <typename Writer>
void AppendWritten(std::string& out, std::size_t size, Writer writer) {
  const std::size_t start = out.size();
  out.resize(start + size);
  out.resize(start + writer(out.data() + start));
}

/// Appends the literal, whatever form the source's value has.
struct LiteralWriter {
  std::string& out;

  void operator()(ado::Null) const {}
  void operator()(bool value) const { out += value ? '1' : '0'; }
  void operator()(std::int64_t value) const { Integer(value); }
  void operator()(std::uint64_t value) const { Integer(value); }
  void operator()(float value) const { Number(value); }
  void operator()(double value) const { Number(value); }
  void operator()(ado::Decimal value) const { Number(value); }
  void operator()(std::string_view value) const { AppendTextLiteral(out, value); }
  void operator()(ado::Binary value) const { Bytes(value.bytes); }
  void operator()(ado::Guid value) const { Bytes(GuidBytes(value.text)); }
  void operator()(const ado::DateTime& value) const {
    const ado::DateTime date = std::max(Normalised(value), kEarliest);
    out += '\'';
    AppendWritten(out, kDateTimeSize, [&](char* to) { return WriteDateTime(to, date, false); });
    out += '\'';
  }

  void Integer(const ado::Value& value) const {
    AppendWritten(out, NumberSize(value), [&](char* to) { return WriteInteger(to, value); });
  }
  void Number(const ado::Value& value) const {
    AppendWritten(out, NumberSize(value), [&](char* to) { return WriteNumber(to, value); });
  }
  void Bytes(std::string_view bytes) const {
    out += "0x";
    AppendHexDigits(out, bytes);
  }
};

bool IsAscii(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return (c & 0x80) != 0; });
}

}  // namespace

void AppendDataValue(std::string& out, const ado::Value& value, const ColumnFacts& facts) {
  if (!ado::IsNull(value)) {
    std::visit(LiteralWriter{out}, value);
    return;
  }
  // Without a default the server is left to refuse the row.
  const bool has_default = !facts.nullable && !facts.default_text.empty();
  out += has_default ? std::string_view(facts.default_text) : std::string_view("NULL");
}

void AppendTextLiteral(std::string& out, std::string_view text) {
  if (!IsAscii(text) && !text::FitsAnsi(text)) out += 'N';
  out += '\'';
  for (std::size_t quote = text.find('\''); quote != std::string_view::npos;
       quote = text.find('\'')) {
    out += text.substr(0, quote + 1);
    out += '\'';
    text.remove_prefix(quote + 1);
  }
  out += text;
  out += '\'';
}

std::string DateLiteral(const ado::DateTime& value) {
  std::string literal;
  LiteralWriter{literal}(value);
  return literal;
}

}  // namespace dorvane
