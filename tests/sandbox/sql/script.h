#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace sandbox::testing {

/// A batch and what it must answer.
struct Record {
  int line = 0;       // in its file
  std::string login;  // of the session; empty for that of the test itself
  std::string batch;
  std::string numbers;               // of all messages: "2627 3621"
  std::string text;                  // what the first one's text begins with
  std::string level;                 // of the first one: "level 16 state 1 line 2"; may be left out
  std::string counts;                // of the rows of all statements: "counts 2 1"; may be left out
  std::vector<std::string> results;  // "a|b", a line for each row; "----" in front of each result
};

/// Records that share a server of their own. A file of them reads:
///
///   # A comment, between records.
///   setup                                what every test of the file begins with; may be missing
///   create table t (id int primary key)
///
///   test KeysAreUnique
///   insert t values (1), (1)
///   error 2627 3621: Violation of PRIMARY KEY
///   level 14 state 1 line 1
///
///   as clerk                             in another session, that of this login
///   select count(*) from t
///   ---- number|name                     or without names, where they do not matter
///   0|NULL
///   counts 1
///
/// A record ends with an empty line. Without "error" a batch must say nothing, without "----" it
/// must return nothing. An empty row reads "(empty)", a line feed within a value "\n"; "<any>"
/// stands for what differs from run to run, "<1..3: (#, 'n#')>" in a batch for "(1, 'n1'),(2,
/// 'n2'),(3, 'n3')". Instead of a batch "restart" ends the server and starts it again, "leave" ends
/// the session, and "load FILE" runs the batches of a file of this folder, none of which may fail.
struct Script {
  std::string name;
  std::filesystem::path file;
  std::vector<Record> records;
};
/// For GoogleTest.
inline void PrintTo(const Script& script, std::ostream* out) {
  *out << script.name;
}

/// All scripts of the folder's *.slt files. Throws std::runtime_error.
std::vector<Script> ReadScripts(const std::filesystem::path& folder);

/// The batches of a file, which lines "go" part. Throws std::runtime_error.
std::vector<std::string> ReadBatches(const std::filesystem::path& path);

/// `text` as it stands in a script.
std::string ShownRow(const std::string& text);

}  // namespace sandbox::testing
