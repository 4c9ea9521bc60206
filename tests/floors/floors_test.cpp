// Holds the includes of every file to the tables of rooms: Dorvane's in docs/architecture.md, the
// practice server's in its README.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace dorvane {

namespace {

namespace fs = std::filesystem;

const fs::path kSource = SOURCE_FOLDER;

std::vector<std::string> Lines(const fs::path& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

/// Everything that the expression's first group matches in a line.
std::vector<std::string> Matches(const std::string& line, const std::regex& expression) {
  std::vector<std::string> found;
  for (std::sregex_iterator at(line.begin(), line.end(), expression), end; at != end; ++at) {
    found.push_back(at->str(1));
  }
  return found;
}

/// The rooms of the table, each with its floor, counted from the top.
class House {
 public:
  explicit House(const char* document) {
    static const std::regex room("`([a-z_/]+)`");
    int floor = 0;
    for (const std::string& line : Lines(kSource / document)) {
      if (!line.starts_with("| `")) continue;
      const std::string first_cell = line.substr(0, line.find('|', 1));
      for (const std::string& name : Matches(first_cell, room)) floors_[name] = floor;
      ++floor;
    }
  }

  /// The room that a file belongs to, by the longest name; empty outside the house.
  std::string RoomOf(fs::path path) const {
    while (path.has_parent_path()) {
      path = path.parent_path();
      if (floors_.contains(path.string())) return path.string();
    }
    return "";
  }

  bool MayInclude(const std::string& file, const std::string& included) const {
    const std::string from = RoomOf(file);
    const std::string to = RoomOf(included);
    if (to.empty()) return false;
    return from == to || floors_.at(from) < floors_.at(to);
  }

  /// The folders that the rooms lie in.
  std::set<std::string> Folders() const {
    std::set<std::string> folders;
    for (const auto& [room, floor] : floors_) folders.insert(room.substr(0, room.find('/')));
    return folders;
  }

 private:
  std::map<std::string, int> floors_;
};

const House kDorvane("docs/architecture.md");
const House kSandbox("sandbox/README.md");

/// The source files in a folder, by their paths from the top.
std::vector<std::string> Files(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(kSource / folder)) {
    const std::string ending = entry.path().extension();
    if (ending == ".h" || ending == ".cpp") files.push_back(fs::relative(entry.path(), kSource));
  }
  EXPECT_FALSE(files.empty()) << folder;
  return files;
}

std::vector<std::string> Includes(const std::string& file, const char* pattern) {
  std::vector<std::string> included;
  const std::regex expression(pattern);
  for (const std::string& line : Lines(kSource / file)) {
    if (!line.starts_with('#')) continue;
    for (std::string& name : Matches(line, expression)) included.push_back(std::move(name));
  }
  return included;
}

constexpr const char* kOwnInclude = "^# *include *\"([^\"]+)\"";
constexpr const char* kQtInclude = "^# *include *<(Q[A-Za-z]+|Qt.*/.*)>";

TEST(House, IncludesRunDownwards) {
  for (const House& house : {kDorvane, kSandbox}) {
    for (const std::string& folder : house.Folders()) {
      for (const std::string& file : Files(folder)) {
        EXPECT_NE(house.RoomOf(file), "") << file << " lies in no room";
        for (const std::string& included : Includes(file, kOwnInclude)) {
          EXPECT_TRUE(house.MayInclude(file, included)) << file << " includes " << included;
          const bool opens_window = folder == "app" && included.starts_with("ui/");
          EXPECT_TRUE(!opens_window || file == "app/main.cpp") << file << " includes " << included;
        }
      }
    }
  }
}

TEST(House, KnowsAClimbFromADescent) {
  const House& house = kDorvane;
  EXPECT_TRUE(house.MayInclude("app/main.cpp", "ui/wizard/run_wizard.h"));
  EXPECT_TRUE(house.MayInclude("platform/ado/odbc/driver.cpp", "platform/ado/types.h"));
  for (const auto& [file, included] : std::vector<std::pair<std::string, std::string>>{
           {"job/a.cpp", "ui/controls/b.h"},
           {"ui/controls/a.cpp", "ui/dialogs/b.h"},
           {"ui/help/a.cpp", "ui/schedule/b.h"},
           {"mssql/to_mysql/a.cpp", "mysql/b.h"},
           {"platform/text/a.cpp", "platform/files/b.h"},
           {"endpoint/a.cpp", "sandbox/b.h"},
           {"endpoint/a.cpp", "b.h"}}) {
    EXPECT_FALSE(house.MayInclude(file, included)) << file << " and " << included;
  }
  EXPECT_TRUE(kSandbox.MayInclude("sandbox/engine/a.cpp", "sandbox/storage/b.h"));
  EXPECT_FALSE(kSandbox.MayInclude("sandbox/storage/a.cpp", "sandbox/engine/b.h"));
  EXPECT_FALSE(kSandbox.MayInclude("sandbox/engine/a.cpp", "platform/b.h"));
}

TEST(House, QtIsForTheWindowsAlone) {
  std::size_t in_windows = 0;
  for (const std::string& folder : kDorvane.Folders()) {
    const bool has_windows = folder == "app" || folder == "ui";
    for (const std::string& file : Files(folder)) {
      const std::size_t count = Includes(file, kQtInclude).size();
      EXPECT_TRUE(has_windows || count == 0) << file;
      in_windows += count;
    }
  }
  EXPECT_GT(in_windows, 0U);
}

TEST(House, EveryFolderWithCodeIsListed) {
  std::set<std::string> known = kDorvane.Folders();
  known.insert({"assets", "bench", "sandbox", "tests", "tools"});
  for (const auto& entry : fs::directory_iterator(kSource)) {
    const std::string name = entry.path().filename();
    if (!entry.is_directory() || known.contains(name)) continue;
    if (name == "build" || name.starts_with(".")) continue;
    for (const auto& inner : fs::recursive_directory_iterator(entry.path())) {
      EXPECT_NE(inner.path().extension(), ".cpp") << inner.path();
    }
  }
}

}  // namespace
}  // namespace dorvane
