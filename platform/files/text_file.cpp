#include "platform/files/text_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>

#include "platform/files/replace_file.h"
#include "platform/run_time_error.h"
#include "platform/text/code_page.h"

namespace dorvane::files {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

}  // namespace

LineReader::LineReader(const std::filesystem::path& path) : path_(path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) ThrowFileError(EISDIR, path);
  file_.reset(std::fopen(path.c_str(), "rbe"));
  if (!file_) ThrowFileError(errno, path);
}

std::optional<std::string> LineReader::NextRawLine() {
  char* line = nullptr;
  std::size_t capacity = 0;
  const ssize_t length = getline(&line, &capacity, file_.get());
  const std::unique_ptr<char, decltype(&std::free)> owner(line, &std::free);
  ++line_number_;
  if (length < 0 && std::ferror(file_.get()) != 0) ThrowFileError(errno, path_);
  if (length < 0) return std::nullopt;
  std::string text(line, static_cast<std::size_t>(length));
  if (text.ends_with('\n')) text.pop_back();
  if (text.ends_with('\r')) text.pop_back();
  return text;
}

std::optional<std::string> LineReader::NextLine() {
  const auto line = NextRawLine();
  if (!line) return std::nullopt;
  return text::FromAnsi(*line);
}

std::string LineReader::ReadRawLine() {
  if (auto line = NextRawLine()) return *std::move(line);
  throw RunTimeError(run_time::kInputPastEnd, "Dorvane", "Input past end of file");
}

std::string LineReader::ReadLine() {
  return text::FromAnsi(ReadRawLine());
}

void AnsiText::WriteLine(std::string_view utf8) {
  WriteRawLine(text::ToAnsi(utf8));
}

void AnsiText::WriteRawLine(std::string_view ansi) {
  bytes_.append(ansi).append(kLineEnd);
}

LineAppender::LineAppender(const std::filesystem::path& path)
    : path_(path),
      // A pipe that nobody reads is refused instead of waited for.
      file_(
          open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, kOwnerOnly)) {
  if (!file_.IsOpen()) ThrowFileError(errno, path);
  fcntl(file_.Number(), F_SETFL, O_APPEND);
}

void LineAppender::WriteLine(std::string_view utf8) {
  WriteAll(file_, text::ToAnsi(utf8).append(kLineEnd), path_);
}

void LineAppender::Close() {
  if (!file_.IsOpen()) return;
  const int sync_error = Sync(file_);
  const int close_error = file_.Close();
  const int error = sync_error != 0 ? sync_error : close_error;
  if (error != 0) ThrowFileError(error, path_);
}

}  // namespace dorvane::files
