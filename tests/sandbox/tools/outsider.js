// Reads the practice server's wire with a client that shares no code with it: types, errors, prepared
// statements and bulk loads. Ends with status 0 when everything arrived as it should.
//   node outsider.js PORT
"use strict";
const assert = require("node:assert/strict");
const { Connection, Request, TYPES } = require("tedious");

function connect(port) {
  return new Promise((resolve, reject) => {
    const connection = new Connection({
      server: "127.0.0.1",
      authentication: { type: "default", options: { userName: "sa", password: "secret" } },
      options: { port, database: "shop", encrypt: false, rowCollectionOnRequestCompletion: true },
    });
    connection.connect((error) => (error ? reject(error) : resolve(connection)));
  });
}

// The rows of a batch as arrays of values, or its error.
function run(connection, sql, parameters = []) {
  return new Promise((resolve, reject) => {
    const request = new Request(sql, (error, count, rows) =>
      error ? reject(error) : resolve(rows.map((row) => row.map((column) => column.value))));
    for (const [name, type, value] of parameters) request.addParameter(name, type, value);
    parameters.length ? connection.execSql(request) : connection.execSqlBatch(request);
  });
}

const EVERY_TYPE = [
  ["bit", "1", true],
  ["tinyint", "255", 255],
  ["smallint", "-32768", -32768],
  ["int", "2147483647", 2147483647],
  ["bigint", "9223372036854775807", "9223372036854775807"],
  ["decimal(9,3)", "123456.789", 123456.789],
  ["smallmoney", "-1.5", -1.5],
  ["money", "922337203.25", 922337203.25],
  ["real", "1.5", 1.5],
  ["float", "0.1", 0.1],
  ["smalldatetime", "'2026-02-28 12:34'", new Date("2026-02-28T12:34:00Z")],
  ["datetime", "'2026-02-28T12:34:56.997'", new Date("2026-02-28T12:34:56.997Z")],
  ["datetime2(3)", "'0001-01-01 12:34:56.123'", new Date("0001-01-01T12:34:56.123Z")],
  ["datetimeoffset(3)", "'2026-02-28 12:34:56.123 +05:30'", new Date("2026-02-28T07:04:56.123Z")],
  ["date", "'9999-12-31'", new Date("9999-12-31T00:00:00Z")],
  ["time(3)", "'12:34:56.789'", new Date("1970-01-01T12:34:56.789Z")],
  ["char(5)", "'ab'", "ab   "],
  ["varchar(20)", "'caf\u00e9 \u20ac'", "caf\u00e9 \u20ac"],
  ["varchar(max)", "replicate(cast('x' as varchar(max)), 20000)", "x".repeat(20000)],
  ["nchar(3)", "N'\u0436'", "\u0436  "],
  ["nvarchar(20)", "N'\u65e5\u672c \u{1F642}'", "\u65e5\u672c \u{1F642}"],
  ["nvarchar(max)", "N'long'", "long"],
  ["xml", "N'<a/>'", "<a/>"],
  ["binary(4)", "0x0102", Buffer.from([1, 2, 0, 0])],
  ["varbinary(max)", "0xdead", Buffer.from([0xde, 0xad])],
  ["uniqueidentifier", "'6F9619FF-8B86-D011-B42D-00C04FC964FF'",
    "6F9619FF-8B86-D011-B42D-00C04FC964FF"],
  ["sql_variant", "cast(7 as int)", 7],
  ["text", "'old'", "old"],
  ["ntext", "N'old'", "old"],
  ["image", "0xbeef", Buffer.from([0xbe, 0xef])],
];

async function types(connection) {
  const columns = EVERY_TYPE.map(([type], i) => `c${i} ${type} null`).join(", ");
  const literals = EVERY_TYPE.map(([, literal]) => literal).join(", ");
  const nulls = EVERY_TYPE.map(() => "null").join(", ");
  await run(connection, `create table every_type (id int identity primary key, ${columns})`);
  await run(connection, `insert every_type values (${literals}); insert every_type values (${nulls})`);
  const [full, empty] = await run(connection, "select * from every_type order by id");
  EVERY_TYPE.forEach(([type, , expected], i) => {
    assert.deepEqual(full[i + 1], expected, type);
    assert.equal(empty[i + 1], null, type);
  });
}

async function parameters(connection) {
  const rows = await run(connection, "select @n + 1, upper(@s), @d", [
    ["n", TYPES.Int, 41],
    ["s", TYPES.NVarChar, "stra\u00dfe \u0436"],
    ["d", TYPES.DateTime2, new Date("2026-02-28T12:34:56.123Z")],
  ]);
  assert.deepEqual(rows, [[42, "STRA\u00dfE \u0416", new Date("2026-02-28T12:34:56.123Z")]]);
}

async function errors(connection) {
  await run(connection, "create table one (id int constraint pk_one primary key)");
  await run(connection, "insert one values (1)");
  const refusal = { number: 2627, class: 14, state: 1, lineNumber: 2 };
  await assert.rejects(run(connection, "insert one values (2)\ninsert one values (1)"), refusal);
  await assert.rejects(run(connection, "select * from nosuch"), { number: 208, class: 16 });
  assert.deepEqual(await run(connection, "select id from one"), [[1], [2]]);
}

function bulk(connection, table, rows) {
  return new Promise((resolve, reject) => {
    const load = connection.newBulkLoad(table, (error, count) =>
      error ? reject(error) : resolve(count));
    load.addColumn("id", TYPES.Int, { nullable: false });
    load.addColumn("name", TYPES.NVarChar, { length: 50, nullable: true });
    load.addColumn("price", TYPES.Decimal, { precision: 9, scale: 2, nullable: true });
    connection.execBulkLoad(load, rows);
  });
}

async function bulkLoads(connection) {
  await run(connection,
    "create table loaded (id int not null primary key, name nvarchar(50) null, price decimal(9,2) null)");
  const rows = [];
  for (let id = 1; id <= 1000; ++id) rows.push([id, id % 3 ? `\u0436${id}` : null, id / 4]);
  assert.equal(await bulk(connection, "loaded", rows), 1000);
  const counts = await run(connection, "select count(*), count(name), sum(price) from loaded");
  assert.deepEqual(counts, [[1000, 667, 125125]]);
  await assert.rejects(bulk(connection, "loaded", [[1001, "new", 1], [1, "again", 1]]), { number: 2627 });
  assert.deepEqual(await run(connection, "select count(*) from loaded"), [[1000]]);
}

async function main() {
  const connection = await connect(Number(process.argv[2]));
  for (const part of [types, parameters, errors, bulkLoads]) await part(connection);
  connection.close();
}

main().catch((error) => {
  console.error(error);
  process.exit(1);
});
