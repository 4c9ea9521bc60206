#include "tools/compare.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "platform/ado/catalog.h"

namespace dorvane {

namespace {

using ado::DataType;

/// What a round trip over MySQL cannot keep of a type.
struct Loss {
  DataType type;
  std::string_view reason;
};

constexpr std::array<Loss, 4> kLosses = {{
    {DataType::DBTimeStamp, "datetime keeps whole seconds from the year 1753 on"},
    {DataType::DBDate, "dates before the year 1753 are raised to it"},
    {DataType::DBTime, "a time comes back on the day 1899-12-30, in whole seconds"},
    {DataType::Variant, "a variant's own type; its value comes back as bytes"},
}};

std::optional<std::string_view> ReasonFor(DataType type) {
  const auto found = std::ranges::find(kLosses, type, &Loss::type);
  if (found == kLosses.end()) return std::nullopt;
  return found->reason;
}

std::string Hex(std::string_view bytes) {
  std::string text;
  for (const unsigned char byte : bytes) text += fmt::format("{:02X}", byte);
  return text;
}

/// One text for all ways in which servers hold the same number, text, time or bytes.
struct Canonical {
  WayBack way;

  std::string operator()(ado::Null) const { return "NULL"; }
  std::string operator()(bool value) const { return value ? "1" : "0"; }
  std::string operator()(std::int64_t value) const { return fmt::to_string(value); }
  std::string operator()(std::uint64_t value) const { return fmt::to_string(value); }
  std::string operator()(float value) const { return fmt::format("{}", value); }
  std::string operator()(double value) const { return fmt::format("{}", value); }
  std::string operator()(ado::Decimal value) const {
    std::string digits(value.digits);
    if (digits.find('.') == std::string::npos) return digits;
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.ends_with('.')) digits.pop_back();
    return digits;
  }
  std::string operator()(std::string_view value) const {
    return std::string(value.substr(0, value.find_last_not_of(' ') + 1));
  }
  std::string operator()(ado::Binary value) const { return Hex(value.bytes); }
  std::string operator()(const ado::DateTime& value) const {
    if (way == WayBack::Exact) {
      // As a text has it where the other server keeps fewer digits.
      return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:07}", value.year, value.month,
                         value.day, value.seconds / 3600, value.seconds / 60 % 60,
                         value.seconds % 60, value.nanoseconds / 100);
    }
    return fmt::format("{:04}-{:02}-{:02} {:05}.{:09}", value.year, value.month, value.day,
                       value.seconds, value.nanoseconds);
  }
  std::string operator()(ado::Guid value) const {
    if (way == WayBack::Exact) return std::string(value.text.substr(1, value.text.size() - 2));
    std::string digits(value.text);
    std::erase_if(digits, [](char c) { return c == '-' || c == '{' || c == '}'; });
    return digits;
  }
};

std::string CanonicalText(const ado::Value& value, const ado::FieldInfo& field, WayBack way) {
  const auto* bytes = std::get_if<ado::Binary>(&value);
  const bool is_text = way == WayBack::Exact && field.type == DataType::Variant;
  if (bytes != nullptr && is_text) return std::string(bytes->bytes);
  return std::visit(Canonical{way}, value);
}

std::string Quoted(const ado::TableName& table) {
  return (table.IsBare() ? "" : "[" + table.schema + "].") + "[" + table.name + "]";
}

/// The rows of a table of the last database in the order of the first one's key.
std::string OrderedSelect(ado::Connection& connection, const ado::TableName& table) {
  std::string order;
  for (const ado::Index& index : connection.Indexes(table)) {
    if (!index.primary_key) continue;
    for (const std::string& column : index.columns) {
      order += fmt::format("{}[{}]", order.empty() ? " order by " : ", ", column);
    }
  }
  return fmt::format("select * from {}{}", Quoted(table), order);
}

struct ColumnDifference {
  std::size_t rows = 0;
  std::string first_example;
};

class TableComparison {
 public:
  TableComparison(ado::Connection& first, ado::Connection& last, const ado::TableName& table,
                  WayBack way)
      : table_(table.Text()),
        way_(way),
        first_(first.Execute(OrderedSelect(first, table))),
        last_(last.Execute(OrderedSelect(first, table))) {}

  void Run(Comparison& result) {
    if (first_.FieldCount() != last_.FieldCount()) {
      result.faults.push_back(
          fmt::format("{}: {} columns became {}", table_, first_.FieldCount(), last_.FieldCount()));
      return;
    }
    differences_.resize(first_.FieldCount());
    std::size_t rows = 0;
    for (; !first_.AtEnd() && !last_.AtEnd(); first_.MoveNext(), last_.MoveNext(), ++rows) {
      CompareRow();
    }
    if (first_.AtEnd() != last_.AtEnd()) {
      result.faults.push_back(fmt::format("{}: {} after {} rows", table_,
                                          first_.AtEnd() ? "more rows" : "rows are missing", rows));
    }
    Report(rows, result);
  }

 private:
  void CompareRow() {
    for (std::size_t i = 0; i < differences_.size(); ++i) {
      const std::string before =
          CanonicalText(first_.Field(i).Value(), first_.FieldInfos()[i], way_);
      const std::string after = CanonicalText(last_.Field(i).Value(), last_.FieldInfos()[i], way_);
      if (before == after) continue;
      if (differences_[i].rows++ == 0) {
        differences_[i].first_example = fmt::format("{:.40} became {:.40}", before, after);
      }
    }
  }

  void Report(std::size_t rows, Comparison& result) {
    std::size_t equal = 0;
    for (std::size_t i = 0; i < differences_.size(); ++i) {
      const ColumnDifference& difference = differences_[i];
      const ado::FieldInfo& field = first_.FieldInfos()[i];
      if (difference.rows == 0) {
        ++equal;
      } else if (const auto reason = ReasonFor(field.type); reason && way_ == WayBack::Classic) {
        result.losses.push_back(
            fmt::format("{}.{}, {} rows: {}", table_, field.name, difference.rows, *reason));
      } else {
        result.faults.push_back(fmt::format("{}.{}, {} rows differ: {}", table_, field.name,
                                            difference.rows, difference.first_example));
      }
    }
    result.tables.push_back(fmt::format("{}: {} rows, {} of {} columns equal", table_, rows, equal,
                                        differences_.size()));
  }

  std::string table_;
  WayBack way_;
  ado::Recordset first_;
  ado::Recordset last_;
  std::vector<ColumnDifference> differences_;
};

}  // namespace

Comparison CompareDatabases(ado::Connection& first, ado::Connection& last, WayBack way) {
  Comparison result;
  for (const ado::TableInfo& table : first.Tables()) {
    if (table.type != "TABLE") continue;
    TableComparison(first, last, table.name, way).Run(result);
  }
  return result;
}

}  // namespace dorvane
