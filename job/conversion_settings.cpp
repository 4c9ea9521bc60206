#include "job/conversion_settings.h"

#include <fmt/format.h>

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
  settings.port = ReadInt16(file);
  settings.user_id = file.ReadLine();
  settings.password = text::FromAnsi(Encryptor().Decrypt(file.ReadRawLine()));
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

/// The value, when a line of the file can hold it.
const std::string& Storable(std::string_view what, const std::string& value) {
  OneLine(what, value);
  if (!text::FitsAnsi(value)) {
    Refuse(
        fmt::format("The {} '{}' holds characters that a settings file cannot keep", what, value));
  }
  return value;
}

std::string_view BooleanText(bool value) {
  return value ? "True" : "False";
}

void WriteServer(files::AnsiText& file, std::string_view side, const IDatabase& endpoint) {
  file.WriteLine(Storable("host name", endpoint.Server()));
  file.WriteLine(fmt::to_string(endpoint.PortNo()));
  file.WriteLine(Storable("user name", endpoint.UserId()));
  const auto password = ScrambledPassword(OneLine("password", endpoint.Password()));
  if (!password) {
    Refuse(
        fmt::format("The password of the {} holds letters that a settings file cannot keep", side));
  }
  file.WriteRawLine(*password);
  file.WriteLine(endpoint.Kind() == ServerKind::MsSql ? BooleanText(endpoint.WinNTAuthentication())
                                                      : "");
  file.WriteLine(Storable("database name", endpoint.DbName()));
}

std::string JoinTables(const NameList& tables) {
  if (tables.empty()) Refuse("There is no table to convert");
  for (const std::string& name : tables) {
    if (Storable("table name", name).find(kTableSeparator) != std::string::npos) {
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

void WriteConversionSettings(files::AnsiText& file, const IDatabase& src, const IDatabase& dest,
                             const NameList& tables, const std::string& log_path) {
  const std::string table_line = JoinTables(tables);  // before anything is written
  file.WriteLine(src.Kind() == ServerKind::MsSql ? "1" : "2");
  WriteServer(file, "source", src);
  WriteServer(file, "destination", dest);
  file.WriteLine(table_line);
  file.WriteLine(BooleanText(src.ReplaceSpaceWithUnderscore()));
  file.WriteLine(BooleanText(src.CopyTableContent()));
  file.WriteLine(fmt::to_string(src.ConvertMode()));
  file.WriteLine(BooleanText(src.ConvertRelationships()));
  file.WriteLine(Storable("log file's path", log_path));
  for (const std::string& line : OptionLines(src, dest)) file.WriteLine(Storable("option", line));
}

void SaveConversionSettings(const std::filesystem::path& path, const IDatabase& src,
                            const IDatabase& dest, const NameList& tables,
                            const std::string& log_path) {
  files::AnsiText file;
  WriteConversionSettings(file, src, dest, tables, log_path);
  files::ReplaceFile(path, file.Bytes(), files::kOwnerOnly);
}

}  // namespace dorvane
