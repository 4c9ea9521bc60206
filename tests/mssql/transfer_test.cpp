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
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

struct MsSqlTransfer : testing::Test, test::TransferRig<MsSqlDatabase, MySqlDatabase> {
  void AddTable(const std::string& name, std::vector<ado::Column> columns,
                std::string_view identity = "No identity column defined.") {
    source.tables.push_back({name, "TABLE"});
    source.columns[name] = std::move(columns);
    source.Answer("sp_help [" + name + "]",
                  {TextResult({"Name"}, {{"x"}}), TextResult({"Column_name"}, {{"x"}, {"y"}}),
                   TextResult({"Identity", "Seed"}, {{identity, "1"}}),
                   TextResult({"RowGuidCol"}, {{"none"}})});
  }
  /// What the destination was sent beside questions.
  std::vector<std::string> Changes() const {
    std::vector<std::string> changes;
    for (const std::string& sql : dest.log) {
      if (!sql.starts_with("select ")) changes.push_back(sql);
    }
    return changes;
  }
  /// The statement that creates a table of one column c.
  std::string Definition(const ado::Column& column, std::string_view identity = "") {
    AddTable("t", {column}, identity.empty() ? "No identity column defined." : identity);
    dest.log.clear();
    Transfer({"t"});
    source.tables.clear();
    const auto created = dest.Sent("Create Table");
    if (created.empty()) return "no table";
    const std::string& sql = created[0];
    const std::string head = "Create Table `t`(`c` ";
    EXPECT_TRUE(sql.starts_with(head) && sql.ends_with(")")) << sql;
    return sql.substr(head.size(), sql.size() - head.size() - 1);
  }
};

TEST_F(MsSqlTransfer, GivesEachTypeItsText) {
  struct Row {
    DataType type;
    std::string text;
  };
  const Row rows[] = {
      {DataType::SmallInt, "SMALLINT(6)"},
      {DataType::Integer, "INT"},
      {DataType::Single, "FLOAT"},
      {DataType::Double, "DOUBLE"},
      {DataType::Currency, "DECIMAL(19,4)"},
      {DataType::Boolean, "TINYINT(1)"},
      {DataType::TinyInt, "TINYINT(1)"},
      {DataType::UnsignedTinyInt, "TINYINT(1)"},
      {DataType::Variant, "LONGBLOB"},
      {DataType::Guid, "LONGBLOB"},
      {DataType::LongVarBinary, "LONGBLOB"},
      {DataType::BigInt, "BIGINT"},
      {DataType::Binary, "BLOB"},
      {DataType::VarBinary, "BLOB"},
      {DataType::LongVarChar, "LONGTEXT"},
      {DataType::LongVarWChar, "LONGTEXT"},
      {DataType::DBTimeStamp, "DATETIME"},
      {DataType::DBDate, "DATE"},
      {DataType::DBTime, "TIME"},
      {DataType::Date, "DATETIME"},
      {DataType::BStr, "LONGTEXT"},
      {DataType::UnsignedSmallInt, "INT"},
      {DataType::UnsignedInt, "BIGINT UNSIGNED"},
      {DataType::UnsignedBigInt, "BIGINT UNSIGNED"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Definition(MakeColumn("c", row.type)), row.text + " NULL");
  }
  EXPECT_EQ(Definition(MakeColumn("c", DataType::Empty, false)), " NOT NULL");
}

TEST_F(MsSqlTransfer, ReadsObjectsAsTheirText) {
  for (const TypeMapping types : {TypeMapping::Classic, TypeMapping::Exact}) {
    ConversionOptions options{.copy_table_content = true, .types = types};
    src.SetOptions(options);
    ado::Column place = MakeColumn("pla]ce", DataType::LongVarBinary);
    place.server_type = "geography";
    place.kind.base_type = "hierarchyid";
    AddTable("t", {MakeColumn("id", DataType::Integer, false), place});
    source.log.clear();
    dest.log.clear();
    host.notes.clear();
    Transfer({"t"});
    EXPECT_THAT(source.Sent("select [id]"),
                ElementsAre("select [id], [pla]]ce].ToString() as [pla]]ce] from [t]"));
    EXPECT_THAT(dest.Sent("Create Table"),
                ElementsAre("Create Table `t`(`id` INT NOT NULL,`pla]ce` LONGTEXT NULL)"));
    EXPECT_THAT(host.notes,
                Contains("Table t: column pla]ce holds the text of its hierarchyid values"));
    source.tables.clear();
  }
}

