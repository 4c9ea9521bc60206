#include "tests/conversions/order.h"

#include <algorithm>
#include <regex>
#include <stdexcept>

namespace dorvane::test {

namespace {

void TakeWord(const std::string& word, Job& job) {
  if (word == "merge") {
    job.mode = convert_mode::kMerge;
  } else if (word == "relationships") {
    job.relationships = true;
  } else if (word == "underscores") {
    job.underscores = true;
  } else if (!word.empty()) {
    throw std::runtime_error("no word of a conversion: " + word);
  }
}

void TakeLine(const std::string& line, Order& order) {
  const std::string rest = line.substr(std::min(line.find(' ') + 1, line.size()));
  if (line.starts_with("tables ")) {
    order.job.tables = SplitAtCommas(rest);
  } else if (line.starts_with("login of MySQL ")) {
    order.job.my_sql_user = line.substr(line.rfind(' ') + 1);
  } else if (line.starts_with("login ")) {
    order.job.ms_sql_user = rest;
  } else if (line.starts_with("exit ")) {
    order.status = std::stoi(rest);
  } else if (line == "preview agrees") {
    order.is_previewed = true;
  } else {
    order.options.push_back(line);
  }
}

}  // namespace

Order ReadOrder(const std::string& head, const Lines& body) {
  static const std::regex convert(
      "(?:convert|preview)(?: (.+))? to (mssql|mysql)(?: ([^:]+))?(?:: (.+))?");
  std::smatch parts;
  if (!std::regex_match(head, parts, convert)) throw std::runtime_error("no step: " + head);
  Order order;
  Job& job = order.job;
  job.source = parts[2] == "mysql" ? ServerKind::MsSql : ServerKind::MySql;
  job.source_db = parts[1].matched ? parts[1].str() : "shop";
  job.dest_db = parts[3].matched ? parts[3].str() : "shop";
  for (const std::string& word : SplitAtCommas(parts[4].str())) TakeWord(word, job);
  for (const std::string& line : body) TakeLine(line, order);
  return order;
}

}  // namespace dorvane::test
