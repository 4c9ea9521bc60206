#include "platform/help/chm_file.h"

#include <chm_lib.h>
#include <fmt/format.h>

#include "platform/run_time_error.h"

namespace dorvane::help {

namespace {

/// No topic comes near it; a damaged directory must not make us ask for all memory.
constexpr std::uint64_t kLargestObject = 64U << 20;

int Collect(chmFile* /*file*/, chmUnitInfo* unit, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(unit->path);
  return CHM_ENUMERATOR_CONTINUE;
}

}  // namespace

void ChmFile::Closer::operator()(chmFile* file) const {
  chm_close(file);
}

ChmFile::ChmFile(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw RunTimeError(run_time::kFileNotFound, "Help",
                       fmt::format("The help file {} is missing.", path.string()));
  }
  file_.reset(chm_open(path.c_str()));
  if (!file_) {
    throw RunTimeError(run_time::kFileInputOutput, "Help",
                       fmt::format("The help file {} can not be read.", path.string()));
  }
}

std::optional<std::string> ChmFile::Read(const std::string& object) const {
  chmUnitInfo unit{};
  const bool found = chm_resolve_object(file_.get(), object.c_str(), &unit) == CHM_RESOLVE_SUCCESS;
  if (!found || unit.length > kLargestObject) return std::nullopt;
  std::string bytes(unit.length, '\0');
  const auto size = static_cast<LONGINT64>(bytes.size());
  const auto count = chm_retrieve_object(file_.get(), &unit,
                                         reinterpret_cast<unsigned char*>(bytes.data()), 0, size);
  if (count != size) return std::nullopt;
  return bytes;
}

std::vector<std::string> ChmFile::List() const {
  std::vector<std::string> names;
  chm_enumerate(file_.get(), CHM_ENUMERATE_NORMAL | CHM_ENUMERATE_FILES, Collect, &names);
  return names;
}

}  // namespace dorvane::help
