#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/descriptor.h"

namespace dorvane::files {

/// How text stands in a file: in the ANSI code page, or as UTF-8 behind its mark (EF BB BF).
enum class TextForm { Ansi, Utf8 };

/// Reads lines of text, in either form, ended by carriage return and line feed, as UTF-8. A line
/// feed alone ends a line too, and so does the end of the file. Move-only.
class LineReader {
 public:
  /// Throws RunTimeError: 53 no such file, 76 no such folder, 70 not allowed, 57 otherwise.
  explicit LineReader(const std::filesystem::path& path);
  /// The next line without its end. Throws RunTimeError 62 behind the last one, 57 when it
  /// cannot be read.
  std::string ReadLine();
  /// The next line as the bytes of the file, without the mark.
  std::string ReadRawLine();
  /// The next line, or none behind the last one. Throws RunTimeError 57.
  std::optional<std::string> NextLine();
  /// Of the line that was read last, or asked for behind the end; from 1.
  int LineNumber() const { return line_number_; }
  const std::filesystem::path& Path() const { return path_; }
  TextForm Form() const { return form_; }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::optional<std::string> NextRawLine();
  std::string InUtf8(std::string line) const;

  std::filesystem::path path_;
  std::unique_ptr<std::FILE, Closer> file_;
  TextForm form_ = TextForm::Ansi;
  int line_number_ = 0;
};

/// The text of such a file while it is put together.
class TextLines {
 public:
  explicit TextLines(TextForm form = TextForm::Ansi);
  TextForm Form() const { return form_; }
  /// UTF-8; characters outside the code page become "?" in an ANSI text.
  void WriteLine(std::string_view utf8);
  /// Bytes as they stand in the file.
  void WriteRawLine(std::string_view bytes);
  const std::string& Bytes() const { return bytes_; }

 private:
  TextForm form_;
  std::string bytes_;
};

/// Appends lines to such a file. Each line is handed to the operating system at once, so that a
/// killed program leaves every line so far. Move-only.
class LineAppender {
 public:
  /// Makes the file for its owner alone when it is missing. Throws RunTimeError: 76 no such folder,
  /// 70 not allowed, 57 otherwise, a pipe that nobody reads among it.
  /// What is there already keeps its form if it is UTF-8; `form` is for all that follows ANSI text
  /// or nothing.
  explicit LineAppender(const std::filesystem::path& path, TextForm form = TextForm::Ansi);

  /// UTF-8; characters outside the code page become "?" in an ANSI text. Throws RunTimeError 57 (a
  /// full disk).
  void WriteLine(std::string_view utf8);
  /// Makes sure that the lines are stored. Throws RunTimeError 57.
  void Close();

 private:
  std::filesystem::path path_;
  TextForm form_;
  Descriptor file_;
};

}  // namespace dorvane::files
