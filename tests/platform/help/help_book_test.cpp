#include "platform/help/help_book.h"

#include <gmock/gmock.h>

#include <fstream>
#include <random>
#include <set>

#include "platform/help/html_text.h"
#include "tests/support/process.h"
#include "tests/support/refusal.h"
#include "tests/support/temp_folder.h"

namespace dorvane::help {

namespace {

using ::testing::HasSubstr;

class HelpFileTest : public ::testing::Test {
 protected:
  /// True when the topic is there, and its anchor too when one is named.
  bool Opens(const std::string& link) const {
    const auto sign = link.find('#');
    const auto html = book_.Read(link.substr(0, sign));
    if (!html) return false;
    return sign == std::string::npos ||
           html->find("<a name=\"" + link.substr(sign + 1) + "\">") != std::string::npos;
  }

  std::vector<std::string> Pages() const {
    std::vector<std::string> pages;
    for (const std::string& path : ChmFile(HELP_FILE).List()) {
      if (path.ends_with(".html")) pages.push_back(path);
    }
    return pages;
  }

  void ExpectEntriesOpen(const std::vector<SiteMapEntry>& entries, std::set<std::string>& seen) {
    for (const SiteMapEntry& entry : entries) {
      EXPECT_FALSE(entry.name.empty());
      EXPECT_TRUE(entry.topic.empty() ? !entry.children.empty() : Opens(entry.topic))
          << entry.name << ": " << entry.topic;
      seen.insert("/" + entry.topic.substr(0, entry.topic.find('#')));
      ExpectEntriesOpen(entry.children, seen);
    }
  }

