#include "job/last_settings.h"

#include <fmt/format.h>

#include "job/encryptor.h"
#include "platform/files/replace_file.h"
#include "platform/files/text_file.h"
#include "platform/run_time_error.h"
#include "platform/text/code_page.h"

namespace dorvane {

namespace {

constexpr std::string_view kFileName = "config";

const LastSettings kDefaults = {
    {"mssql", "false", "1433", "localhost", "sa", "", "3306", "localhost", "root", ""}};

/// Better none than another one.
std::string_view IfKept(const std::string& value) {
  return text::FitsAnsi(value) ? std::string_view(value) : std::string_view();
}

void WriteServer(files::TextLines& file, const IDatabase& endpoint) {
  file.WriteLine(fmt::to_string(endpoint.PortNo()));
  file.WriteLine(IfKept(endpoint.Server()));
  file.WriteLine(IfKept(endpoint.UserId()));
  file.WriteRawLine(ScrambledPassword(endpoint.Password(), file.Form()).value_or(""));
}

}  // namespace

std::string LastSettings::PlainPassword(Element element) const {
  return dorvane::PlainPassword(text::ToAnsi(elements[element]), files::TextForm::Ansi);
}

LastSettings LoadLastSettings(const std::filesystem::path& folder,
                              const std::function<void(std::string_view message)>& report) {
  LastSettings settings;
  try {
    files::LineReader file(folder / kFileName);
    for (std::string& element : settings.elements) element = file.ReadLine();
  } catch (const RunTimeError& error) {
    const bool is_missing =
        error.Number() == run_time::kFileNotFound || error.Number() == run_time::kPathNotFound;
    if (is_missing) return kDefaults;
    report(fmt::format("Unkown error {} - {}", error.Number(), error.Description()));
  }
  return settings;
}

void SaveLastSettings(const std::filesystem::path& folder, const IDatabase& src,
                      const IDatabase& dest) {
  const bool from_ms_sql = src.Kind() == ServerKind::MsSql;
  files::TextLines file;
  file.WriteLine(from_ms_sql ? "mssql" : "mysql");
  file.WriteLine((from_ms_sql ? src : dest).WinNTAuthentication() ? "true" : "false");
  WriteServer(file, src);
  WriteServer(file, dest);
  files::ReplaceFile(folder / kFileName, file.Bytes(), files::kOwnerOnly);
}

}  // namespace dorvane
