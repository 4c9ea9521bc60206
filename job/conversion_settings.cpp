#include "job/conversion_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "job/encryptor.h"
#include "job/settings_options.h"
#include "platform/files/replace_file.h"
#include "platform/text/ascii.h"
#include "platform/text/code_page.h"
#include "platform/text/number_text.h"

namespace dorvane {

namespace {

constexpr std::string_view kTableSeparator = ":<:";
constexpr int kLogLine = 19;

NameList SplitTables(std::string_view line) {
  NameList tables;
  while (!line.empty()) {
    const auto end = line.find(kTableSeparator);
    tables.emplace_back(line.substr(0, end));
    if (end == std::string_view::npos) break;
    line.remove_prefix(end + kTableSeparator.size());
    if (line.empty()) tables.emplace_back();
  }
  return tables;
}

/// The failure of a line, with the place that it is mended at. `value` is not shown when empty.
RunTimeError At(const files::LineReader& file, const RunTimeError& error,
                const std::string& value = {}) {
  return {error.Number(), error.Source(),
          fmt::format("{} (line {} of {}{}{})", error.Description(), file.LineNumber(),
                      file.Path().filename().string(), value.empty() ? "" : ": ", value)};
}

/// The value that `parse` makes of a line.
template <typename Value>
Value Parsed(const files::LineReader& file, const std::string& line,
             Value (*parse)(std::string_view)) {
  try {
    return parse(line);
  } catch (const RunTimeError& error) {
    throw At(file, error, line);
  }
}

bool ReadBoolean(files::LineReader& file) {
  return Parsed(file, file.ReadLine(), text::ParseBoolean);
}

std::int16_t ReadInt16(files::LineReader& file) {
  return Parsed(file, file.ReadLine(), text::ParseInt16);
}

void ReadServer(files::LineReader& file, IDatabase& endpoint) {
  ado::ConnectionSettings settings;
  settings.server = file.ReadLine();
  settings.port = Parsed(file, file.ReadLine(), text::ParsePort);
  settings.user_id = file.ReadLine();
  settings.password = PlainPassword(file.ReadRawLine(), file.Form());
  const std::string win_auth = file.ReadLine();
  if (endpoint.Kind() == ServerKind::MsSql && !win_auth.empty()) {
    settings.integrated_security = Parsed(file, win_auth, text::ParseBoolean);
  }
  settings.database = file.ReadLine();
  endpoint.SetSettings(std::move(settings));
}

[[noreturn]] void Refuse(const std::string& why) {
  throw RunTimeError(run_time::kInvalidArgument, "Dorvane", why);
}

/// The value, when it is one line.
const std::string& OneLine(std::string_view what, const std::string& value) {
  if (value.find_first_of("\r\n") != std::string::npos) {
    Refuse(fmt::format("The {} holds a line break, which a settings file cannot keep", what));
  }
  return value;
}

std::string_view BooleanText(bool value) {
  return value ? "True" : "False";
}

void WriteServer(files::TextLines& file, std::string_view side, const IDatabase& endpoint) {
  file.WriteLine(OneLine("host name", endpoint.Server()));
  file.WriteLine(fmt::to_string(endpoint.PortNo()));
  file.WriteLine(OneLine("user name", endpoint.UserId()));
  const auto password = ScrambledPassword(OneLine("password", endpoint.Password()), file.Form());
  if (!password) {
    Refuse(
        fmt::format("The password of the {} holds letters that a settings file cannot keep", side));
  }
  file.WriteRawLine(*password);
  file.WriteLine(endpoint.Kind() == ServerKind::MsSql ? BooleanText(endpoint.WinNTAuthentication())
                                                      : "");
  file.WriteLine(OneLine("database name", endpoint.DbName()));
}

std::string JoinTables(const NameList& tables) {
  if (tables.empty()) Refuse("There is no table to convert");
  for (const std::string& name : tables) {
    if (OneLine("table name", name).find(kTableSeparator) != std::string::npos) {
      Refuse(fmt::format(
          "The table name '{}' holds '{}', which separates the names in a settings file", name,
          kTableSeparator));
    }
  }
  return fmt::format("{}", fmt::join(tables, kTableSeparator));
}

void ReadOptions(files::LineReader& file, ConversionSettings& settings) {
  while (const auto line = file.NextLine()) {
    if (text::Trim(*line, text::kWhiteSpace).empty()) continue;
    try {
      ReadOption(*line, *settings.src, *settings.dest);
    } catch (const RunTimeError& error) {
      throw At(file, error, *line);
    }
  }
}

bool FitsAnsi(const IDatabase& endpoint) {
  return text::FitsAnsi(endpoint.Server()) && text::FitsAnsi(endpoint.UserId()) &&
         text::FitsAnsi(endpoint.DbName()) &&
         ScrambledPassword(endpoint.Password(), files::TextForm::Ansi).has_value();
}

files::TextForm FormOf(const IDatabase& src, const IDatabase& dest, const std::string& table_line,
                       const std::string& log_path, const std::vector<std::string>& options) {
  const bool fits = FitsAnsi(src) && FitsAnsi(dest) && text::FitsAnsi(table_line) &&
                    text::FitsAnsi(log_path) && std::ranges::all_of(options, text::FitsAnsi);
  return fits ? files::TextForm::Ansi : files::TextForm::Utf8;
}

bool IsDirection(std::string_view line) {
  return line == "1" || line == "2";
}

ConversionSettings ReadLines(files::LineReader& file, const EndpointFactory& make_endpoint) {
  const std::string direction = file.ReadLine();
  if (!IsDirection(direction)) throw UnexpectedDirection();
  const bool from_ms_sql = direction == "1";

  ConversionSettings settings;
  settings.src = make_endpoint(from_ms_sql ? ServerKind::MsSql : ServerKind::MySql);
  settings.dest = make_endpoint(from_ms_sql ? ServerKind::MySql : ServerKind::MsSql);
  ReadServer(file, *settings.src);
  ReadServer(file, *settings.dest);
  settings.tables = SplitTables(file.ReadLine());
  ConversionOptions options;
  options.replace_space_with_underscore = ReadBoolean(file);
  options.copy_table_content = ReadBoolean(file);
  options.convert_mode = ReadInt16(file);
  options.convert_relationships = ReadBoolean(file);
  settings.src->SetOptions(options);
  settings.log_path = file.ReadLine();
  settings.form = file.Form();
  ReadOptions(file, settings);
  return settings;
}

}  // namespace

ConversionSettings ReadConversionSettings(files::LineReader& file,
                                          const EndpointFactory& make_endpoint) {
  try {
    return ReadLines(file, make_endpoint);
  } catch (const RunTimeError& error) {
    if (error.Number() != run_time::kInputPastEnd) throw;
    throw At(file, error);
  }
}

std::optional<std::string> LogPathIn(const std::filesystem::path& path) {
  try {
    files::LineReader file(path);
    if (!IsDirection(file.ReadLine())) return std::nullopt;
    while (file.LineNumber() < kLogLine - 1) file.ReadRawLine();
    return file.ReadLine();
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
}

std::string ConversionSettingsText(const IDatabase& src, const IDatabase& dest,
                                   const NameList& tables, const std::string& log_path) {
  const std::string table_line = JoinTables(tables);
  const std::vector<std::string> options = OptionLines(src, dest);
  files::TextLines file(FormOf(src, dest, table_line, log_path, options));
  file.WriteLine(src.Kind() == ServerKind::MsSql ? "1" : "2");
  WriteServer(file, "source", src);
  WriteServer(file, "destination", dest);
  file.WriteLine(table_line);
  file.WriteLine(BooleanText(src.ReplaceSpaceWithUnderscore()));
  file.WriteLine(BooleanText(src.CopyTableContent()));
  file.WriteLine(fmt::to_string(src.ConvertMode()));
  file.WriteLine(BooleanText(src.ConvertRelationships()));
  file.WriteLine(OneLine("log file's path", log_path));
  for (const std::string& line : options) file.WriteLine(OneLine("option", line));
  return file.Bytes();
}

void SaveConversionSettings(const std::filesystem::path& path, const IDatabase& src,
                            const IDatabase& dest, const NameList& tables,
                            const std::string& log_path) {
  files::ReplaceFile(path, ConversionSettingsText(src, dest, tables, log_path), files::kOwnerOnly);
}

}  // namespace dorvane
