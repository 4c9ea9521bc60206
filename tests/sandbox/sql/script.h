#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sandbox::testing {

/// A batch and what it must answer.
struct Record {
  int line = 0;  // in its file
  std::string batch;
  std::string numbers;               // of all messages: "2627 3621"
  std::string text;                  // what the first one's text begins with
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
///
///   select count(*) from t
///   ----
///   0
///
/// A record ends with an empty line; the record "restart" ends the server and starts it again.
/// Without "error" a batch must say nothing, without "----" it must return nothing. An empty row
/// reads "(empty)", a line feed within a value "\n"; "<any>" stands for what differs from run to
/// run.
struct Script {
  std::string name;
  std::filesystem::path file;
  std::vector<Record> records;
};

/// All scripts of the folder's *.slt files. Throws std::runtime_error.
std::vector<Script> ReadScripts(const std::filesystem::path& folder);

/// `text` as it stands in a script.
std::string ShownRow(const std::string& text);

}  // namespace sandbox::testing
