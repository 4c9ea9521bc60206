#include <limits>

#include "tests/platform/ado/odbc/server_fixture.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Row = std::vector<Value>;

class BulkWriterTest : public MsSqlTest {
 protected:
  void MakeTable(const std::string& columns) {
    Run("create table " + kTable + " (" + columns + ")");
  }
  std::unique_ptr<TableWriter> Open(const std::vector<std::string>& columns) {
    return session_->OpenWriter(kTable, columns);
  }
  void Load(const std::vector<std::string>& columns, const std::vector<Row>& rows) {
    RowBlock block;
    block.Clear(columns.size());
    const auto writer = Open(columns);
    for (const Row& row : rows) {
      EXPECT_TRUE(writer->Takes(row));
      std::ranges::copy(row, block.AppendRow().begin());
    }
    writer->Insert(block, 0, block.Rows());
  }
  std::int32_t LoadError(const std::vector<std::string>& columns, const std::vector<Row>& rows) {
    try {
      Load(columns, rows);
    } catch (const ProviderError& error) {
      return error.Entries().at(0).native_error;
    }
    return 0;
  }
  bool Takes(const std::string& type, const Value& value) {
    MakeTable("v " + type);
    const bool takes = Open({"v"})->Takes(Row{value});
    if (takes) Load({"v"}, {{value}});
    Run("drop table " + kTable);
    return takes;
  }

  const std::string kTable = "[b]]u 'lk?]";
};

TEST_F(BulkWriterTest, ValuesArriveAsTheyAre) {
  MakeTable(
      "[k 1] int not null, \"?\" bit null, [\u4E16] tinyint null, s smallint null, b bigint null, "
      "r real null, f float null, n numeric(38,10) null, d decimal(4,0) null, t datetime null, "
      "v varchar(8000) null, w nvarchar(4000) null, x text null, y ntext null, z varbinary(8000) "
      "null, p binary(4) null, i image null, m nvarchar(max) null");
  const std::vector<std::string> names{"K 1", "?", "\u4E16", "s", "b", "r", "f", "n", "d",
                                       "t",   "v", "w",      "x", "y", "z", "p", "i", "m"};
  const std::string bytes(4096, '\xFF');
  const std::string zeros("\0a\0", 3);
  std::string wide;
  for (int i = 0; i < 2048; ++i) wide += "\u4E16";
  const auto text = [](const std::string& value) { return std::string_view(value); };
  std::vector<Row> rows{
      {std::int64_t{1}, true, std::int64_t{255}, std::int64_t{-32768},
       std::numeric_limits<std::int64_t>::min(), 0.1F, 1e300,
       Decimal{"-1234567890123456789012345678.0123456789"}, Decimal{"-9999"},
       DateTime{.year = 1753, .month = 1, .day = 1}, std::string_view("caf\u00E9 \u20AC "),
       text(wide), std::string_view("it's"), std::string_view("\uFEFF\uFFFF"), Binary{bytes},
       Binary{"\1"}, Binary{zeros}, std::string_view(" ")},
      {std::int64_t{2}, false, std::uint64_t{0}, std::int64_t{32767},
       std::numeric_limits<std::int64_t>::max(), -1e-30F, 5e-300, Decimal{"0.5000000000000"},
       std::uint64_t{42}, DateTime{.year = 9999, .month = 12, .day = 31, .seconds = 86399},
       std::string_view(), std::string_view(), std::string_view(), std::string_view(), Binary{},
       Binary{}, Binary{}, std::string_view()}};
  rows.emplace_back(names.size())[0] = std::int64_t{3};  // all else is NULL
  rows.emplace_back(names.size())[0] = std::int64_t{4};
  for (const std::size_t i : {10U, 11U, 12U, 13U, 17U}) rows.back()[i] = text(zeros);
  Load(names, rows);

  RowBlock stored;
  ASSERT_TRUE(session_->Execute("select * from " + kTable + " order by [k 1]")->Read(stored));
  ASSERT_EQ(stored.Rows(), rows.size());
  EXPECT_THAT(RowsOf("select [k 1], s, n, d, t, v, p from " + kTable + " where [k 1] < 3"),
              ElementsAre(ElementsAre("1", "-32768", "-1234567890123456789012345678.0123456789",
                                      "-9999", "1753-01-01 00:00:00", "caf\u00E9 \u20AC ",
                                      std::string("\1\0\0\0", 4)),
                          ElementsAre("2", "32767", "0.5000000000", "42", "9999-12-31 23:59:59", "",
                                      std::string(4, '\0'))));
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (const std::size_t same : {1U, 5U, 6U, 10U, 11U, 12U, 13U, 14U, 16U, 17U}) {
      EXPECT_EQ(stored.Row(row)[same], rows[row][same]) << row << " " << names[same];
    }
  }
}

TEST_F(BulkWriterTest, NumbersOfEveryPrecisionKeepTheirDigits) {
  std::string columns = "k int not null";
  std::vector<std::string> names{"k"};
  std::vector<std::string> digits;
  for (int precision = 1; precision <= 38; ++precision) {
    for (const int scale : {0, precision / 3, precision}) {
      names.push_back(fmt::format("n{}_{}_{}", precision, scale, names.size()));
      columns += fmt::format(", {} numeric({},{}) null", names.back(), precision, scale);
      std::string number =
          std::string("98765432109876543210987654321098765432").substr(0, precision);
      if (scale > 0) number.insert(precision - scale, scale == precision ? "0." : ".");
      digits.push_back("-" + number);
    }
  }
  MakeTable(columns);
  Row row{std::int64_t{1}};
  for (const std::string& number : digits) row.emplace_back(Decimal{number});
  Load(names, {row});
  digits.insert(digits.begin(), "1");
  EXPECT_THAT(RowsOf("select * from " + kTable), ElementsAre(digits));
}

