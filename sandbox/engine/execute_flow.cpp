#include <chrono>
#include <thread>

#include "sandbox/engine/sql_session.h"
#include "sandbox/functions/functions.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

constexpr int kUserError = 50000;
constexpr int kLowestError = 11;

// Puts arguments into the places of a message: %d, %s, %%.
std::string Formatted(const std::string& text, const std::vector<std::string>& args) {
  std::string result;
  std::size_t next = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%' || i + 1 == text.size()) {
      result += text[i];
      continue;
    }
    ++i;
    if (text[i] == '%') {
      result += '%';
      continue;
    }
    while (i + 1 < text.size() &&
           std::string_view("+-0# .*123456789lI").find(text[i]) != std::string_view::npos)
      ++i;
    result += next < args.size() ? args[next] : "(null)";
    ++next;
  }
  return result;
}

}  // namespace

bool SqlSession::Holds(const Expr& condition) {
  Binder binder(*this);
  Scope none;
  const std::string sql = "SELECT " + binder.BindCondition(condition, none);
  SqliteStatement& statement = link_->Cached(sql);
  ResetGuard guard(statement);
  int index = 0;
  for (const auto& [value, type] : binder.Parameters())
    BindValue(statement.get(), ++index, value, type);
  return link_->Step(statement) && statement.Integer(0) != 0;
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
  SqliteStatement& statement = link_->Cached("SELECT " + bound.sql);
  ResetGuard guard(statement);
  int index = 0;
  for (const auto& [value, parameter_type] : binder.Parameters()) {
    BindValue(statement.get(), ++index, value, parameter_type);
  }
  Value value;
  if (link_->Step(statement)) ReadColumn(statement.get(), 0, bound.type, value);
  return value;
}

void SqlSession::Assign(std::string_view name, Value value, const TypeInfo& from) {
  const auto found = variables_.find(name);
  if (found == variables_.end()) Raise(137, name);
  found->second.value = Convert(value, from, found->second.type);
}

Flow SqlSession::Run(const DeclareStatement& statement) {
  for (const DeclareItem& item : statement.items) {
    Variable variable{item.type, {}};
    if (!item.alias_type.name.empty()) {
      const AliasTypeDef* alias = link_->FindType(item.alias_type);
      if (!alias) Raise(2715, 1, item.alias_type.Text());
      variable.type = alias->type;
    }
    if (item.value) variable.value = Evaluate(*item.value, &variable.type);
    // A DECLARE inside a loop is met again; it keeps the variable, as the server does.
    if (item.value || !variables_.count(item.name)) variables_[item.name] = std::move(variable);
  }
  return Flow::Next;
}

Flow SqlSession::Run(const SetVariableStatement& statement) {
  const auto found = variables_.find(statement.name);
  if (found == variables_.end()) Raise(137, statement.name);
  const TypeInfo type = found->second.type;
  Value value = Evaluate(*statement.value, &type);
  variables_[statement.name].value = std::move(value);
  return Flow::Next;
}

Flow SqlSession::Run(const IfStatement& statement) {
  if (Holds(*statement.condition)) return RunStatement(*statement.then);
  return statement.otherwise ? RunStatement(*statement.otherwise) : Flow::Next;
}

Flow SqlSession::Run(const WhileStatement& statement) {
  while (Holds(*statement.condition)) {
    if (cancel) throw Cancelled();
    const Flow flow = RunStatement(*statement.body);
    if (flow == Flow::Break) break;
    if (flow == Flow::Return) return flow;
  }
  return Flow::Next;
}

Flow SqlSession::Run(const BlockStatement& statement) {
  return RunBlock(statement.body);
}

Flow SqlSession::Run(const TryStatement& statement) {
  ++try_depth_;
  std::optional<ServerMessage> failure;
  try {
    const Flow flow = RunBlock(statement.body);
    --try_depth_;
    return flow;
  } catch (const SqlError& error) {
    --try_depth_;
    failure = error.messages.front();
    if (failure->line == 0) failure->line = current_line_;
    if (failure->severity < kLowestError || failure->severity > 19) throw;
    if (error.rolls_back && options_.xact_abort) RollbackAll(true);
  } catch (...) {
    --try_depth_;
    throw;
  }
  const auto outer = std::exchange(caught_, failure);
  last_error_ = failure->number;
  try {
    const Flow flow = RunBlock(statement.handler);
    caught_ = outer;
    return flow;
  } catch (...) {
    caught_ = outer;
    throw;
  }
}

Flow SqlSession::Run(const JumpStatement& statement) {
  switch (statement.kind) {
    case JumpStatement::Kind::Break:
      return Flow::Break;
    case JumpStatement::Kind::Continue:
      return Flow::Continue;
    case JumpStatement::Kind::Return:
      break;
  }
  return Flow::Return;
}