TEST_F(MsSqlTransfer, SizesDecideOverTextAndFractions) {
  const auto sized = [&](DataType type, std::int64_t size) {
    return Definition(WithSize(MakeColumn("c", type, false), size));
  };
  EXPECT_EQ(sized(DataType::WChar, 10), "varchar(10) NOT NULL");
  EXPECT_EQ(sized(DataType::Char, 256), "Text NOT NULL");
  EXPECT_EQ(sized(DataType::VarWChar, 255), "VARCHAR(255) NOT NULL");
  EXPECT_EQ(sized(DataType::VarChar, 256), "Text NOT NULL");
  EXPECT_EQ(sized(DataType::VarChar, 2147483647), "Text NOT NULL");
  const auto digits = [&](DataType type, int precision, int scale) {
    return Definition(WithDigits(MakeColumn("c", type), precision, scale));
  };
  EXPECT_EQ(digits(DataType::Numeric, 10, 2), "DECIMAL(10,2) NULL");
  EXPECT_EQ(digits(DataType::VarNumeric, 38, 0), "DECIMAL(38,0) NULL");
  EXPECT_EQ(digits(DataType::DBTimeStamp, 0, 3), "DATETIME NULL");
  EXPECT_EQ(digits(DataType::DBTimeStamp, 0, 7), "DATETIME(6) NULL");
  EXPECT_EQ(digits(DataType::DBTime, 0, 7), "TIME(6) NULL");
}

TEST_F(MsSqlTransfer, TurnsDefaultsIntoLiterals) {
  struct Row {
    DataType type;
    std::string value;
    std::string tail;
  };
  const Row rows[] = {
      {DataType::Integer, "-7", " Default -7"},
      {DataType::Integer, "1.5", " Default 1"},
      {DataType::Integer, "", " Default 0"},
      {DataType::Double, "", " Default  0.0"},
      {DataType::Boolean, "", " Default 0"},
      {DataType::Double, "0", " Default  0.0"},
      {DataType::Currency, "1.5", " Default  1.5"},
      {DataType::Boolean, "1", " Default 1"},
      {DataType::Boolean, "0", " Default 0"},
      {DataType::DBTimeStamp, "GetDate()", ""},
      {DataType::DBTimeStamp, "2020-01-31 10:20:30", " Default 20200131102030"},
      {DataType::DBTimeStamp, "", " Default 19000101000000"},
      {DataType::DBTimeStamp, "0", " Default 19000101000000"},
      {DataType::DBTimeStamp, "-1", " Default 18991231000000"},
      {DataType::DBTimeStamp, "0001-01-01T00:00:00.0000000", " Default '00010101000000'"},
      {DataType::DBTimeStamp, "Jan 2 2020", " Default 20200102000000"},
      {DataType::DBTimeStamp, "12 February, 1999 10:30PM", " Default 19990212223000"},
      {DataType::DBTimeStamp, "12/31/2099 11:59 PM", " Default 20991231235900"},
      {DataType::DBTimeStamp, "1900.01.02 12 am", " Default 19000102000000"},
      {DataType::DBTimeStamp, "1/2/49", " Default 20490102000000"},
      {DataType::DBTimeStamp, "2020-02-31", ""},
      {DataType::DBTimeStamp, "2020", ""},  // a year or a number of days
      {DataType::DBDate, "getdate()", ""},
      {DataType::DBDate, "20200131", " Default '2020-01-31 00:00:00'"},
      {DataType::VarWChar, "O'Brien \\ \"x\"", " Default 'O''Brien \\\\ \\\"x\\\"'"},
      {DataType::VarChar, "12'5", " Default '12''5'"},
      {DataType::VarChar, "10", " Default 10"},
      {DataType::VarChar, "007", " Default '007'"},
      {DataType::VarChar, "1e5", " Default '1e5'"},
      {DataType::VarChar, "+5", " Default '+5'"},
      {DataType::VarChar, "", " Default ''"},
      {DataType::Guid, "{6F9619FF-8B86-D011-B42D-00C04FC964FF}",
       " Default 0x6F9619FF8B86D011B42D00C04FC964FF"},
      {DataType::Guid, "none", ""},
      {DataType::VarBinary, "0x0aff", " Default 0x0AFF"},
      {DataType::VarBinary, "0x", " Default ''"},
      {DataType::Binary, "0x0aff", ""},
  };
  for (const Row& row : rows) {
    host.notes.clear();
    const std::string text =
        Definition(WithDefault(WithSize(MakeColumn("c", row.type, false), 20), row.value));
    const std::string_view not_null = " NOT NULL";
    const std::size_t at = text.find(not_null);
    ASSERT_NE(at, std::string::npos) << row.value;
    EXPECT_EQ(text.substr(at + not_null.size()), row.tail) << row.value;
    EXPECT_EQ(host.notes.size(), row.tail.empty() ? 1u : 0u) << row.value;
  }
  EXPECT_EQ(Definition(WithDefault(WithDigits(MakeColumn("c", DataType::DBTimeStamp), 0, 7),
                                   "2020-01-02 03:04:05.1234567")),
            "DATETIME(6) NULL Default '2020-01-02 03:04:05.123456'");
  ado::Column computed = MakeColumn("c", DataType::Integer);
  computed.other_default = "(1+1)";
  host.notes.clear();
  EXPECT_EQ(Definition(computed), "INT NULL");
  EXPECT_THAT(host.notes, ElementsAre("Table t: the default (1+1) of column c was left off"));
}

