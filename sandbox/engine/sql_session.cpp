#include "sandbox/engine/sql_session.h"

#include "sandbox/catalog/system_views.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"

namespace sandbox {

namespace {

// The batch is over; what there was to say has been said.
struct BatchEnded {};

class EngineImpl final : public Engine {
 public:
  EngineImpl(const std::filesystem::path& folder, bool durable, ServerTraits traits)
      : folder_(folder, durable), traits_(std::move(traits)) {}

  std::unique_ptr<EngineSession> OpenSession(std::string_view login) override {
    return std::make_unique<SqlSession>(folder_, requests_, traits_, std::string(login),
                                        ++last_spid_);
  }
  void CreateDatabase(std::string_view name) override { folder_.Create(name); }
  bool MayLogIn(std::string_view login, std::string_view password) const override {
    return folder_.LoginMatches(login, password);
  }

 private:
  ServerFolder folder_;
  const ServerTraits traits_;
  Requests requests_;
  std::atomic<int> last_spid_{50};
};

template <typename... Kinds>
bool IsOneOf(const Statement& statement) {
  return (std::holds_alternative<Kinds>(statement.what) || ...);
}

bool ChangesRows(const Statement& statement) {
  return IsOneOf<InsertStatement, UpdateStatement, DeleteStatement, CreateIndexStatement>(
      statement);
}

}  // namespace

std::unique_ptr<Engine> OpenEngine(const std::filesystem::path& folder, bool durable,
                                   ServerTraits traits) {
  try {
    return std::make_unique<EngineImpl>(folder, durable, std::move(traits));
  } catch (const SqliteError& error) {
    throw std::runtime_error(error.what());
  }
}

// ---- the session and its databases

SqlSession::SqlSession(ServerFolder& folder, Requests& requests, const ServerTraits& traits,
                       std::string login, int spid)
    : folder_(folder), requests_(requests), traits_(traits), login_(std::move(login)), spid_(spid) {
  UseDatabase("master");
}

SqlSession::~SqlSession() {
  for (auto& [id, link] : state_.links) {
    link->Rollback();
    try {
      link->DropTemporaryTables();
    } catch (const std::exception&) {
      // The server drops what stays when it starts again.
    }
    if (link.get() == state_.link) --link->State().users;
  }
}

DatabaseLink& SqlSession::OpenLink(const std::shared_ptr<DatabaseState>& state) {
  auto& link = state_.links[state->id];
  if (link) return *link;
  link = std::make_unique<DatabaseLink>(folder_, state, login_, spid_, cancel);
  link->session_value = [this](std::string_view name, const std::vector<Value>& args) {
    return SessionValue(name, args).value();
  };
  return *link;
}

bool SqlSession::UseDatabase(std::string_view name) {
  const auto state = folder_.Find(name);
  if (!state) return false;
  DatabaseLink& link = OpenLink(state);
  ++state->users;
  if (state_.link) --state_.link->State().users;
  state_.link = &link;
  return true;
}

DatabaseLink& SqlSession::LinkTo(std::string_view database) {
  if (database.empty() || SameName(database, Database())) return Link();
  const auto state = folder_.Find(database);
  if (!state) Raise(911, database);
  return OpenLink(state);
}

Relation SqlSession::FindRelation(const ObjectName& name) {
  DatabaseLink& link = LinkTo(name.database);
  const auto view = FindSystemView(name);
  if (view && traits_.Knows(name.schema + "." + name.name))
    return FillSystemView(*view, *this, link);
  Relation relation;
  for (const std::string& schema : link.SearchPath(name)) {
    relation.table = link.Definitions().FindTable(schema, name.name);
    relation.view = link.Definitions().FindView(schema, name.name);
    if (relation.table || relation.view) break;
  }
  if (!relation.table && !relation.view) Raise(208, name.Text());
  if (!relation.table) return relation;
  std::string schema = "main";
  if (&link != &Link()) {
    schema = fmt::format("db{}", link.State().id);
    SqliteConnection& own = Link().Connection();
    const bool attached = sqlite3_db_filename(own.get(), schema.c_str()) != nullptr;
    if (!attached) own.Execute("ATTACH '" + link.State().file.string() + "' AS " + schema);
  }
  relation.stored = schema + "." + relation.table->StoredName();
  return relation;
}

// ---- variables and expressions

const Variable* SqlSession::FindVariable(std::string_view name) const {
  const Variables& variables = state_.batch.variables;
  const auto found = variables.find(name);
  return found == variables.end() ? nullptr : &found->second;
}

void SqlSession::Assign(std::string_view name, const Value& value, const TypeInfo& from) {
  Variables& variables = state_.batch.variables;
  const auto found = variables.find(name);
  if (found == variables.end()) Raise(137, name);
  found->second.value = Convert(value, from, found->second.type);
}

Value SqlSession::Evaluate(const Expr& expr, const TypeInfo* type) {
  if (expr.kind == ExprKind::Literal) {
    if (!type || expr.literal.is_null) return expr.literal.value;
    return Convert(expr.literal.value, expr.literal.type, *type);
  }
  Binder binder(*this);
  Scope none;
  Bound bound = binder.BindValue(expr, none);
  if (type) bound = Binder::Coerce(std::move(bound), *type);
  if (bound.constant) return *bound.constant;
  SqliteStatement& statement = Link().Cached("SELECT " + bound.sql);
  ResetGuard guard(statement);
  binder.SetParameters(statement);
  Value value;
  if (Link().Step(statement)) ReadColumn(statement.get(), 0, bound.type, value);
  return value;
}

// ---- answers

void SqlSession::Message(int number, int severity, int state, std::string text) {
  state_.batch.sink->Message({number, state, severity, std::move(text), "", state_.batch.line});
}

void SqlSession::Done(std::optional<std::int64_t> rows) {
  state_.batch.sink->Done(state_.options.no_count ? std::nullopt : rows);
}

void SqlSession::SendRows(const std::vector<ColumnInfo>& columns,
                          const std::vector<std::vector<Value>>& rows) {
  state_.batch.sink->Columns(columns);
  for (const auto& row : rows) state_.batch.sink->Row(row);
  Done(static_cast<std::int64_t>(rows.size()));
}

void SqlSession::Report(const SqlError& error, int line, bool changes_rows) {
  for (ServerMessage message : error.messages) {
    if (message.line == 0) message.line = line;
    state_.batch.sink->Message(message);
  }
  if (error.rolls_back) RollbackAll(true);
  if (changes_rows && !error.ends_batch) {
    Message(3621, 0, 0, "The statement has been terminated.");
  }
  state_.batch.sink->Done(std::nullopt);
}

// ---- transactions

void SqlSession::BeginTransaction() {
  static std::atomic<std::uint64_t> last_id{0};
  CommitImplicit();
  state_.transaction_count = 1;
  state_.transaction_id = ++last_id;
  state_.batch.sink->TransactionChanged(state_.transaction_id, false);
}

void SqlSession::CommitImplicit() {
  if (InTransaction()) return;
  for (auto& [id, link] : state_.links) link->Commit();
}

void SqlSession::EndImplicit() noexcept {
  try {
    CommitImplicit();
  } catch (...) {
    for (auto& [id, link] : state_.links) link->Rollback();
    Message(3314, 21, 3, "What the batch changed could not be kept: the storage refused it.");
  }
}

void SqlSession::RollbackAll(bool tell) {
  if (!InTransaction()) return;
  for (auto& [id, link] : state_.links) link->Rollback();
  state_.transaction_count = 0;
  state_.transaction_id = 0;
  if (tell) state_.batch.sink->TransactionChanged(0, false);
}

void SqlSession::ThrowIfCancelled() const {
  if (cancel) throw Cancelled();
}

void SqlSession::EndCancelled() {
  for (auto& [id, link] : state_.links) {
    link->raised.reset();
    if (!InTransaction()) link->Rollback();
  }
}

// ---- batches

void SqlSession::Execute(std::string_view batch, ResultSink& sink) {
  ExecuteWithParameters(batch, {}, sink);
}

void SqlSession::ExecuteWithParameters(std::string_view batch,
                                       std::span<const Parameter> parameters, ResultSink& sink) {
  const Requests::Guard at_work = AtWork();
  state_.batch = {&sink, {}, 1};
  for (const Parameter& parameter : parameters) {
    state_.batch.variables[LowerText(parameter.name)] = {parameter.type, parameter.value};
  }
  try {
    RunText(batch);
  } catch (const SqlError& error) {
    Report(error, 1, false);
  } catch (const BatchEnded&) {
  } catch (const Cancelled&) {
    EndCancelled();
  } catch (const std::exception& error) {
    Message(15034, 17, 1, error.what());
    RollbackAll(false);
  }
  EndImplicit();
}

void SqlSession::RunText(std::string_view text) {
  Parser parser(text);
  RunBlock(parser.ParseBatch());
}

void SqlSession::Call(std::string_view procedure, std::span<const Parameter> parameters,
                      ResultSink& sink) {
  const Requests::Guard at_work = AtWork();
  state_.batch = {&sink, {}, 1};
  try {
    Parser parser(procedure);
    sink.ReturnStatus(ProcedureRunner(*this).Call(parser.ParseNameText(), parameters));
  } catch (const SqlError& error) {
    Report(error, 1, false);
    sink.ReturnStatus(-6);
  } catch (const Cancelled&) {
    EndCancelled();
  } catch (const std::exception& error) {
    Message(15034, 17, 1, error.what());
  }
  EndImplicit();
}

// ---- statements

void SqlSession::RunBlock(const Block& block) {
  for (const StatementPtr& statement : block) RunStatement(*statement);
}

void SqlSession::RunStatement(const Statement& statement) {
  ThrowIfCancelled();
  state_.batch.line = statement.line;
  try {
    Dispatch(statement);
  } catch (const SqlError& error) {
    Report(error, statement.line, ChangesRows(statement));
    if (error.ends_batch) throw BatchEnded();
  }
}

void SqlSession::Dispatch(const Statement& statement) {
  const SessionOptions& options = state_.options;
  if (options.format_only && ChangesRows(statement)) return Done(std::nullopt);
  const bool opens = ChangesRows(statement) || IsOneOf<SelectStatement>(statement);
  if (options.implicit_transactions && !InTransaction() && opens) BeginTransaction();
  StatementRunners runners(*this);
  std::visit([&](const auto& what) { runners.Run(what); }, statement.what);
}

}  // namespace sandbox
