#include <chrono>
#include <thread>

#include "sandbox/engine/statement_runners.h"
#include "sandbox/functions/functions.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr int kUserError = 50000;

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

bool FlowRunner::Holds(const Expr& condition) {
  Binder binder(session_);
  Scope none;
  const std::string sql = "SELECT " + binder.BindCondition(condition, none);
  SqliteStatement& statement = Link().Cached(sql);
  ResetGuard guard(statement);
  binder.SetParameters(statement);
  return Link().Step(statement) && statement.Integer(0) != 0;
}

void FlowRunner::Run(const DeclareStatement& statement) {
  for (const DeclareItem& item : statement.items) {
    Variable variable{item.type, {}};
    if (item.value) variable.value = session_.Evaluate(*item.value, &variable.type);
    state_.batch.variables[item.name] = std::move(variable);
  }
}

void FlowRunner::Run(const SetVariableStatement& statement) {
  const auto found = state_.batch.variables.find(statement.name);
  if (found == state_.batch.variables.end()) Raise(137, statement.name);
  const TypeInfo type = found->second.type;
  Value value = session_.Evaluate(*statement.value, &type);
  state_.batch.variables[statement.name].value = std::move(value);
}

void FlowRunner::Run(const IfStatement& statement) {
  if (Holds(*statement.condition)) {
    session_.RunStatement(*statement.then);
  } else if (statement.otherwise) {
    session_.RunStatement(*statement.otherwise);
  }
}

void FlowRunner::Run(const BlockStatement& statement) {
  session_.RunBlock(statement.body);
}

ServerMessage FlowRunner::Raised(const RaiseStatement& statement) {
  std::vector<Value> values;
  std::vector<std::string> texts;
  for (const ExprPtr& arg : statement.args) {
    values.push_back(session_.Evaluate(*arg));
    texts.push_back(ValueText(values.back(), VariantBase(values.back())));
  }
  const auto number = [&](std::size_t i, int missing) {
    const auto* held = i < values.size() ? std::get_if<std::int64_t>(&values[i]) : nullptr;
    return held ? static_cast<int>(*held) : missing;
  };
  ServerMessage message;
  message.line = state_.batch.line;
  message.number = number(0, kUserError);
  message.severity = number(1, 16);
  message.state = std::max(1, number(2, 1));
  if (std::holds_alternative<std::string>(values[0])) {
    texts.resize(std::max<std::size_t>(texts.size(), 3));
    message.text = Formatted(texts[0], {texts.begin() + 3, texts.end()});
  } else {
    message.text = "Error " + texts[0];
  }
  return message;
}

void FlowRunner::Run(const RaiseStatement& statement) {
  const ServerMessage message = Raised(statement);
  // It does not end the batch, whatever the options.
  state_.batch.sink->Message(message);
  state_.batch.sink->Done(std::nullopt);
}

void FlowRunner::Run(const WaitStatement& statement) {
  session_.CommitImplicit();
  const TypeInfo type{SqlType::Time, 0, 16, 7};
  const Value delay = session_.Evaluate(*statement.delay, &type);
  const auto* time = std::get_if<DateTimeValue>(&delay);
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::microseconds(time ? time->ticks / 10 : 0);
  while (!session_.cancel && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  session_.ThrowIfCancelled();
  Done();
}

void FlowRunner::Run(const UseStatement& statement) {
  session_.CommitImplicit();
  if (!session_.UseDatabase(statement.name)) Raise(911, statement.name);
  state_.batch.sink->DatabaseChanged(session_.Database());
  session_.Message(5701, 0, 2, "Changed database context to '" + session_.Database() + "'.");
  Done();
}

}  // namespace sandbox
