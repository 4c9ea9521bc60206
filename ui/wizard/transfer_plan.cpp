#include "ui/wizard/transfer_plan.h"

#include <fmt/format.h>

namespace dorvane {

namespace {

struct Choice {
  bool (*is_chosen)(const ConversionOptions& options);
  const char* words;
};
constexpr Choice kChoices[] = {
    {[](const ConversionOptions& o) { return o.convert_mode == convert_mode::kOverwrite; },
     "existing tables are overwritten (dropped)"},
    {[](const ConversionOptions& o) { return o.convert_mode == convert_mode::kMerge; },
     "existing tables are kept and added to"},
    {[](const ConversionOptions& o) { return !o.copy_table_content; },
     "definitions only, without rows"},
    {[](const ConversionOptions& o) { return o.replace_space_with_underscore; },
     "spaces in names become underscores"},
    {[](const ConversionOptions& o) { return o.convert_relationships; }, "with relationships"},
    {[](const ConversionOptions& o) { return o.types == TypeMapping::Exact; },
     "every value exactly"},
    {[](const ConversionOptions& o) { return o.verification == Verification::Counts; },
     "the numbers of rows are compared afterwards"},
    {[](const ConversionOptions& o) { return o.verification == Verification::Values; },
     "every value is compared afterwards"},
    {[](const ConversionOptions& o) { return o.computed_columns == ComputedColumns::Generated; },
     "computed columns stay computed"},
};

}  // namespace

std::string PlanText(const IDatabase& src, const IDatabase& dest, std::size_t tables) {
  std::string text =
      fmt::format("{} {} from {}/{} to {}/{}", tables, tables == 1 ? "table" : "tables",
                  src.Server(), src.DbName(), dest.Server(), dest.DbName());
  for (const Choice& choice : kChoices) {
    if (choice.is_chosen(src.Options())) text += std::string("; ") + choice.words;
  }
  return text;
}

}  // namespace dorvane
