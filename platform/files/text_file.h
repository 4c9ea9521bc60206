#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/descriptor.h"

namespace dorvane::files {

/// Reads lines of ANSI text ended by carriage return and line feed, as UTF-8. A line feed alone
/// ends a line too, and so does the end of the file. Move-only.
class LineReader {
 public:
  /// Throws RunTimeError: 53 no such file, 76 no such folder, 70 not allowed, 57 otherwise.
  explicit LineReader(const std::filesystem::path& path);
  /// The next line without its end. Throws RunTimeError 62 behind the last one, 57 when it
  /// cannot be read.
  std::string ReadLine();
  /// The next line as the bytes of the file.
  std::string ReadRawLine();
  /// The next line, or none behind the last one. Throws RunTimeError 57.
  std::optional<std::string> NextLine();
  /// Of the line that was read last, or asked for behind the end; from 1.
  int LineNumber() const { return line_number_; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::optional<std::string> NextRawLine();

  std::filesystem::path path_;
  std::unique_ptr<std::FILE, Closer> file_;
  int line_number_ = 0;
};

/// The text of such a file while it is put together.
class AnsiText {
 public:
  /// UTF-8; characters outside the code page become "?".
  void WriteLine(std::string_view utf8);
  /// Bytes as they stand in the code page.
  void WriteRawLine(std::string_view ansi);
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// Appends lines to such a file. Each line is handed to the operating system at once, so that a
/// killed program leaves every line so far. Move-only.
class LineAppender {
 public:
  /// Makes the file for its owner alone when it is missing. Throws RunTimeError: 76 no such folder,
  /// 70 not allowed, 57 otherwise, a pipe that nobody reads among it.
  explicit LineAppender(const std::filesystem::path& path);

  /// UTF-8; characters outside the code page become "?". Throws RunTimeError 57 (a full disk).
  void WriteLine(std::string_view utf8);
  /// Makes sure that the lines are stored. Throws RunTimeError 57.
  void Close();

 private:
  std::filesystem::path path_;
  Descriptor file_;
};

}  // namespace dorvane::files
