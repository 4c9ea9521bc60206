#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/files/replace_file.h"
#include "platform/files/text_file.h"
#include "tests/support/process.h"
#include "tests/support/refusal.h"
#include "tests/support/temp_folder.h"

namespace dorvane::files {

namespace {

namespace fs = std::filesystem;
using test::NumberOf;
using test::ReadFile;
using test::TempFolder;

std::ptrdiff_t EntriesOf(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

mode_t ModeOf(const fs::path& path) {
  struct stat info {};
  stat(path.c_str(), &info);
  return info.st_mode & 0777;
}

TEST(TextFile, ReadsLinesHoweverTheyEnd) {
  const TempFolder folder;
  std::ofstream(folder / "file", std::ios::binary) << "a\r\n\r\nb\x80\nlast";
  LineReader file(folder / "file");
  EXPECT_EQ(file.ReadLine(), "a");
  EXPECT_EQ(file.ReadLine(), "");
  EXPECT_EQ(file.ReadLine(), "b€");
  EXPECT_EQ(file.ReadLine(), "last");
  EXPECT_EQ(NumberOf([&] { file.ReadLine(); }), run_time::kInputPastEnd);
}

TEST(TextFile, ALogIsItsOwnersAndWaitsForNoReader) {
  const TempFolder folder;
  LineAppender(folder / "log").WriteLine("a server's message may hold values");
  EXPECT_EQ(ModeOf(folder / "log"), kOwnerOnly);
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(NumberOf([&] { LineAppender(folder / "pipe"); }), run_time::kFileInputOutput);
}

TEST(TextFile, AppendsAndTellsWhyItCannot) {
  const TempFolder folder;
  const auto path = folder / "log";
  LineAppender(path).WriteLine("one ü");
  LineAppender(path).WriteLine("two 漢");
  EXPECT_EQ(ReadFile(path), "one \xFC\r\ntwo ?\r\n");
  EXPECT_EQ(NumberOf([&] { LineReader(folder / "none"); }), run_time::kFileNotFound);
  EXPECT_EQ(NumberOf([&] { LineReader(folder / "no" / "file"); }), run_time::kPathNotFound);
  EXPECT_EQ(NumberOf([&] { LineReader(folder.Path()); }), run_time::kPermissionDenied);
  EXPECT_EQ(NumberOf([&] { LineAppender(folder / "no" / "file"); }), run_time::kPathNotFound);
}

TEST(TextFile, AUtf8FileStaysOne) {
  const TempFolder folder;
  const auto path = folder / "log";
  LineAppender(path, TextForm::Utf8).WriteLine("one 漢");
  LineAppender(path, TextForm::Ansi).WriteLine("two 漢");
  EXPECT_EQ(ReadFile(path), "\xEF\xBB\xBFone 漢\r\ntwo 漢\r\n");
  LineReader lines(path);
  EXPECT_EQ(lines.ReadLine(), "one 漢");
  EXPECT_EQ(lines.Form(), TextForm::Utf8);
  EXPECT_EQ(lines.ReadRawLine(), "two 漢");
}

TEST(TextFile, AFullDiskIsAnError) {
  LineAppender full("/dev/full");
  EXPECT_EQ(NumberOf([&] { full.WriteLine("no room"); }), run_time::kFileInputOutput);
}

TEST(TextFile, LeavesNoDescriptorOpen) {
  const TempFolder folder;
  const auto path = folder / "log";
  const auto before = EntriesOf("/proc/self/fd");
  LineAppender first(path);
  LineAppender second(folder / "other");
  first.WriteLine("a");
  first.Close();
  second = std::move(first);
  LineReader(path).ReadLine();
  NumberOf([&] { LineReader(path).ReadLine(), LineReader(folder / "none"); });
  NumberOf([&] { LineAppender("/dev/full").WriteLine("no room"); });
  second = LineAppender(path);
  ReplaceFile(path, "new", kOwnerOnly);
  NumberOf([&] { ReplaceFile(folder.Path(), "a folder is in the way", kOwnerOnly); });
  second.Close();
  EXPECT_EQ(EntriesOf("/proc/self/fd"), before);
}

TEST(ReplaceFile, PutsTheNewFileInTheOldOnesPlace) {
  const TempFolder folder;
  const auto path = folder / "deep" / "config";
  EXPECT_EQ(NumberOf([&] { ReplaceFile(path, "x", kOwnerOnly); }), run_time::kPathNotFound);
  MakeFolders(path.parent_path());
  ReplaceFile(path, "first", kReadableByAll);
  EXPECT_EQ(ModeOf(path), kReadableByAll);
  const std::ifstream reader(path, std::ios::binary);
  ReplaceFile(path, std::string_view("sec\0nd", 6), kOwnerOnly);
  EXPECT_EQ(ReadFile(path), std::string("sec\0nd", 6));
  EXPECT_EQ(ModeOf(path), kOwnerOnly);
  // Who reads the old file goes on reading it.
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader.rdbuf()), {}), "first");
  EXPECT_EQ(EntriesOf(path.parent_path()), 1);
}

TEST(ReplaceFile, AFailureKeepsTheOldFileAndLeavesNoDraft) {
  const TempFolder folder;
  const auto path = folder / "config";
  ReplaceFile(path, "old", kOwnerOnly);
  // Behind the limit a write fails as on a full disk.
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{4096, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limit);
  const auto number = NumberOf([&] { ReplaceFile(path, std::string(5000, 'x'), kOwnerOnly); });
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, previous);
  EXPECT_EQ(number, run_time::kFileInputOutput);
  EXPECT_EQ(ReadFile(path), "old");

  fs::create_directory(folder / "taken");
  EXPECT_NE(NumberOf([&] { ReplaceFile(folder / "taken", "x", kOwnerOnly); }), 0);
  EXPECT_NE(NumberOf([&] { ReplaceFile(path / "below a file", "x", kOwnerOnly); }), 0);
  EXPECT_EQ(EntriesOf(folder.Path()), 2);
}

}  // namespace
}  // namespace dorvane::files
