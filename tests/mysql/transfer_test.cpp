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

TEST_F(MySqlTransfer, TurnsDefaultsAsOtherServersWriteThemIntoLiterals) {
  struct Default {
    DataType type;
    std::string value;
    std::string_view tail;
  };
  const Default defaults[] = {
      {DataType::Integer, "x'y", " Default 'x'y'"},
      {DataType::LongVarChar, "10", " Default '10'"},
      {DataType::DBTimeStamp, "0000-00-00 00:00:00", " Default '1753-01-01 00:00:00'"},
      {DataType::DBDate, "2020-02-31", " Default '1753-01-01 00:00:00'"},
      {DataType::DBTimeStamp, "CURRENT_TIMESTAMP", " Default getdate()"},
      {DataType::DBTimeStamp, "current_timestamp()", " Default getdate()"},
      {DataType::DBTimeStamp, "now()", " Default getdate()"},
      {DataType::DBTimeStamp, "soon", ""},
  };
  for (const Default& each : defaults) {
    EXPECT_EQ(DefaultTail(each.type, each.value), each.tail) << each.value;
  }
  EXPECT_THAT(host.notes, ElementsAre("Table t: the default of column c was left off: soon"));
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
