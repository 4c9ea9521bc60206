#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/endpoint/transfer_rig.h"

namespace dorvane {

namespace {

using ado::DataType;
using test::Failure;
using test::MakeColumn;
using test::TextResult;
using test::WithDefault;
using test::WithDigits;
using test::WithSize;
using testing::ElementsAre;
using testing::IsEmpty;

/// A row of SHOW COLUMNS beside the catalog's column.
struct Described {
  ado::Column column;
  std::string_view null = "YES";
  std::string_view key = "";
  std::string_view extra = "";
  std::optional<std::string> default_value = {};
};

struct MySqlTransfer : testing::Test, test::TransferRig<MySqlDatabase, MsSqlDatabase> {
  void AddTable(const std::string& name, const std::vector<Described>& columns) {
    source.tables.push_back({name, "TABLE"});
    auto& catalog = source.columns[name];
    catalog.clear();
    std::vector<std::vector<std::optional<std::string_view>>> rows;
    for (const Described& each : columns) {
      catalog.push_back(each.column);
      std::optional<std::string_view> value;
      if (each.default_value) value = source.Keep(*each.default_value);
      rows.push_back(
          {source.Keep(each.column.name), "type", each.null, each.key, value, each.extra});
    }
    source.Answer("show columns from `" + name + "`",
                  {TextResult({"Field", "Type", "Null", "Key", "Default", "Extra"}, rows)});
  }
  void AddKeys(const std::string& name,
               const std::vector<std::vector<std::optional<std::string_view>>>& rows) {
    source.Answer("show index from `" + name + "`",
                  {TextResult({"Table", "Non_unique", "Key_name", "Seq_in_index", "Column_name",
                               "Sub_part", "Index_type"},
                              rows)});
  }
  std::string Definition(const Described& described) {
    AddTable("t", {described});
    dest.log.clear();
    Transfer({"t"});
    source.tables.clear();
    const auto created = dest.Sent("Create Table");
    if (created.empty()) return "no table";
    const std::string head = "Create Table [t]([c] ";
    EXPECT_TRUE(created[0].starts_with(head) && created[0].ends_with(")")) << created[0];
    return created[0].substr(head.size(), created[0].size() - head.size() - 1);
  }
  /// What follows NOT NULL for a column with this default.
  std::string DefaultTail(DataType type, const std::string& value, std::int64_t size = 20) {
    const std::string text = Definition(
        {WithDefault(WithSize(MakeColumn("c", type), size), value), "NO", "", "", value});
    const std::size_t at = text.find(" NOT NULL");
    return at == std::string::npos ? text : text.substr(at + 9);
  }
};

TEST_F(MySqlTransfer, GivesEachTypeItsText) {
  struct Row {
    DataType type;
    std::string text;
  };
  const Row rows[] = {
      {DataType::TinyInt, "Tinyint"},
      {DataType::UnsignedTinyInt, "Tinyint"},
      {DataType::SmallInt, "int"},
      {DataType::UnsignedSmallInt, "int"},
      {DataType::Integer, "BigInt"},
      {DataType::UnsignedInt, "BigInt"},
      {DataType::BigInt, "BigInt"},
      {DataType::UnsignedBigInt, "numeric(20,0)"},
      {DataType::Single, "real"},
      {DataType::Double, "float"},
      {DataType::Boolean, "bit"},
      {DataType::DBDate, "datetime"},
      {DataType::DBTime, "datetime"},
      {DataType::DBTimeStamp, "datetime"},
      {DataType::Date, "datetime"},
      {DataType::LongVarChar, "text"},
      {DataType::LongVarWChar, "nvarchar(max)"},
      {DataType::LongVarBinary, "image"},
      {DataType::Guid, "uniqueidentifier"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Definition({MakeColumn("c", row.type)}), row.text + " NULL");
  }
  const auto sized = [&](DataType type, std::int64_t size) {
    return Definition({WithSize(MakeColumn("c", type), size)});
  };
  EXPECT_EQ(sized(DataType::Char, 10), "varchar(10) NULL");
  EXPECT_EQ(sized(DataType::VarChar, 8000), "varchar(8000) NULL");
  EXPECT_EQ(sized(DataType::VarChar, 8001), "varchar(max) NULL");
  EXPECT_EQ(sized(DataType::WChar, 4000), "nvarchar(4000) NULL");
  EXPECT_EQ(sized(DataType::VarWChar, 4001), "nvarchar(max) NULL");
  EXPECT_EQ(sized(DataType::Binary, 16), "binary(16) NULL");
  EXPECT_EQ(sized(DataType::Binary, 8001), "varbinary(max) NULL");
  EXPECT_EQ(sized(DataType::VarBinary, 8000), "varbinary(8000) NULL");
  EXPECT_EQ(Definition({WithDigits(MakeColumn("c", DataType::Numeric), 10, 2)}),
            "numeric(10,2) NULL");
}

TEST_F(MySqlTransfer, PutsThePiecesInOrder) {
  EXPECT_EQ(Definition({MakeColumn("c", DataType::Integer), "NO", "PRI", "auto_increment"}),
            "BigInt NOT NULL Identity");
  EXPECT_EQ(Definition({WithDefault(WithSize(MakeColumn("c", DataType::Char), 10), "O'Brien"), "NO",
                        "UNI", "", "O'Brien"}),
            "varchar(10) NOT NULL Unique Default 'O''Brien'");
}

TEST_F(MySqlTransfer, TurnsDefaultsIntoLiterals) {
  EXPECT_EQ(DefaultTail(DataType::Integer, "-7"), " Default -7");
  EXPECT_EQ(DefaultTail(DataType::Integer, "x'y"), " Default 'x'y'");
  EXPECT_EQ(DefaultTail(DataType::Double, "0"), " Default  0.0");
  EXPECT_EQ(DefaultTail(DataType::Numeric, "12.50"), " Default  12.5");
  EXPECT_EQ(DefaultTail(DataType::Boolean, "b'1'"), " Default 1");
  EXPECT_EQ(DefaultTail(DataType::Binary, "b'101'", 2), " Default 0x0005");
  EXPECT_EQ(DefaultTail(DataType::Binary, "ab"), " Default 0x6162");
  EXPECT_EQ(DefaultTail(DataType::VarChar, "10"), " Default 10");
  for (const char* text : {"007", "1e5", ".5", "+7", " 5 ", "-0"}) {
    EXPECT_EQ(DefaultTail(DataType::VarChar, text), fmt::format(" Default '{}'", text));
  }
  EXPECT_EQ(DefaultTail(DataType::LongVarChar, "10"), " Default '10'");
  EXPECT_EQ(DefaultTail(DataType::VarWChar, "\u4E16"), " Default N'\u4E16'");
  EXPECT_EQ(DefaultTail(DataType::VarChar, ""), "");
  EXPECT_EQ(DefaultTail(DataType::DBTimeStamp, "0000-00-00 00:00:00"),
            " Default '1753-01-01 00:00:00'");
  EXPECT_EQ(DefaultTail(DataType::DBDate, "2020-02-29"), " Default '2020-02-29 00:00:00'");
  EXPECT_EQ(DefaultTail(DataType::DBDate, "1700-01-01"), " Default '1753-01-01 00:00:00'");
  EXPECT_EQ(DefaultTail(DataType::DBDate, "2020-02-31"), " Default '1753-01-01 00:00:00'");
  EXPECT_EQ(DefaultTail(DataType::DBTime, "25:00:00"), " Default '1899-12-31 01:00:00'");
  EXPECT_EQ(DefaultTail(DataType::DBTime, "-01:00:00"), " Default '1899-12-29 23:00:00'");
  for (const char* now : {"CURRENT_TIMESTAMP", "current_timestamp()", "now()", "NOW(6)"}) {
    EXPECT_EQ(DefaultTail(DataType::DBTimeStamp, now), " Default getdate()");
  }
  EXPECT_EQ(DefaultTail(DataType::VarChar, "now()"), " Default 'now()'");
  // The catalog gives no value for an expression.
  EXPECT_THAT(host.notes, IsEmpty());
  EXPECT_EQ(Definition({MakeColumn("c", DataType::VarChar), "NO", "", "", "uuid()"}),
            "varchar(1) NOT NULL");
  EXPECT_EQ(DefaultTail(DataType::DBTimeStamp, "soon"), "");
  EXPECT_THAT(host.notes, ElementsAre("Table t: the default of column c was left off: uuid()",
                                      "Table t: the default of column c was left off: soon"));
}

TEST_F(MySqlTransfer, CreatesTablesWithTheirKeysUnderTheirNewNames) {
  src.SetReplaceSpaceWithUnderscore(true);
  src.SetConvertMode(convert_mode::kOverwrite);
  AddTable("order items", {{MakeColumn("item id", DataType::Integer), "NO", "", "auto_increment"},
                           {WithSize(MakeColumn("no%te", DataType::VarChar), 9)},
                           {WithSize(MakeColumn("no_te", DataType::VarChar), 8), "NO"}});
  AddKeys("order items", {{"t", "0", "PRIMARY", "1", "item id", {}, "BTREE"},
                          {"t", "0", "PRIMARY", "2", "line", {}, "BTREE"},
                          {"t", "0", "code", "1", "code", {}, "BTREE"},
                          {"t", "0", "order", "1", "a", {}, "BTREE"},
                          {"t", "0", "order", "2", "unit-price", {}, "BTREE"},
                          {"t", "1", "by cust", "1", "cust id", {}, "BTREE"},
                          {"t", "1", "by cust", "2", "date", {}, "BTREE"}});
  Transfer({"order items"});
  EXPECT_THAT(dest.log,
              ElementsAre("select schema_name()", testing::HasSubstr("sys.foreign_keys"),
                          "drop table  [order_items]",
                          "Create Table [order_items]([item_id] BigInt NOT NULL Identity, [no%te] "
                          "varchar(9) NULL, [no_te] varchar(8) NOT NULL)",
                          "alter table [order_items] add primary key ([item_id],[line])",
                          "Create unique index code on [order_items](code)",
                          "Create unique index [order] on [order_items](a,[unit-price])",
                          "Create index [by_cust] on [order_items](cust_id,date)"));
  EXPECT_EQ(source.Sent("show columns").size(), 1u);
}

TEST_F(MySqlTransfer, ARefusedKeyIsToldAndTheNextOneGoesOn) {
  AddTable("t", {{WithSize(MakeColumn("c", DataType::VarWChar), 450)},
                 {WithSize(MakeColumn("d", DataType::VarWChar), 451)}});
  AddKeys("t", {{"t", "0", "prefix", "1", "c", "10", "BTREE"},
                {"t", "1", "too_long", "1", "d", "10", "BTREE"},
                {"t", "1", "words", "1", "c", {}, "FULLTEXT"},
                {"t", "1", "a", "1", "c", {}, "BTREE"},
                {"t", "1", "b", "1", "c", {}, "BTREE"},
                {"t", "0", "PRIMARY", "1", "c", {}, "BTREE"}});
  dest.Fail("[a]", Failure(-1, 1919, "cannot be indexed"));
  Transfer({"t"});
  EXPECT_THAT(
      events.Errors(),
      ElementsAre("error 16 [MySQL Server] An error occured while creating primary keys and "
                  "indexes for table 't' - a: cannot be indexed"));
  EXPECT_THAT(host.notes, ElementsAre("Table t: index too_long was not carried: the beginning of a "
                                      "column too long for an index",
                                      "Table t: index words was not carried: full text"));
  dest.log.erase(dest.log.begin());
  EXPECT_THAT(dest.log, ElementsAre("alter table [t] add primary key ([c])",
                                    "Create unique index prefix on [t](c)",
                                    "Create index [a] on [t](c)", "Create index [b] on [t](c)"));
}

TEST_F(MySqlTransfer, DropsEveryTableFirstAndReportsWhatKeepsThem) {
  src.SetConvertMode(convert_mode::kOverwrite);
  for (const char* name : {"a", "b", "c"}) AddTable(name, {{MakeColumn("c", DataType::Integer)}});
  const std::int32_t refused = ado::hresult::kErrorsInCommand;
  dest.Fail("drop table  [a]", Failure(refused, 3701, "no such table"));
  dest.Fail("drop table  [b]", Failure(refused, 3726, "referenced"));
  dest.Fail("Create Table [b]", Failure(refused, 2714, "exists"));
  dest.Fail("Create Table [c]", Failure(refused, 2750, "bad type"));
  Transfer({"a", "b", "c"});
  EXPECT_THAT(
      events.events,
      ElementsAre("started 3 false",
                  "error 16 [MS SQL Server] Could not drop table 'b' due to relationship(s) with "
                  "other table(s)",
                  "table a", "succeeded a", "table b", "failed b", "table c",
                  "error 16 [MySQL Server] Unknown error 2750 - bad type", "failed c", "ended"));
  EXPECT_EQ(dest.log[4], "drop table  [c]");
}

TEST_F(MySqlTransfer, MergeKeepsATableThatExists) {
  AddTable("t", {{MakeColumn("c", DataType::Integer)}});
  AddKeys("t", {{"t", "1", "a", "1", "c", {}, "BTREE"}});
  dest.Fail("Create Table", Failure(ado::hresult::kErrorsInCommand, 2714, "exists"));
  Transfer({"t"});
  EXPECT_THAT(events.events, ElementsAre("started 1 false", "table t", "succeeded t", "ended"));
  EXPECT_THAT(dest.Sent("Create index"), IsEmpty());
}

TEST_F(MySqlTransfer, SourceFailuresSayWhatTheyAre) {
  AddTable("t", {{MakeColumn("c", DataType::Integer)}});
  source.Fail("show columns", Failure(-9, 1, "lost"));
  src.SetConvertRelationships(true);
  Transfer({"missing", "t"});
  const std::string missing =
      "error 16 [MS SQL Server] Table missing does not exist in the source database  'shop'";
  EXPECT_THAT(
      events.events,
      ElementsAre("started 2 true", "table missing", missing, "table t",
                  "error 16 [MySQL Server] Unknown error -9 - lost", missing, "relations t",
                  "error 16 [Creating Relationship Error] Unexpected error 3265 - Item cannot "
                  "be found in the collection corresponding to the requested name or "
                  "ordinal.",
                  "ended"));
}

struct MySqlRelations : MySqlTransfer {
  void Relate(const std::string& constraints) {
    AddTable("my orders", {{MakeColumn("c", DataType::Integer)}});
    const std::string_view definition = source.Keep(
        "CREATE TABLE `my orders` (\n  `c` int(11),\n  " + constraints + "\n) ENGINE=InnoDB");
    source.Answer("show create table  `my orders`",
                  {TextResult({"Table", "Create Table"}, {{"my orders", definition}})});
    src.SetConvertRelationships(true);
    dest.log.clear();
    events.events.clear();
    Transfer({"my orders"});
    source.tables.clear();
  }
};

TEST_F(MySqlRelations, AreRewritten) {
  const std::string constraints =
      "CONSTRAINT `fk cust` FOREIGN KEY (`cust id`) REFERENCES `my customers` (`id`) ON DELETE SET "
      "NULL ON UPDATE CASCADE,\n"
      "  CONSTRAINT `fk``2` FOREIGN KEY (`a`, `b`) REFERENCES `t` (`x`, `y`) ON DELETE RESTRICT";
  Relate(constraints);
  EXPECT_THAT(dest.Sent("Alter"),
              ElementsAre("Alter Table [my orders] add CONSTRAINT [fk cust] Foreign Key ([cust "
                          "id]) References [my customers] ([id]) On Delete No Action On Update "
                          "CASCADE",
                          "Alter Table [my orders] add CONSTRAINT [fk`2] Foreign Key ([a], [b]) "
                          "References [t] ([x], [y]) On Delete No Action On Update No Action"));
  src.SetReplaceSpaceWithUnderscore(true);
  Relate(constraints);
  EXPECT_EQ(dest.Sent("Alter")[0],
            "Alter Table [my_orders] add CONSTRAINT [fk_cust] Foreign Key ([cust_id]) References "
            "[my_customers] ([id]) On Delete No Action On Update CASCADE");
}

TEST_F(MySqlRelations, RefusalsAreReportedAsTheirNumberSays) {
  struct Row {
    std::int16_t mode;
    ado::ProviderError error;
    std::string event;  // empty: none
    bool has_key = false;
  };
  constexpr std::int32_t kRefused = ado::hresult::kErrorsInCommand;
  const std::string title = "error 16 [Creating Relationship Error] ";
  const std::string could_not =
      title +
      "Could not create relationship between [my orders]([a]) and [t] ([x]). Error -2147217900 - ";
  const std::string exists = "There is already an object named x";
  const Row rows[] = {
      {convert_mode::kMerge, Failure(kRefused, 2714, exists), "", true},
      // Something else has that name.
      {convert_mode::kMerge, Failure(kRefused, 2714, exists), could_not + exists},
      {convert_mode::kOverwrite, Failure(kRefused, 2714, exists), could_not + exists, true},
      {convert_mode::kMerge, Failure(kRefused, 1767, "invalid table"), could_not + "invalid table"},
      {convert_mode::kMerge, Failure(ado::hresult::kIntegrityViolation, 547, "conflict"),
       title + "Unexpected error -2147217873 - conflict"},
      {convert_mode::kMerge,
       {-4, "test", "run-time", {}},
       title + "Unexpected error -4 - run-time"},
  };
  for (const Row& row : rows) {
    src.SetConvertMode(row.mode);
    dest.keys.clear();
    if (row.has_key) dest.keys["my orders"] = {{"FK1", ado::KeyType::Foreign, "t", {}, {}, {}}};
    dest.Fail("[fk1]", row.error, 1);
    Relate(
        "CONSTRAINT `fk1` FOREIGN KEY (`a`) REFERENCES `t` (`x`),\n"
        "  CONSTRAINT `fk2` FOREIGN KEY (`a`) REFERENCES `t` (`x`)");
    EXPECT_EQ(dest.Sent("Alter").size(), 2u) << row.error.what();
    if (row.event.empty()) {
      EXPECT_THAT(events.Errors(), IsEmpty());
    } else {
      EXPECT_THAT(events.Errors(), ElementsAre(row.event));
    }
  }
}

}  // namespace
}  // namespace dorvane
