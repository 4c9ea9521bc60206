#include "platform/text/text_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/run_time_error.h"
#include "platform/text/code_page.h"

namespace dorvane::text {

namespace {

[[noreturn]] void ThrowFileError(int code, const std::filesystem::path& path) {
  const auto folder = path.parent_path();
  std::int32_t number = run_time::kFileInputOutput;
  if (code == EACCES || code == EPERM || code == EROFS || code == EISDIR) {
    number = run_time::kPermissionDenied;
  } else if (code == ENOENT || code == ENOTDIR) {
    std::error_code ignored;
    const bool has_folder = folder.empty() || std::filesystem::is_directory(folder, ignored);
    number = has_folder ? run_time::kFileNotFound : run_time::kPathNotFound;
  }
  throw RunTimeError(number, "Dorvane", fmt::format("{}: {}", path.string(), std::strerror(code)));
}

}  // namespace

LineReader::LineReader(const std::filesystem::path& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) ThrowFileError(EISDIR, path);
  file_.reset(std::fopen(path.c_str(), "rbe"));
  if (!file_) ThrowFileError(errno, path);
}

std::string LineReader::ReadRawLine() {
  char* line = nullptr;
  std::size_t capacity = 0;
  const ssize_t length = getline(&line, &capacity, file_.get());
  const std::unique_ptr<char, decltype(&std::free)> owner(line, &std::free);
  if (length < 0) {
    throw RunTimeError(run_time::kInputPastEnd, "Dorvane", "Input past end of file");
  }
  std::string text(line, static_cast<std::size_t>(length));
  if (text.ends_with('\n')) text.pop_back();
  if (text.ends_with('\r')) text.pop_back();
  return text;
}

std::string LineReader::ReadLine() {
  return FromAnsi(ReadRawLine());
}

LineWriter::LineWriter(const std::filesystem::path& path, OpenMode mode, bool owner_only) {
  const int how = mode == OpenMode::Append ? O_APPEND : O_TRUNC;
  descriptor_ = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | how, owner_only ? 0600 : 0666);
  if (descriptor_ < 0) ThrowFileError(errno, path);
}

LineWriter::LineWriter(LineWriter&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

LineWriter& LineWriter::operator=(LineWriter&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

LineWriter::~LineWriter() {
  if (descriptor_ >= 0) close(descriptor_);
}

void LineWriter::WriteLine(std::string_view utf8) {
  WriteRawLine(ToAnsi(utf8));
}

void LineWriter::WriteRawLine(std::string_view ansi) {
  const std::string line = std::string(ansi) + "\r\n";
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = write(descriptor_, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) ThrowFileError(errno, "log or settings file");
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

void LineWriter::Close() {
  if (descriptor_ < 0) return;
  const int failed = fsync(descriptor_) != 0 && errno != EINVAL && errno != EROFS ? errno : 0;
  close(std::exchange(descriptor_, -1));
  if (failed != 0) ThrowFileError(failed, "log or settings file");
}

}  // namespace dorvane::text
