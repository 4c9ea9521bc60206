#include "sandbox/engine/sql_session.h"

#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

constexpr int kMaxNesting = 32;

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
  bool HasDatabase(std::string_view name) const override { return folder_.Find(name) != nullptr; }
  bool MayLogIn(std::string_view login, std::string_view password) const override {
    return folder_.LoginMatches(login, password);
  }

 private:
  ServerFolder folder_;
  const ServerTraits traits_;
  Requests requests_;
  std::atomic<int> last_spid_{50};
};

bool ChangesRows(const Statement& statement) {
  return std::holds_alternative<InsertStatement>(statement.what) ||
         std::holds_alternative<UpdateStatement>(statement.what) ||
         std::holds_alternative<DeleteStatement>(statement.what) ||
         std::holds_alternative<CreateIndexStatement>(statement.what);
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

SqlSession::SqlSession(ServerFolder& folder, Requests& requests, const ServerTraits& traits,
                       std::string login, int spid)
    : folder_(folder), requests_(requests), traits_(traits), login_(std::move(login)), spid_(spid) {
  UseDatabase("master");
}

SqlSession::~SqlSession() {
  for (auto& [id, link] : links_) {
    link->Rollback();
    try {
      link->DropTemporaryTables();
    } catch (const std::exception&) {
      // The server drops what stays when it starts again.
    }
    if (link.get() == link_) --link->State().users;
  }
}

DatabaseLink& SqlSession::OpenLink(const std::shared_ptr<DatabaseState>& state) {
  auto& link = links_[state->id];
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
  if (link_) --link_->State().users;
  link_ = &link;
  return true;
}

DatabaseLink& SqlSession::LinkTo(std::string_view database) {
  if (database.empty() || SameName(database, Database())) return *link_;
  const auto state = folder_.Find(database);
  if (!state) Raise(911, database);
  return OpenLink(state);
}

void SqlSession::CommitImplicit() {
  if (transaction_count_ > 0) return;
  for (auto& [id, link] : links_) link->Commit();
}

void SqlSession::EndImplicit() noexcept {
  try {
    CommitImplicit();
  } catch (...) {
    for (auto& [id, link] : links_) link->Rollback();
    Message(3314, 21, 3, "What the batch changed could not be kept: the storage refused it.");
  }
}

void SqlSession::Message(int number, int severity, int state, std::string text) {
  sink_->Message({number, state, severity, std::move(text), "", current_line_});
}

void SqlSession::Done(std::optional<std::int64_t> rows) {
  if (rows) row_count_ = *rows;
  sink_->Done(options_.no_count ? std::nullopt : rows);
}

void SqlSession::SendRows(const std::vector<ColumnInfo>& columns,
                          const std::vector<std::vector<Value>>& rows) {
  sink_->Columns(columns);
  for (const auto& row : rows) sink_->Row(row);
  Done(static_cast<std::int64_t>(rows.size()));
}

void SqlSession::Execute(std::string_view batch, ResultSink& sink) {
  const Requests::Guard at_work = AtWork();
  RunText(batch, {}, sink, {});
}

void SqlSession::ExecuteWithParameters(std::string_view batch, std::span<Parameter> parameters,
                                       ResultSink& sink) {
  Variables variables;
  for (const Parameter& parameter : parameters) {
    variables[LowerText(parameter.name)] = {parameter.type, parameter.value};
  }
  const Requests::Guard at_work = AtWork();
  RunText(batch, std::move(variables), sink, parameters);
}

void SqlSession::RunText(std::string_view batch, Variables variables, ResultSink& sink,
                         std::span<Parameter> outputs) {
  ResultSink* outer_sink = std::exchange(sink_, &sink);
  std::swap(variables_, variables);
  const bool outermost = nesting_++ == 0;
  const int outer_line = std::exchange(current_line_, 1);
  bool ended = false;
  try {
    if (nesting_ > kMaxNesting) Raise(191);
    Parser parser(batch);
    const Block block = parser.ParseBatch();
    RunBlock(block);
  } catch (const SqlError& error) {
    if (!outermost && try_depth_ > 0) {
      --nesting_;
      std::swap(variables_, variables);
      sink_ = outer_sink;
      throw;
    }
    Report(error, 1, false);
  } catch (const BatchEnded&) {
    ended = true;
  } catch (const Cancelled&) {
    for (auto& [id, link] : links_) link->raised.reset();
    ended = true;
    if (transaction_count_ == 0) {
      for (auto& [id, link] : links_) link->Rollback();
    }
  } catch (const std::exception& error) {
    Message(15034, 17, 1, error.what());
    RollbackAll(false);
  }
  if (outermost) EndImplicit();
  for (Parameter& parameter : outputs) {
    if (parameter.output) parameter.value = variables_[LowerText(parameter.name)].value;
  }
  --nesting_;
  current_line_ = outer_line;
  std::swap(variables_, variables);
  sink_ = outer_sink;
  if (ended && !outermost) throw BatchEnded();
}

Flow SqlSession::RunBlock(const Block& block) {
  for (const StatementPtr& statement : block) {
    const Flow flow = RunStatement(*statement);
    if (flow != Flow::Next) return flow;
  }
  return Flow::Next;
}

Flow SqlSession::RunStatement(const Statement& statement) {
  if (cancel) throw Cancelled();
  current_line_ = statement.line;
  if (try_depth_ > 0) return Dispatch(statement);
  try {
    return Dispatch(statement);
  } catch (const SqlError& error) {
    const bool ends = error.ends_batch || options_.xact_abort;
    Report(error, statement.line, ChangesRows(statement));
    if (ends) throw BatchEnded();
    return Flow::Next;
  }
}

Flow SqlSession::Dispatch(const Statement& statement) {
  const bool only_shown =
      options_.no_execute && !std::holds_alternative<SetOptionStatement>(statement.what);
  if (only_shown || (options_.format_only && ChangesRows(statement))) {
    Done(std::nullopt);
    return Flow::Next;
  }
  const bool opens =
      ChangesRows(statement) || std::holds_alternative<SelectStatement>(statement.what);
  if (options_.implicit_transactions && transaction_count_ == 0 && opens) BeginTransaction();
  const Flow flow = std::visit([this](const auto& what) { return Run(what); }, statement.what);
  const bool keeps_error = std::holds_alternative<IfStatement>(statement.what) ||
                           std::holds_alternative<RaiseStatement>(statement.what) ||
                           std::holds_alternative<BlockStatement>(statement.what);
  if (!keeps_error) last_error_ = 0;
  return flow;
}

void SqlSession::Report(SqlError error, int line, bool changes_rows) {
  for (ServerMessage& message : error.messages) {
    if (message.line == 0) message.line = line;
    sink_->Message(message);
    if (message.severity > 10) last_error_ = message.number;
  }
  if (error.rolls_back || options_.xact_abort) RollbackAll(true);
  if (changes_rows && !error.ends_batch) {
    Message(3621, 0, 0, "The statement has been terminated.");
  }
  row_count_ = 0;
  sink_->Done(std::nullopt);
}

void SqlSession::RollbackAll(bool tell) {
  if (transaction_count_ == 0) return;
  for (auto& [id, link] : links_) link->Rollback();
  transaction_count_ = 0;
  transaction_id_ = 0;
  if (tell) sink_->TransactionChanged(0, false);
}

std::vector<ColumnInfo> SqlSession::Describe(std::string_view batch,
                                             std::span<const Parameter> parameters) {
  Variables variables;
  for (const Parameter& parameter : parameters) {
    variables[LowerText(parameter.name)] = {parameter.type, parameter.value};
  }
  std::swap(variables_, variables);
  std::vector<ColumnInfo> columns;
  try {
    Parser parser(batch);
    for (const StatementPtr& statement : parser.ParseBatch()) {
      const auto* select = std::get_if<SelectStatement>(&statement->what);
      if (!select || !select->query->selects.front().into.name.empty()) continue;
      Binder binder(*this);
      columns = binder.BindQuery(*select->query).columns;
      break;
    }
  } catch (const SqlError&) {
    columns.clear();  // running it will say what is wrong
  } catch (const std::exception&) {
    columns.clear();
  }
  variables_ = std::move(variables);
  return columns;
}

}  // namespace sandbox
