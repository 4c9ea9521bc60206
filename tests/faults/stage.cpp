#include "tests/faults/stage.h"

#include <fmt/format.h>

#include <algorithm>

namespace dorvane::test {

namespace {

constexpr const char* kMsSqlTables =
    "create table First (Id int identity(1,1) not null primary key, Note nvarchar(100) null, "
    "Amount decimal(12,2) null)\ngo\n"
    "create table Big (Id int not null primary key, Note nvarchar(100) null, Amount decimal(12,2) "
    "null)\ngo\n"
    "create index BigAmount on Big (Amount)\ngo\n"
    "create table Loose (Id int null, Note nvarchar(100) null, Amount decimal(12,2) null)\ngo\n"
    "create table Last (Id int not null primary key, Note nvarchar(100) null, Amount decimal(12,2) "
    "null)\ngo\n"
    "create table Digits (d int not null)\ngo\n"
    "insert into Digits values (0),(1),(2),(3),(4),(5),(6),(7),(8),(9)\ngo\n"
    "insert into Big (Id, Note, Amount) select a.d + 10*b.d + 100*c.d + 1000*e.d + 10000*f.d, "
    "N'row \u0142 ' + replicate(N'x', 10*b.d), a.d * 1.25 + f.d from Digits a cross join Digits b "
    "cross join Digits c cross join Digits e cross join Digits f where f.d < 4\ngo\n"
    "insert into Loose (Id, Note, Amount) select Id, Note, Amount from Big where Id < 3000\ngo\n"
    "insert into First (Note, Amount) select Note, Amount from Big where Id < 500\ngo\n"
    "insert into Last (Id, Note, Amount) select Id, Note, Amount from Big where Id < 500\ngo\n";

constexpr const char* kMySqlTables =
    "create table First (Id int not null auto_increment primary key, Note varchar(100), Amount "
    "decimal(12,2));\n"
    "create table Big (Id int not null primary key, Note varchar(100), Amount decimal(12,2), key "
    "BigAmount (Amount));\n"
    "create table Loose (Id int, Note varchar(100), Amount decimal(12,2));\n"
    "create table Last (Id int not null primary key, Note varchar(100), Amount decimal(12,2));\n"
    "insert into Big with recursive n(i) as (select 0 union all select i + 1 from n where i < "
    "39999) select i, concat('row \u0142 ', repeat('x', i % 91)), (i % 97) * 1.25 from n;\n"
    "insert into Loose select * from Big where Id < 3000;\n"
    "insert into First (Note, Amount) select Note, Amount from Big where Id < 500;\n"
    "insert into Last select * from Big where Id < 500;\n";

}  // namespace

Stage::Stage() {
  disk_.Use(true);
  my_sql_.emplace(std::vector<std::string>{"--innodb-flush-log-at-trx-commit=2"});
  ms_sql_.emplace(std::vector<std::string>{"source"});
  disk_.Use(false);
  my_sql_proxy_.emplace(my_sql_->Port(), ServerKind::MySql);
  ms_sql_proxy_.emplace(ms_sql_->Port(), ServerKind::MsSql);
  ms_sql_->Script(kMsSqlTables, "source");
  my_sql_->Query("create database source character set utf8mb4");
  my_sql_->Query(kMySqlTables, "source");
}

std::string Stage::NewDatabase(ServerKind server) {
  const std::string name = fmt::format("run{}", ++databases_);
  if (server == ServerKind::MySql) {
    my_sql_->Query("create database " + name + " character set utf8mb4");
  } else {
    ms_sql_->Script("create database " + name + "\ngo\n", "master");
  }
  return name;
}

void Stage::DropDatabase(ServerKind server, const std::string& database) {
  if (server == ServerKind::MySql) {
    my_sql_->Query("drop database " + database);
  } else {
    ms_sql_->Script("drop database " + database + "\ngo\n", "master");
  }
}

ado::ConnectionSettings Stage::Settings(ServerKind server, const std::string& database) const {
  const bool is_my_sql = server == ServerKind::MySql;
  return {.server = "127.0.0.1",
          .port = is_my_sql ? my_sql_->Port() : ms_sql_->Port(),
          .user_id = is_my_sql ? "root" : "sa",
          .password = "secret",
          .database = database};
}

void Stage::Restart(ServerKind server) {
  if (server == ServerKind::MySql) {
    my_sql_->Restart();
  } else {
    ms_sql_->Restart();
  }
}

void Stage::Signal(ServerKind server, int number) const {
  if (server == ServerKind::MySql) {
    my_sql_->Signal(number);
  } else {
    ms_sql_->Signal(number);
  }
}

Content Stage::ContentOf(ServerKind server, const std::string& database,
                         const std::string& table) const {
  ado::Connection connection(ado::InstalledProvider(server));
  connection.Open(Settings(server, database));
  const std::vector<ado::Index> indexes = connection.Indexes(table);
  Content content{.has_primary_key = std::ranges::any_of(indexes, &ado::Index::primary_key),
                  .indexes = indexes.size(),
                  .rows = {}};
  ado::Recordset rows =
      connection.Execute("select Id, Note, Amount from " + table + " order by Id");
  for (; !rows.AtEnd(); rows.MoveNext()) {
    content.rows.push_back(
        fmt::format("{} {} {}", rows.Field(0).Text(), rows.Field(1).Text(), rows.Field(2).Text()));
  }
  return content;
}

}  // namespace dorvane::test