Flow SqlSession::Run(const PrintStatement& statement) {
  const TypeInfo type = NVarChar(4000);
  const Value value = Evaluate(*statement.value, &type);
  const auto* text = std::get_if<std::string>(&value);
  Message(0, 0, 1, text ? *text : " ");
  Done(std::nullopt);
  return Flow::Next;
}

Flow SqlSession::Run(const RaiseStatement& statement) {
  if (statement.is_throw && statement.args.empty()) {
    if (!caught_)
      Raise(15034, "To rethrow an error, a THROW statement must be used inside a CATCH block.");
    SqlError again;
    again.messages.push_back(*caught_);
    again.ends_batch = true;
    throw again;
  }
  std::vector<Value> values;
  std::vector<std::string> texts;
  for (const ExprPtr& arg : statement.args) {
    values.push_back(Evaluate(*arg));
    const TypeInfo type = VariantBase(values.back());
    texts.push_back(ValueText(values.back(), type));
  }
  const auto number = [&](std::size_t i, std::int64_t missing) {
    const auto* held = i < values.size() ? std::get_if<std::int64_t>(&values[i]) : nullptr;
    return held ? static_cast<int>(*held) : static_cast<int>(missing);
  };
  SqlError error;
  ServerMessage message;
  message.line = current_line_;
  if (statement.is_throw) {
    message.number = number(0, kUserError);
    message.severity = 16;
    message.text = texts.size() > 1 ? texts[1] : "";
    message.state = number(2, 1);
    error.ends_batch = true;
  } else {
    const bool text = std::holds_alternative<std::string>(values[0]);
    message.number = text ? kUserError : number(0, kUserError);
    message.severity = number(1, 16);
    message.state = std::max(1, number(2, 1));
    const std::vector<std::string> rest(
        texts.begin() + std::min<std::ptrdiff_t>(3, std::ssize(texts)), texts.end());
    message.text = text ? Formatted(texts[0], rest) : "Error " + texts[0];
  }
  if (message.severity < kLowestError) {
    sink_->Message(message);
    Done(std::nullopt);
    return Flow::Next;
  }
  error.messages.push_back(std::move(message));
  if (try_depth_ > 0 || statement.is_throw) throw error;
  sink_->Message(error.messages.front());  // RAISERROR does not end the batch, whatever the options
  last_error_ = error.messages.front().number;
  sink_->Done(std::nullopt);
  return Flow::Next;
}

Flow SqlSession::Run(const WaitStatement& statement) {
  CommitImplicit();
  const TypeInfo type{SqlType::Time, 0, 16, 7};
  const Value delay = Evaluate(*statement.delay, &type);
  const auto* time = std::get_if<DateTimeValue>(&delay);
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::microseconds(time ? time->ticks / 10 : 0);
  while (!cancel && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  if (cancel) throw Cancelled();
  Done(std::nullopt);
  return Flow::Next;
}

Flow SqlSession::Run(const UseStatement& statement) {
  CommitImplicit();
  if (!UseDatabase(statement.name)) Raise(911, statement.name);
  sink_->DatabaseChanged(Database());
  Message(5701, 0, 2, "Changed database context to '" + Database() + "'.");
  Done(std::nullopt);
  return Flow::Next;
}

void SqlSession::BeginTransaction() {
  static std::atomic<std::uint64_t> last_id{0};
  CommitImplicit();
  transaction_count_ = 1;
  transaction_id_ = ++last_id;
  sink_->TransactionChanged(transaction_id_, false);
}

Flow SqlSession::Run(const TransactionStatement& statement) {
  using Kind = TransactionStatement::Kind;
  switch (statement.kind) {
    case Kind::Begin:
      if (transaction_count_ == 0) {
        BeginTransaction();
      } else {
        ++transaction_count_;
      }
      break;
    case Kind::Commit:
      if (transaction_count_ == 0) Raise(3902);
      if (--transaction_count_ == 0) {
        CommitImplicit();
        transaction_id_ = 0;
        sink_->TransactionChanged(0, true);
      }
      break;
    case Kind::Rollback: {
      if (transaction_count_ == 0) Raise(3903);
      const std::string name = "save_" + LowerText(statement.name);
      if (!statement.name.empty() && link_->Writing()) {
        try {
          link_->RollbackTo(name);
          break;
        } catch (const SqliteError&) {
          // no savepoint of that name: the transaction's own, then
        }
      }
      RollbackAll(true);
      break;
    }
    case Kind::Save:
      if (transaction_count_ == 0) Raise(15034, "SAVE TRANSACTION needs an open transaction.");
      link_->BeginWrite();
      link_->Savepoint("save_" + LowerText(statement.name));
      break;
  }
  Done(std::nullopt);
  return Flow::Next;
}

}  // namespace sandbox
