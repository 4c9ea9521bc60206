#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace dorvane::text {

/// Lines of ANSI text ended by carriage return and line feed, as UTF-8. A line feed alone ends a
/// line too, and so does the end of the file. Move-only.
class LineReader {
 public:
  /// Throws RunTimeError: 53 no such file, 76 no such folder, 70 not allowed, 57 otherwise.
  explicit LineReader(const std::filesystem::path& path);
  /// The next line without its end. Throws RunTimeError 62 behind the last one.
  std::string ReadLine();
  /// The next line as the bytes of the file.
  std::string ReadRawLine();

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> file_;
};

enum class OpenMode { Append, Replace };

/// Writes ANSI lines. Each line is handed to the operating system at once, so that a killed program
/// leaves every line so far. Move-only.
class LineWriter {
 public:
  /// Makes the file when it is missing; `owner_only` then gives it to its owner alone. Throws
  /// RunTimeError: 76 no such folder, 70 not allowed, 57 otherwise.
  LineWriter(const std::filesystem::path& path, OpenMode mode, bool owner_only = false);
  LineWriter(LineWriter&& other) noexcept;
  LineWriter& operator=(LineWriter&& other) noexcept;
  ~LineWriter();

  /// UTF-8; characters outside the code page become "?". Throws RunTimeError 57 (a full disk).
  void WriteLine(std::string_view utf8);
  /// Bytes as they stand in the code page.
  void WriteRawLine(std::string_view ansi);
  /// Makes sure that the lines are stored. Throws RunTimeError 57.
  void Close();

 private:
  int descriptor_ = -1;
};

}  // namespace dorvane::text