TEST_F(MsSqlTransfer, MarksTheIdentityColumnByItsExactName) {
  EXPECT_EQ(Definition(MakeColumn("c", DataType::Integer, false), "c"),
            "INT NOT NULL primary key auto_increment");
  EXPECT_EQ(Definition(MakeColumn("c", DataType::Integer, false), "C"), "INT NOT NULL");
}

TEST_F(MsSqlTransfer, ConvertsTablesKeysAndRelationshipsInOrder) {
  src.SetReplaceSpaceWithUnderscore(true);
  src.SetConvertMode(convert_mode::kOverwrite);
  src.SetConvertRelationships(true);
  AddTable("Order Details", {MakeColumn("Order ID", DataType::Integer, false),
                             WithSize(MakeColumn("Unit Name", DataType::VarChar), 9)});
  AddTable("Orders", {MakeColumn("ID", DataType::Integer, false)}, "ID");
  source.indexes["Order Details"] = {{"UX", false, true, {"Unit Name"}},
                                     {"PK OD", true, true, {"Order ID", "Unit Name"}},
                                     {"IX Unit Name", false, false, {"Unit Name", "Order ID"}}};
  source.indexes["Orders"] = {{"PK_Orders", true, true, {"ID", "other"}}};
  source.keys["Order Details"] = {{"PK OD", ado::KeyType::Primary, "", {}, {}, {{"Order ID", ""}}},
                                  {"FK 1",
                                   ado::KeyType::Foreign,
                                   "Other Table",
                                   ado::RuleType::Cascade,
                                   ado::RuleType::SetNull,
                                   {{"a b", "x"}, {"b", "y"}}},
                                  {"FK_2",
                                   ado::KeyType::Foreign,
                                   "Orders",
                                   ado::RuleType::SetDefault,
                                   ado::RuleType::None,
                                   {{"c", "z"}}}};
  Transfer({"Order Details", "Orders"});
  EXPECT_THAT(
      Changes(),
      ElementsAre(
          "Drop Table If Exists `Order_Details`",
          "Create Table `Order_Details`(`Order_ID` INT NOT NULL,`Unit_Name` VARCHAR(9) NULL)",
          "ALTER TABLE `Order_Details` add constraint `PK_OD` Primary "
          "key(`Order_ID`,`Unit_Name`)",
          "Create unique index `UX` on `Order_Details`(`Unit_Name`)",
          "Create index `IX_Unit_Name` on `Order_Details`(`Unit_Name`,`Order_ID`)",
          "Drop Table If Exists `Orders`",
          "Create Table `Orders`(`ID` INT NOT NULL primary key auto_increment)",
          "ALTER TABLE `Order_Details` ADD CONSTRAINT  `FK 1` FOREIGN KEY (a b,b) REFERENCES "
          "Other_Table(x,y) ON DELETE CASCADE ON UPDATE SET NULL",
          "ALTER TABLE `Order_Details` ADD CONSTRAINT  `FK_2` FOREIGN KEY (c) REFERENCES "
          "Orders(z) ON DELETE  ON UPDATE NO ACTION"));
  EXPECT_THAT(events.events,
              ElementsAre("started 2 true", "table Order Details", "succeeded Order Details",
                          "table Orders", "succeeded Orders", "relations Order Details",
                          "relations Orders", "ended"));
  EXPECT_GE(host.yields, 2);
}

