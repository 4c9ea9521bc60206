#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/e2e/rig.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// The package, unpacked into a root of its own.
class PackageTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TempFolder;
    const Outcome made =
        test::Run({CPACK, "--config", std::string(BUILD_FOLDER) + "/CPackConfig.cmake", "-G", "DEB",
                   "-B", folder_->Path().string()},
                  std::chrono::minutes(10));
    ASSERT_EQ(made.status, 0) << made.output;
    for (const auto& entry : std::filesystem::directory_iterator(folder_->Path())) {
      if (entry.path().extension() == ".deb") package_ = entry.path().string();
    }
    const Outcome unpacked = test::Run({"dpkg-deb", "-x", package_, Root().string()});
    ASSERT_EQ(unpacked.status, 0) << unpacked.output;
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }

  static std::filesystem::path Root() { return *folder_ / "root"; }
  static std::string Program() { return Root() / "usr/bin/dorvane"; }
  static std::string Field(const std::string& name) {
    return test::Run({"dpkg-deb", "-f", package_, name}).output;
  }

  static TempFolder* folder_;
  static std::string package_;
};

TempFolder* PackageTest::folder_ = nullptr;
std::string PackageTest::package_;

TEST_F(PackageTest, NamesWhatItNeeds) {
  EXPECT_EQ(Field("Package"), "dorvane\n");
  EXPECT_THAT(Field("Version"), StartsWith(VERSION));
  const std::string depends = Field("Depends");
  for (const char* needed :
       {"tdsodbc", "libodbc2", "libmariadb3", "libqt6widgets6", "libchm1", "libfmt9"}) {
    EXPECT_THAT(depends, HasSubstr(needed));
  }
  EXPECT_THAT(depends, Not(HasSubstr("-dev")));
}

TEST_F(PackageTest, HoldsNothingOfTheComputerThatBuiltIt) {
  const Outcome listing = test::Run({"dpkg-deb", "-c", package_});
  EXPECT_THAT(listing.output, Not(HasSubstr(BUILD_FOLDER)));
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Root())) {
    if (!entry.is_symlink()) continue;
    const auto target = std::filesystem::read_symlink(entry.path());
    EXPECT_TRUE(target.is_relative() && std::filesystem::exists(entry.path())) << entry.path();
  }
  const Outcome dynamic = test::Run({"readelf", "-d", Root() / "usr/lib/dorvane/Dorvane"});
  EXPECT_THAT(dynamic.output, Not(HasSubstr("RUNPATH")));
}

TEST_F(PackageTest, FindsItsOwnFolder) {
  const std::filesystem::path folder = Root() / "usr/lib/dorvane";
  EXPECT_EQ(std::filesystem::canonical(Program()), std::filesystem::canonical(folder / "Dorvane"));
  EXPECT_GT(std::filesystem::file_size(folder / "Help.chm"), 10000U);
  EXPECT_TRUE(std::filesystem::exists(folder / "Skinz/Blue/imgTitleLeft.gif"));
}

TEST_F(PackageTest, RunsWithAndWithoutAWindow) {
  const Outcome help = test::Run({Program(), "--help"});
  EXPECT_EQ(help.status, 0) << help.output;
  EXPECT_THAT(help.output, HasSubstr("SETTINGS.dcs"));
  EXPECT_THAT(test::Run({Program(), "--version"}).output, HasSubstr(VERSION));

  EXPECT_EQ(test::Run({Program(), (*folder_ / "missing.dcs").string()}).status, 2);
  std::ofstream(*folder_ / "bad.dcs") << "3\r\n";
  const Outcome bad = test::Run({Program(), (*folder_ / "bad.dcs").string()});
  EXPECT_EQ(bad.status, 2);
  EXPECT_THAT(bad.output, HasSubstr("Conversion Failed - unexpected conversion direction value."));

  // The wizard opens and stays open.
  Process wizard({Program()}, *folder_ / "wizard.txt",
                 {{"QT_QPA_PLATFORM", "offscreen"}, {"HOME", folder_->Path().string()}});
  EXPECT_FALSE(wizard.Wait(std::chrono::seconds(2))) << ReadFile(*folder_ / "wizard.txt");
}

// Either server is reached by the libraries that the package names.
TEST_F(PackageTest, Converts) {
  Rig& rig = Rig::Get();
  const std::string database = rig.NewDatabases();
  rig.MsSql().Script(
      "create table Clients (Id int identity primary key, Name nvarchar(40) not null unique)\n"
      "go\ninsert Clients (Name) values (N'Zürich'), (N'O''Hara')\ngo\n",
      database);
  const std::string settings = *folder_ / "job.dcs";
  const std::string log = *folder_ / "job.log";
  WriteSettings({.source_db = database, .dest_db = database, .tables = {"Clients"}}, settings, log);
  const Outcome run = test::Run({Program(), settings}, std::chrono::minutes(2),
                                {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
  EXPECT_EQ(run.status, 0) << run.output << ReadLog(log);
  EXPECT_THAT(ReadLog(log), HasSubstr("Converting table 'Clients'"));
  EXPECT_EQ(rig.MySqlValue("select Name from Clients order by Id", database), "Zürich\nO'Hara");
}

TEST_F(PackageTest, ShowsUpOnTheDesktop) {
  const std::filesystem::path share = Root() / "usr/share";
  const Outcome desktop =
      test::Run({"desktop-file-validate", share / "applications/dorvane.desktop"});
  EXPECT_EQ(desktop.status, 0) << desktop.output;
  const Outcome metainfo = test::Run({"appstreamcli", "validate", "--no-net",
                                      share / "metainfo/org.dorvane.Dorvane.metainfo.xml"});
  EXPECT_EQ(metainfo.status, 0) << metainfo.output;
  for (const char* icon : {"48x48/apps/dorvane.png", "scalable/apps/dorvane.svg"}) {
    EXPECT_TRUE(std::filesystem::exists(share / "icons/hicolor" / icon)) << icon;
  }
  const Outcome page = test::Run({"zcat", share / "man/man1/dorvane.1.gz"});
  EXPECT_THAT(page.output, HasSubstr("EXIT STATUS"));
}

}  // namespace
}  // namespace dorvane::test
