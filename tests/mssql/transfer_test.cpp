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

TEST_F(MsSqlTransfer, GivesTypesThatNoDriverHereHasTheirText) {
  const std::pair<DataType, std::string_view> types[] = {
      {DataType::TinyInt, "TINYINT(1) NULL"},
      {DataType::UnsignedSmallInt, "INT NULL"},
      {DataType::UnsignedInt, "BIGINT UNSIGNED NULL"},
      {DataType::UnsignedBigInt, "BIGINT UNSIGNED NULL"},
      {DataType::Date, "DATETIME NULL"},
      {DataType::BStr, "LONGTEXT NULL"},
      {DataType::Empty, " NULL"},
  };
  for (const auto& [type, text] : types) EXPECT_EQ(Definition(MakeColumn("c", type)), text);
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

TEST_F(MsSqlTransfer, MarksTheIdentityColumnByItsExactName) {
  EXPECT_EQ(Definition(MakeColumn("c", DataType::Integer, false), "c"),
            "INT NOT NULL primary key auto_increment");
  EXPECT_EQ(Definition(MakeColumn("c", DataType::Integer, false), "C"), "INT NOT NULL");
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
  EXPECT_GE(host.yields, 2);
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