TEST_F(MsSqlTransfer, AsksForTheIdentityColumnInAnotherWayWhereTheProcedureIsRefused) {
  AddTable("it's", {MakeColumn("n", DataType::Integer, false)});
  source.Fail("sp_help", Failure(ado::hresult::kErrorsInCommand, 2812, "no procedure"));
  source.Answer(
      "select name from sys.columns where object_id = object_id('[it''s]') and "
      "is_identity = 1",
      {TextResult({"name"}, {{"n"}})});
  Transfer({"it's"});
  EXPECT_THAT(Changes(),
              ElementsAre("Create Table `it's`(`n` INT NOT NULL primary key auto_increment)"));
}

TEST_F(MsSqlTransfer, AnEmptyListOpensAndClosesBothConnections) {
  Transfer({});
  EXPECT_THAT(events.events, ElementsAre("started 0 false", "ended"));
  dest.connect_failure = Failure(-1, 2003, "x");
  events.events.clear();
  Transfer({"t"});
  EXPECT_THAT(events.events, ElementsAre("started 1 false"));
  EXPECT_EQ(host.connection_failures.size(), 1u);
}

TEST_F(MsSqlTransfer, TellsOnceWhatTravelsOpenly) {
  source.is_exposed = true;
  src.SetServer("db1");
  Transfer({});
  EXPECT_THAT(host.notes, ElementsAre("The connection to the source server db1 is not encrypted"));
}

TEST_F(MsSqlTransfer, MergeKeepsATableThatExistsAndOverwriteReportsIt) {
  AddTable("t", {MakeColumn("c", DataType::Integer)});
  source.indexes["t"] = {{"PK", true, true, {"c"}}};
  dest.Fail("Create Table", Failure(ado::hresult::kErrorsInCommand, 1050, "exists"));
  Transfer({"t"});
  EXPECT_THAT(dest.Sent("ALTER"), IsEmpty());
  EXPECT_THAT(events.events, ElementsAre("started 1 false", "table t", "succeeded t", "ended"));

  events.events.clear();
  src.SetConvertMode(convert_mode::kOverwrite);
  Transfer({"t"});
  EXPECT_THAT(events.events,
              ElementsAre("started 1 false", "table t",
                          "error 16 [Unexpected error] Error no. -2147217900 - exists", "failed t",
                          "ended"));
}

TEST_F(MsSqlTransfer, SourceFailuresAreNotPutDownToTheDestination) {
  AddTable("a", {MakeColumn("c", DataType::Integer)});
  AddTable("b", {MakeColumn("c", DataType::Integer)});
  src.SetConvertMode(convert_mode::kOverwrite);
  dest.Fail("Create Table `a`", Failure(ado::hresult::kTimeout, 1205, "busy"));
  Transfer({"a", "missing", "b"});
  EXPECT_THAT(events.events,
              ElementsAre("started 3 false", "table a",
                          "error 16 [MySQL] Can not drop table a - Error no. -2147217871 - busy",
                          "failed a", "table missing", "table b", "succeeded b", "ended"));
  ASSERT_EQ(host.unclassified.size(), 1u);
  EXPECT_TRUE(host.unclassified[0].starts_with(
      "16 [Table Conversion] Failed to convert table missing 3265: "));
}

