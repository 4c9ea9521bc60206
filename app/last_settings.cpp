#include "app/last_settings.h"

#include <fmt/format.h>

#include "app/encryptor.h"
#include "platform/text/code_page.h"
#include "platform/text/text_file.h"

namespace dorvane {

namespace {

constexpr std::string_view kFileName = "config";

const LastSettings kDefaults = {
    {"mssql", "false", "1433", "localhost", "sa", "", "3306", "localhost", "root", ""}};

void WriteServer(text::LineWriter& file, const IDatabase& endpoint) {
  file.WriteLine(fmt::to_string(endpoint.PortNo()));
  file.WriteLine(endpoint.Server());
  file.WriteLine(endpoint.UserId());
  file.WriteRawLine(Encryptor().Encrypt(text::ToAnsi(endpoint.Password())));
}

}  // namespace

std::string LastSettings::PlainPassword(Element element) const {
  return text::FromAnsi(Encryptor().Decrypt(text::ToAnsi(elements[element])));
}

LastSettings LoadLastSettings(const std::filesystem::path& folder,
                              const std::function<void(std::string_view message)>& report) {
  LastSettings settings;
  try {
    text::LineReader file(folder / kFileName);
    for (std::string& element : settings.elements) element = file.ReadLine();
  } catch (const RunTimeError& error) {
    if (error.Number() == run_time::kFileNotFound) return kDefaults;
    report(fmt::format("Unkown error {} - {}", error.Number(), error.Description()));
  }
  return settings;
}

void SaveLastSettings(const std::filesystem::path& folder, const IDatabase& src,
                      const IDatabase& dest) {
  // Written beside the old file and renamed, so that a full disk leaves the old one whole.
  const auto path = folder / kFileName;
  const auto fresh = folder / fmt::format("{}.new", kFileName);
  const bool from_ms_sql = src.Kind() == ServerKind::MsSql;
  text::LineWriter file(fresh, text::OpenMode::Replace, true);
  file.WriteLine(from_ms_sql ? "mssql" : "mysql");
  file.WriteLine((from_ms_sql ? src : dest).WinNTAuthentication() ? "true" : "false");
  WriteServer(file, src);
  WriteServer(file, dest);
  file.Close();
  std::error_code failure;
  std::filesystem::rename(fresh, path, failure);
  if (failure) throw RunTimeError(run_time::kFileInputOutput, "Dorvane", failure.message());
}

}  // namespace dorvane
