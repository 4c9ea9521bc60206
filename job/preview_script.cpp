#include "job/preview_script.h"

#include <fmt/format.h>

#include "platform/text/utf8.h"

namespace dorvane {

namespace {

std::string DatabaseOf(const IDatabase& endpoint) {
  return fmt::format("{} {}/{}", endpoint.Kind() == ServerKind::MsSql ? "MS SQL Server" : "MySQL",
                     endpoint.Server(), endpoint.DbName());
}

std::string Counted(std::int64_t number, std::string_view what) {
  return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

}  // namespace

void PreviewScript::Rehearse(IDatabase& src, IDatabase& dest, const NameList& tables) {
  Comment(fmt::format("What a run would do: {} from {} to {}. Nothing was changed.",
                      Counted(static_cast<std::int64_t>(tables.size()), "table"), DatabaseOf(src),
                      DatabaseOf(dest)));
  const std::string_view terminator = dest.Kind() == ServerKind::MySql ? ";" : "\ngo";
  src.SetListener(this);
  try {
    src.RehearseTransfer(dest, tables, [&](std::string_view sql) {
      write_(sql.starts_with("--") ? std::string(sql) : fmt::format("{}{}", sql, terminator));
    });
  } catch (...) {
    src.SetListener(nullptr);
    throw;
  }
  src.SetListener(nullptr);
  write_("");
  Comment(remarks_ == 0 ? "Nothing would be lost." : Counted(remarks_, "remark") + ", see above.");
}

void PreviewScript::Comment(std::string_view text) {
  write_(fmt::format("-- {}", text::Visible(text)));
}

void PreviewScript::Remark(std::string_view text) {
  ++remarks_;
  Comment(text);
}

void PreviewScript::Fail(std::string_view message, std::string_view source) {
  Remark(fmt::format("Lost: {} - {}", source, message));
}

void PreviewScript::Note(std::string_view message) {
  Remark(fmt::format("Note: {}", message));
}

void PreviewScript::ErrorOccured(std::string_view message, std::int32_t /*style*/,
                                 std::string_view source) {
  Fail(message, source);
}

void PreviewScript::TableContentTransferStarted(std::string_view /*table_name*/,
                                                std::int32_t rows) {
  Comment(fmt::format("{} {} copied", Counted(rows, "row"), rows == 1 ? "is" : "are"));
}

void PreviewScript::TableConversionStarted(std::string_view table_name) {
  write_("");
  Comment(fmt::format("Table {}", table_name));
}

void PreviewScript::TableRelationsConversionStarted(std::string_view table_name) {
  write_("");
  Comment(fmt::format("Relationships of table {}", table_name));
}

}  // namespace dorvane
