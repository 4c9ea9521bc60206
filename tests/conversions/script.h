#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace dorvane::test {

using Lines = std::vector<std::string>;

/// A paragraph of a script: what is done, and what must come of it.
struct Step {
  int line = 0;           // of its head, in the file
  std::string head = {};  // "mssql", "convert to mysql: merge"
  Lines body = {};        // statements, or what the conversion is asked for
  Lines expected = {};    // behind "----"
  int result_line = 0;    // of "----", or where it would stand
};

/// Steps that share databases of their own; docs/testing.md says how a file of them reads.
struct Script {
  std::string name;  // "keys_AreCutToWhatFits" of keys.conv
  std::filesystem::path file;
  Lines ways = {};  // of copying rows, one run each; empty: one run, the usual way
  std::vector<Step> steps = {};
  /// For GoogleTest.
  inline void PrintTo(const Script& script, std::ostream* out) { *out << script.name; }
};

/// The parts of "a, b, c".
Lines SplitAtCommas(const std::string& text);

/// All scripts of the folder's *.conv files, by name. Throws std::runtime_error.
std::vector<Script> ReadScripts(const std::filesystem::path& folder);

/// The lines that count on a server: those marked "[MariaDB] " or "[MySQL] " on that one only,
/// without the mark.
Lines LinesFor(bool is_mariadb, const Lines& lines);

/// What came, as the expected lines wherever "<any>" in these covers the difference.
Lines Covered(Lines came, const Lines& expected);

/// Remembers what came of a step; the end of the program puts it into the script's file.
void Rewrite(const Script& script, const Step& step, const Lines& came);

}  // namespace dorvane::test