  HelpBook book_{HELP_FILE};
};

TEST_F(HelpFileTest, OpensTheTopicOfEveryPageOfTheWizard) {
  const std::pair<int, std::string> topics[] = {{0, "Step 1 - Select conversion direction"},
                                                {1, "Step 2 - MS SQL Server as the source"},
                                                {2, "Step 3 - MySQL as the destination"},
                                                {3, "Step 4 - Select tables, MS SQL to MySQL"},
                                                {4, "Step 5 - Transfer, MS SQL to MySQL"},
                                                {5, "Step 2 - MySQL as the source"},
                                                {6, "Step 3 - MS SQL Server as the destination"},
                                                {7, "Step 4 - Select tables, MySQL to MS SQL"},
                                                {8, "Step 5 - Transfer, MySQL to MS SQL"}};
  for (const auto& [context, title] : topics) {
    const auto topic = book_.TopicOfContext(context);
    ASSERT_TRUE(topic) << context;
    EXPECT_EQ(TitleOf(book_.Read(*topic).value_or("")), title);
  }
  EXPECT_FALSE(book_.TopicOfContext(9));
  EXPECT_FALSE(book_.TopicOfContext(-1));
  EXPECT_FALSE(book_.TopicOfContext(10000));
}

TEST_F(HelpFileTest, LinksOnlyToWhatIsThere) {
  constexpr std::string_view kLink = "href=\"";
  for (const std::string& page : Pages()) {
    const std::string html = book_.Read(page).value_or("");
    EXPECT_NE(TitleOf(html), "") << page;
    for (auto place = html.find(kLink); place != std::string::npos;
         place = html.find(kLink, place + 1)) {
      const std::string rest = html.substr(place + kLink.size());
      const std::string link = rest.substr(0, rest.find('"'));
      EXPECT_TRUE(Opens(link)) << page << " links to " << link;
    }
  }
}

TEST_F(HelpFileTest, ReachesEveryTopicFromTheContents) {
  EXPECT_TRUE(Opens(book_.DefaultTopic()));
  std::set<std::string> in_contents;
  ExpectEntriesOpen(book_.Contents(), in_contents);
  for (const std::string& page : Pages()) EXPECT_TRUE(in_contents.contains(page)) << page;

  std::set<std::string> in_index;
  ExpectEntriesOpen(book_.Index(), in_index);
  EXPECT_GT(book_.Index().size(), 30U);
}

TEST_F(HelpFileTest, FindsWords) {
  const auto hits = book_.Search("EXIT status");
  ASSERT_FALSE(hits.empty());
  EXPECT_EQ(hits.front().path, "/log.html");
  EXPECT_EQ(hits.front().title, "The log of scheduled runs");
  EXPECT_EQ(book_.Search("1753 \"datetime\"").size(), 0U) << "quotes are searched as they stand";
  EXPECT_GE(book_.Search("1753").size(), 2U);
  EXPECT_TRUE(book_.Search("crontab nosuchword").empty());
  EXPECT_TRUE(book_.Search("  ").empty());
  EXPECT_TRUE(book_.Search("stylesheet").empty()) << "markup is no text";
}

TEST(HelpBook, SaysWhatIsWrongWithAFile) {
  const test::TempFolder folder;
  const auto number_of = [](const std::filesystem::path& path) {
    const auto [number, text] = test::RefusalOf([&] { HelpBook book(path); });
    EXPECT_THAT(text, HasSubstr(path.string()));
    return number;
  };
  EXPECT_EQ(number_of(folder / "Help.chm"), run_time::kFileNotFound);
  EXPECT_EQ(number_of(folder.Path()), run_time::kFileNotFound);
  std::ofstream(folder / "text.chm") << "no help at all";
  EXPECT_EQ(number_of(folder / "text.chm"), run_time::kFileInputOutput);
}

/// The file with one of the things happened to it that happen to files.
std::string Damaged(std::string bytes, std::mt19937& random) {
  const std::size_t place = random() % bytes.size();
  switch (random() % 4) {
    case 0:
      bytes.resize(place);
      break;
    case 1:
      bytes[place] = static_cast<char>(bytes[place] ^ (1U << random() % 8));
      break;
    case 2:
      // Most of the numbers that a reader trusts stand near the beginning.
      for (int count = 0; count < 8; ++count) {
        bytes[random() % std::min<std::size_t>(bytes.size(), 8'192)] = static_cast<char>(random());
      }
      break;
    default:
      for (std::size_t at = place; at < std::min(bytes.size(), place + 512); ++at) {
        bytes[at] = static_cast<char>(random());
      }
  }
  return bytes;
}

TEST(HelpBook, OutlivesDamagedFiles) {
  const test::TempFolder folder;
  const auto file = folder / "damaged.chm";
  const std::string whole = test::ReadFile(HELP_FILE);
  std::mt19937 random(7);
  int refused = 0;
  for (int run = 0; run < 400; ++run) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << Damaged(whole, random);
    const auto [number, text] = test::RefusalOf([&] {
      const HelpBook book(file);
      book.Search("log");
      book.TopicOfContext(1);
    });
    if (number == 0) continue;
    ++refused;
    EXPECT_EQ(number, run_time::kFileInputOutput);
    EXPECT_THAT(text, HasSubstr("is damaged"));
  }
  EXPECT_GT(refused, 100);
  std::ofstream(file, std::ios::binary | std::ios::trunc) << whole;
  EXPECT_EQ(HelpBook(file).Contents().size(), HelpBook(HELP_FILE).Contents().size());
}

TEST(SiteMap, ReadsNestedListsAndEntities) {
  const auto entries = ReadSiteMap(
      "<UL><LI><OBJECT type=\"text/sitemap\"><PARAM NAME=\"Name\" VALUE=\"A &amp; B\">"
      "<param name=\"Local\" value=\"a.html\"></OBJECT>"
      "<ul><li><object type=\"text/sitemap\"><param name=\"Name\" value=\"C\"></object></ul>"
      "<li><object type=\"text/site properties\"><param name=\"Name\" value=\"no\"></object>"
      "<li><object type=\"text/sitemap\"><param name=\"Name\" value=\"D\"></object></UL>");
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].name, "A & B");
  EXPECT_EQ(entries[0].topic, "a.html");
  ASSERT_EQ(entries[0].children.size(), 1U);
  EXPECT_EQ(entries[0].children[0].name, "C");
  EXPECT_EQ(entries[1].name, "D");
  EXPECT_EQ(ReadSiteMap("<ul><object type=\"text/sitemap\"><param name=\"Name").size(), 1U);
}

TEST(HtmlText, KeepsWordsAndDropsMarkup) {
  EXPECT_EQ(PlainText("<html><head><title>T</title></head><body><p>a&lt;b</p>\n<td>c&#228;&bad; &"),
            "T a<b cä&bad; &");
  EXPECT_EQ(PlainText("<head>x</head><body>one<br>two</body>"), "one two");
  EXPECT_EQ(TitleOf("<TITLE> Of &quot;it&quot; </TITLE>"), "Of \"it\"");
  EXPECT_EQ(TitleOf("</title><title>"), "");
}

}  // namespace
}  // namespace dorvane::help