// What is sent in the end when the server refuses the definition with these numbers in turn.
TEST_F(MsSqlTransfer, RefusedDefinitionsAreCured) {
  const ado::Column text = WithDefault(WithSize(MakeColumn("c d", DataType::VarChar), 300), "x");
  const ado::Column name = WithDefault(WithSize(MakeColumn("c d", DataType::VarChar), 3), "long");
  const auto number = [](int precision) {
    return WithDigits(MakeColumn("c d", DataType::Numeric, false), precision, 0);
  };
  struct Case {
    ado::Column column;
    bool is_identity;
    std::vector<std::int32_t> refusals;
    std::string statement;  // behind the name; empty: the table fails
    std::vector<std::string> notes;
  };
  const std::string off = "Table t: the default ('x') of column c d was left off";
  const Case cases[] = {
      {text, false, {1101}, "Text NULL Default ('x'))", {}},
      {text, false, {1101, 1064}, "Text NULL)", {off}},
      {text, false, {1101, 1101}, "Text NULL)", {off}},
      {text, false, {1101, 1064, 1064}, "", {}},
      {name,
       false,
       {1067},
       "VARCHAR(3) NULL)",
       {"Table t: the default 'long' of column c d was left off"}},
      {name,
       false,
       {1118, 1101},
       "Text NULL Default ('long'))",
       {"Table t: column c d became Text, since the row was too wide"}},
      {number(18),
       true,
       {1063},
       "BIGINT NOT NULL primary key auto_increment)",
       {"Table t: column c d became BIGINT, since MySQL counts in integers"}},
      {number(19),
       true,
       {1063},
       "DECIMAL(19,0) NOT NULL)",
       {"Table t: column c d does not count by itself any more, since DECIMAL(19,0) is too large "
        "for it"}},
      {number(9), false, {3750}, "DECIMAL(9,0) NOT NULL,constraint `pk` Primary key(`c_d`))", {}},
      {number(9), false, {1142}, "", {}},
  };
  src.SetReplaceSpaceWithUnderscore(true);
  for (const Case& each : cases) {
    source.tables.clear();
    dest.log.clear();
    host.notes.clear();
    events.events.clear();
    AddTable("t", {each.column}, each.is_identity ? "c d" : "No identity column defined.");
    source.indexes["t"] = {{"pk", true, true, {"c d"}}};
    for (const std::int32_t native : each.refusals) {
      dest.Fail("Create Table", Failure(ado::hresult::kErrorsInCommand, native, "in 'c_d'"), 1);
    }
    Transfer({"t"});
    SCOPED_TRACE(each.statement);
    if (each.statement.empty()) {
      EXPECT_THAT(events.Of("failed"), ElementsAre("failed t"));
      continue;
    }
    EXPECT_EQ(dest.Sent("Create Table").back(), "Create Table `t`(`c_d` " + each.statement);
    EXPECT_THAT(events.Errors(), IsEmpty());
    EXPECT_EQ(host.notes, each.notes);
  }
}

TEST_F(MsSqlTransfer, AFilterIsToldAndItsUniqueKeyRefusesNoRow) {
  AddTable("t", {MakeColumn("a", DataType::Integer), MakeColumn("b", DataType::Integer)});
  source.indexes["t"] = {
      {"ux_null", false, true, {"a", "b"}, true, "([b] IS NOT NULL AND [a] IS NOT NULL)"},
      {"ux_part", false, true, {"a"}, false, "([a] IS NOT NULL AND [b]>(0))"},
      {"ix_part", false, false, {"b"}, false, "([a]=(1))"}};
  Transfer({"t"});
  EXPECT_THAT(dest.Sent("Create unique"),
              ElementsAre("Create unique index `ux_null` on `t`(`a`,`b`)"));
  EXPECT_THAT(dest.Sent("Create index"), ElementsAre("Create index `ux_part` on `t`(`a`)",
                                                     "Create index `ix_part` on `t`(`b`)"));
  EXPECT_THAT(host.notes,
              ElementsAre("Table t: index ux_null is ascending in all its columns",
                          "Table t: unique key ux_part became a plain index, since MySQL has no "
                          "filter ([a] IS NOT NULL AND [b]>(0))",
                          "Table t: index ix_part covers every row, since MySQL has no filter "
                          "([a]=(1))"));
}

