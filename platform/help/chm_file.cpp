#include "platform/help/chm_file.h"

#include <chm_lib.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "platform/process/run_apart.h"
#include "platform/run_time_error.h"
#include "platform/text/ascii.h"

namespace dorvane::help {

namespace {

/// No topic comes near it; a damaged directory must not make us ask for all memory.
constexpr std::uint64_t kLargestObject = 16U << 20;

struct Closer {
  void operator()(chmFile* file) const { chm_close(file); }
};

std::optional<std::string> ReadObject(chmFile* file, chmUnitInfo& unit) {
  if (unit.length > kLargestObject) return std::nullopt;
  std::string bytes(unit.length, '\0');
  const auto size = static_cast<LONGINT64>(bytes.size());
  const auto count =
      chm_retrieve_object(file, &unit, reinterpret_cast<unsigned char*>(bytes.data()), 0, size);
  if (count != size) return std::nullopt;
  return bytes;
}

/// Sends an object from the process that reads it: its path, a line end, the number of its bytes, a
/// line end, the bytes.
int Send(chmFile* file, chmUnitInfo* unit, void* sink) {
  const auto bytes = ReadObject(file, *unit);
  if (!bytes) return CHM_ENUMERATOR_FAILURE;
  (*static_cast<const process::ByteSink*>(sink))(
      fmt::format("{}\n{}\n{}", unit->path, bytes->size(), *bytes));
  return CHM_ENUMERATOR_CONTINUE;
}

void SendAll(const std::filesystem::path& path, process::ByteSink sink) {
  const std::unique_ptr<chmFile, Closer> file(chm_open(path.c_str()));
  constexpr int kWhat = CHM_ENUMERATE_NORMAL | CHM_ENUMERATE_SPECIAL | CHM_ENUMERATE_FILES;
  if (!file || chm_enumerate(file.get(), kWhat, Send, &sink) == 0) {
    throw std::runtime_error("damaged");
  }
}

std::string_view TakeLine(std::string_view& bytes) {
  const auto end = bytes.find('\n');
  const std::string_view line = bytes.substr(0, end);
  bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
  return line;
}

[[noreturn]] void ThrowDamaged(const std::filesystem::path& path) {
  throw RunTimeError(run_time::kFileInputOutput, "Help",
                     fmt::format("The help file {} is damaged. Install Dorvane again to read its "
                                 "help.",
                                 path.string()));
}

}  // namespace

ChmFile::ChmFile(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw RunTimeError(run_time::kFileNotFound, "Help",
                       fmt::format("The help file {} is missing.", path.string()));
  }
  const auto objects =
      process::RunApart([&path](const process::ByteSink& sink) { SendAll(path, sink); });
  if (!objects) ThrowDamaged(path);
  std::string_view rest = *objects;
  while (!rest.empty()) {
    const std::string name(TakeLine(rest));
    const std::string_view number = TakeLine(rest);
    std::size_t size = 0;
    std::from_chars(number.data(), number.data() + number.size(), size);
    Take(name, std::string(rest.substr(0, size)));
    rest.remove_prefix(std::min(size, rest.size()));
  }
  if (list_.empty()) ThrowDamaged(path);
}

void ChmFile::Take(const std::string& path, std::string bytes) {
  const bool is_ordinary = !path.starts_with("/#") && !path.starts_with("/$");
  if (is_ordinary) list_.push_back(path);
  objects_.emplace(text::ToLower(path), std::move(bytes));
}

std::optional<std::string> ChmFile::Read(const std::string& object) const {
  const auto found = objects_.find(text::ToLower(object));
  if (found == objects_.end()) return std::nullopt;
  return found->second;
}

}  // namespace dorvane::help
