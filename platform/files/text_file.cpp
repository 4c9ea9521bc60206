#include "platform/files/text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/files/replace_file.h"
#include "platform/run_time_error.h"
#include "platform/text/code_page.h"

namespace dorvane::files {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

enum class Head { Nothing, Utf8Mark, Other };

/// What a file begins with.
Head HeadOf(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return Head::Other;
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  char head[kUtf8Mark.size()];
  const ssize_t size = file.IsOpen() ? read(file.Number(), head, sizeof head) : -1;
  if (size == 0) return Head::Nothing;
  const std::string_view text(head, size < 0 ? 0 : static_cast<std::size_t>(size));
  return text == kUtf8Mark ? Head::Utf8Mark : Head::Other;
}

std::string Encoded(std::string_view utf8, TextForm form) {
  return form == TextForm::Utf8 ? std::string(utf8) : text::ToAnsi(utf8);
}

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
  if (line_number_ == 1 && text.starts_with(kUtf8Mark)) {
    text.erase(0, kUtf8Mark.size());
    form_ = TextForm::Utf8;
  }
  if (text.ends_with('\n')) text.pop_back();
  if (text.ends_with('\r')) text.pop_back();
  return text;
}

std::optional<std::string> LineReader::NextLine() {
  const auto line = NextRawLine();
  if (!line) return std::nullopt;
  return InUtf8(*line);
}

std::string LineReader::InUtf8(std::string line) const {
  return form_ == TextForm::Utf8 ? std::move(line) : text::FromAnsi(line);
}

std::string LineReader::ReadRawLine() {
  if (auto line = NextRawLine()) return *std::move(line);
  throw RunTimeError(run_time::kInputPastEnd, "Dorvane", "Input past end of file");
}

std::string LineReader::ReadLine() {
  return InUtf8(ReadRawLine());
}

TextLines::TextLines(TextForm form)
    : form_(form), bytes_(form == TextForm::Utf8 ? kUtf8Mark : std::string_view()) {}

void TextLines::WriteLine(std::string_view utf8) {
  WriteRawLine(Encoded(utf8, form_));
}

void TextLines::WriteRawLine(std::string_view bytes) {
  bytes_.append(bytes).append(kLineEnd);
}

LineAppender::LineAppender(const std::filesystem::path& path, TextForm form)
    : path_(path),
      form_(form),
      // A pipe that nobody reads is refused instead of waited for.
      file_(
          open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, kOwnerOnly)) {
  if (!file_.IsOpen()) ThrowFileError(errno, path);
  fcntl(file_.Number(), F_SETFL, O_APPEND);
  const Head head = HeadOf(path);
  if (head == Head::Utf8Mark) form_ = TextForm::Utf8;
  if (head == Head::Nothing && form_ == TextForm::Utf8) WriteAll(file_, kUtf8Mark, path_);
}

void LineAppender::WriteLine(std::string_view utf8) {
  WriteAll(file_, Encoded(utf8, form_).append(kLineEnd), path_);
}

void LineAppender::Close() {
  if (!file_.IsOpen()) return;
  const int sync_error = Sync(file_);
  const int close_error = file_.Close();
  const int error = sync_error != 0 ? sync_error : close_error;
  if (error != 0) ThrowFileError(error, path_);
}

}  // namespace dorvane::files