TEST_F(MsSqlTransfer, RelationshipsThatAreOffAreLeftOut) {
  AddTable("t", {MakeColumn("a", DataType::Integer)});
  ado::Key off{
      .name = "off", .type = ado::KeyType::Foreign, .related_table = "t", .columns = {{"a", "a"}}};
  off.is_disabled = true;
  ado::Key unchecked = off;
  unchecked.name = "unchecked";
  unchecked.is_disabled = unchecked.is_trusted = false;
  source.keys["t"] = {off, unchecked};
  src.SetConvertRelationships(true);
  Transfer({"t"});
  EXPECT_EQ(dest.Sent("ALTER TABLE").size(), 1U);
  EXPECT_THAT(host.notes, ElementsAre("Table t: relationship off was left out: it is disabled",
                                      "Table t: relationship unchecked was not checked against "
                                      "every row on the source"));
}

TEST_F(MsSqlTransfer, ARefusedKeyIsNamedAndTheNextOneGoesOn) {
  src.SetReplaceSpaceWithUnderscore(true);
  AddTable("my t", {MakeColumn("c", DataType::Integer)});
  source.indexes["my t"] = {{"I 1", false, false, {"c"}}, {"I 2", false, false, {"c"}}};
  dest.Fail("`I_1`", Failure(-5, 1071, "too long"));
  Transfer({"my t"});
  EXPECT_THAT(events.Errors(),
              ElementsAre("error 16 [Primary Key Constraint] Can not create Primary Key constraint "
                          "I 1 for table my_t _ -5 _ too long"));
  EXPECT_EQ(dest.Sent("Create index").size(), 2u);
}

struct RelationFailure {
  std::int16_t mode;
  ado::ProviderError error;
  std::string event;  // empty: none
  bool goes_on;
};

TEST_F(MsSqlTransfer, ReportsRefusedRelationships) {
  constexpr auto kMerge = convert_mode::kMerge;
  constexpr auto kOther = convert_mode::kOverwrite;
  const std::int32_t refused = ado::hresult::kErrorsInCommand;
  const auto cannot = [](std::string_view words) {
    return fmt::format(
        "error 64 [Creating Relationship Error] Could not create relationship between table t and "
        "table other. Error -2147217900 - {}",
        words);
  };
  const auto unexpected = [](std::string_view words) {
    return fmt::format("error 16 [Creating Relationship Error] Unexpected error {}", words);
  };
  dest.Answer(
      "select 1 from information_schema.table_constraints where constraint_schema = database() and "
      "table_name = 't' and constraint_name = 'fk1' and constraint_type = 'FOREIGN KEY'",
      {TextResult({"1"}, {{"1"}})});
  const RelationFailure rows[] = {
      {kMerge, Failure(refused, 1005, "(errno: 150)"), cannot("(errno: 150)"), true},
      {kMerge, Failure(refused, 3780, "incompatible"), cannot("incompatible"), true},
      {kMerge, Failure(refused, 6125, "no key"), cannot("no key"), true},
      {kMerge, Failure(refused, 1005, "(errno: 121)"), "", true},
      {kMerge, Failure(refused, 1826, "Duplicate key name"), "", true},
      {kMerge, Failure(refused, 1452, "#sql-121-150"), unexpected("-2147217900 - #sql-121-150"),
       true},
      {kOther, Failure(refused, 1826, "Duplicate"), unexpected("-2147217900 - Duplicate"), true},
      {kMerge, Failure(ado::hresult::kFail, 2013, "lost"), unexpected("-2147467259 - lost"), false},
      {kMerge, {-3, "test", "run-time", {}}, unexpected("-3 - run-time"), false},
  };
  AddTable("t", {MakeColumn("c", DataType::Integer)});
  source.keys["t"] = {{"fk1", ado::KeyType::Foreign, "other", {}, {}, {{"c", "d"}}},
                      {"fk2", ado::KeyType::Foreign, "other", {}, {}, {{"c", "d"}}}};
  src.SetConvertRelationships(true);
  for (const RelationFailure& row : rows) {
    dest.log.clear();
    events.events.clear();
    src.SetConvertMode(row.mode);
    dest.Fail("`fk1`", row.error, 1);
    Transfer({"t"});
    EXPECT_EQ(dest.Sent("ALTER TABLE").size(), row.goes_on ? 2u : 1u) << row.error.what();
    if (row.event.empty()) {
      EXPECT_THAT(events.Errors(), IsEmpty());
    } else {
      EXPECT_THAT(events.Errors(), ElementsAre(row.event));
    }
  }
}