TEST_F(BulkWriterTest, TakesOnlyWhatArrivesWhole) {
  const std::string bytes(4097, 'x');
  std::string wide;
  for (int i = 0; i < 2049; ++i) wide += "\u4E16";
  const DateTime fraction{.nanoseconds = 1};
  const struct {
    std::string type;
    Value value;
    bool takes;
  } cases[] = {
      {"int null", {}, true},
      {"int not null", {}, false},
      {"int", std::int64_t{2147483648}, false},
      {"tinyint", std::int64_t{-1}, false},
      {"bigint", std::uint64_t{1} << 63U, false},
      {"bit", std::int64_t{2}, false},
      {"int", std::string_view("1"), false},
      {"int", Decimal{"1"}, false},
      {"varchar(9)", std::int64_t{1}, false},
      {"float", 0.1F, false},
      {"real", 0.1, false},
      {"float", std::numeric_limits<double>::infinity(), false},
      {"numeric(4,2)", Decimal{"99.990"}, true},
      {"numeric(4,2)", Decimal{"0.001"}, false},
      {"numeric(4,2)", Decimal{"100"}, false},
      {"numeric(9,2)", Decimal{"-1234567.89"}, true},
      {"numeric(19,0)", std::numeric_limits<std::int64_t>::min(), true},
      {"numeric(20,0)", std::numeric_limits<std::uint64_t>::max(), true},
      {"datetime", DateTime{.year = 1752, .month = 12, .day = 31}, false},
      {"datetime", fraction, false},
      {"date", std::string_view("2020-01-02"), true},
      {"date", std::string_view("1752-12-31"), false},
      {"date", std::string_view("2020-01-02 10:00:00"), false},
      {"time(3)", std::string_view("10:20:30.1234"), false},
      {"time(0)", std::string_view("-10:20:30"), false},
      {"datetime2(3)", std::string_view("2020-01-02 10:20:30.123"), true},
      {"datetime2(3)", std::string_view("2020/01/02 10:20:30"), false},
      {"varchar(3)", std::string_view("\u00E9\u00E9\u00E9"), true},
      {"varchar(3)", std::string_view("four"), false},
      {"varchar(3)", std::string_view("\u4E16"), false},
      {"varchar(3)", std::string_view("\u0081"), false},
      {"nvarchar(3)", std::string_view("\u4E16\u4E16\u4E16"), true},
      {"nvarchar(3)", std::string_view("four"), false},
      {"nvarchar(9)", std::string_view("\U0001F600"), false},
      {"nvarchar(9)", std::string_view("\xFF"), false},
      {"nvarchar(9)", std::string_view("\xED\xA0\x80"), false},
      {"varbinary(2)", Binary{"123"}, false},
      {"varbinary(2)", std::string_view("1"), false},
      {"image", Binary{bytes}, false},
      {"text", std::string_view(bytes), false},
      {"varchar(8000)", std::string_view(bytes), false},
      {"nvarchar(max)", std::string_view(wide), false},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(Takes(each.type, each.value), each.takes) << each.type << " " << each.value.index();
  }
}

TEST_F(BulkWriterTest, KeepsNullsAndIdentityValuesAndAsksConstraints) {
  MakeTable(
      "id int identity not null primary key, n int null default 7, "
      "p int null check (p < 100), q int null references " +
      kTable);
  const std::vector<std::string> names{"id", "n", "p", "q"};
  const auto row = [](std::int64_t id, Value p, Value q) { return Row{id, {}, p, q}; };
  Load(names, {row(-5, {}, {}), row(40, std::int64_t{99}, std::int64_t{-5})});
  EXPECT_EQ(LoadError(names, {row(41, {}, {}), row(42, std::int64_t{100}, {})}), 547);
  EXPECT_EQ(LoadError(names, {row(41, {}, {}), row(42, {}, std::int64_t{1})}), 547);
  EXPECT_EQ(LoadError(names, {row(41, {}, {}), row(40, {}, {})}), 2627);
  Run("insert into " + kTable + " (p) values (1)");
  EXPECT_THAT(RowsOf("select * from " + kTable),
              ElementsAre(ElementsAre("-5", "NULL", "NULL", "NULL"),
                          ElementsAre("40", "NULL", "99", "-5"), testing::Contains("7")));
}

TEST_F(BulkWriterTest, ALoadIsPartOfATransaction) {
  MakeTable("k int not null primary key");
  session_->BeginTransaction();
  Load({"k"}, {{std::int64_t{1}}});
  session_->Execute("insert into " + kTable + " values (2)");
  session_->Rollback();
  EXPECT_THAT(RowsOf("select * from " + kTable), IsEmpty());
}

TEST_F(BulkWriterTest, SomeTablesAreNotLoaded) {
  for (const std::string columns :
       {"k int, d int default 1", "k sql_variant", "k xml", "k rowversion"}) {
    MakeTable(columns);
    EXPECT_THROW(Open({"k"}), ProviderError) << columns;
    Run("drop table " + kTable);
  }
  EXPECT_THROW(Open({"k"}), ProviderError);
}

}  // namespace
}  // namespace dorvane::ado