TEST_F(MsSqlTransfer, BareNamesThatAreAMistakeAreQuotedAndOthersAtOnce) {
  AddTable("t", {MakeColumn("c", DataType::Integer)});
  const auto key = [](const std::string& name, const std::string& column, ado::RuleType rule) {
    return ado::Key{name, ado::KeyType::Foreign, "my order", rule, {}, {{column, "x y"}}};
  };
  source.keys["t"] = {key("blank", "a b", ado::RuleType::None),
                      key("hostile", "c) references p(c), drop column c --", ado::RuleType::None),
                      key("default", "group", ado::RuleType::SetDefault)};
  src.SetConvertRelationships(true);
  src.SetReplaceSpaceWithUnderscore(true);
  dest.Fail("(a b)", Failure(ado::hresult::kErrorsInCommand, 1064, "syntax"));
  dest.Fail("DELETE  ON", Failure(ado::hresult::kErrorsInCommand, 1064, "syntax"));
  Transfer({"t"});
  const std::string head = "ALTER TABLE `t` ADD CONSTRAINT  ";
  const std::string tail = " ON DELETE NO ACTION ON UPDATE NO ACTION";
  EXPECT_THAT(
      dest.Sent("ALTER"),
      ElementsAre(head + "`blank` FOREIGN KEY (a b) REFERENCES my_order(x y)" + tail,
                  head + "`blank` FOREIGN KEY (`a_b`) REFERENCES `my_order`(`x_y`)" + tail,
                  head +
                      "`hostile` FOREIGN KEY (`c)_references_p(c),_drop_column_c_--`) "
                      "REFERENCES `my_order`(`x_y`)" +
                      tail,
                  head + "`default` FOREIGN KEY (group) REFERENCES my_order(x y) ON DELETE  ON "
                         "UPDATE NO ACTION",
                  head + "`default` FOREIGN KEY (`group`) REFERENCES `my_order`(`x_y`)" + tail));
  EXPECT_THAT(events.Errors(), IsEmpty());
  EXPECT_THAT(host.notes,
              ElementsAre("Table t: SET DEFAULT of relationship default became NO ACTION"));
}

TEST_F(MsSqlTransfer, AFailureBeforeATablesRelationshipsLetsTheNextTableTry) {
  AddTable("t", {MakeColumn("c", DataType::Integer)});
  source.keys_failure = Failure(-8, 5, "catalog broke");
  src.SetConvertRelationships(true);
  Transfer({"gone", "t"});
  EXPECT_THAT(events.Of("relations"), ElementsAre("relations gone", "relations t"));
  EXPECT_EQ(host.unclassified.size(), 2u);  // its conversion, its relationships
  EXPECT_THAT(events.Errors(),
              ElementsAre("error 16 [Creating Relationship Error] Unexpected error -8 - catalog "
                          "broke"));
}

TEST_F(MsSqlTransfer, StopsBetweenTables) {
  AddTable("a", {MakeColumn("c", DataType::Integer)});
  AddTable("b", {MakeColumn("c", DataType::Integer)});
  src.SetConvertRelationships(true);
  host.polls_until_stop = 1;
  Transfer({"a", "b"});
  EXPECT_THAT(events.events, ElementsAre("started 2 true", "table a", "succeeded a", "ended"));
}

}  // namespace
}  // namespace dorvane
