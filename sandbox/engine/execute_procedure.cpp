#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

const TypeInfo kLongText{SqlType::NVarChar, -1, 0, 0};

std::string TextOf(const Parameter& parameter) {
  const Value text = Convert(parameter.value, parameter.type, kLongText);
  const auto* held = std::get_if<std::string>(&text);
  return held ? *held : "";
}

}  // namespace

// arguments: the statement, its parameters' declaration, their values
void SqlSession::ExecuteSql(std::span<Parameter> arguments) {
  if (arguments.empty()) Raise(201, "sp_executesql", "@statement");
  Variables variables;
  std::vector<DeclareItem> items;
  const std::string declared = arguments.size() > 1 ? TextOf(arguments[1]) : "";
  Parser parser(declared);
  items = parser.ParseParameterList();
  std::vector<Parameter> parameters;
  for (std::size_t i = 0; i < items.size(); ++i) {
    Parameter& parameter = parameters.emplace_back();
    parameter.name = items[i].name;
    parameter.type = items[i].type;
    Parameter* given = nullptr;
    for (std::size_t a = 2; a < arguments.size(); ++a) {
      const bool named = !arguments[a].name.empty();
      if (named ? SameName(arguments[a].name, items[i].name) : a - 2 == i) given = &arguments[a];
    }
    if (!given) continue;
    parameter.value = Convert(given->value, given->type, parameter.type);
    parameter.output = given->output;
  }
  ExecuteWithParameters(TextOf(arguments[0]), parameters, *sink_);
  for (const Parameter& parameter : parameters) {
    for (std::size_t a = 2; a < arguments.size(); ++a) {
      const bool same = arguments[a].name.empty()
                            ? a - 2 == static_cast<std::size_t>(&parameter - parameters.data())
                            : SameName(arguments[a].name, parameter.name);
      if (!same || !arguments[a].output) continue;
      arguments[a].value = parameter.value;
      arguments[a].type = parameter.type;
    }
  }
}

int SqlSession::CallProcedure(const ObjectName& name, std::span<Parameter> given) {
  if (SameName(name.name, "sp_executesql")) {
    ExecuteSql(given);
    return 0;
  }
  const Procedure* procedure = FindProcedure(name.name);
  if (!procedure || !traits_.Knows(procedure->name)) Raise(2812, name.Text());
  Arguments arguments(procedure->parameters.size());
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (given[i].name.empty()) {
      if (i >= procedure->parameters.size()) Raise(8144, procedure->name);
      arguments.Set(i, &given[i]);
      continue;
    }
    bool found = false;
    for (std::size_t p = 0; p < procedure->parameters.size(); ++p) {
      if (!SameName(procedure->parameters[p], given[i].name)) continue;
      arguments.Set(p, &given[i]);
      found = true;
    }
    if (!found) Raise(8145, given[i].name, procedure->name);
  }
  CommitImplicit();
  return procedure->run(*this, arguments);
}

Flow SqlSession::Run(const ExecuteStatement& execute) {
  if (execute.text) {
    const Value text = Evaluate(*execute.text, &kLongText);
    if (const auto* batch = std::get_if<std::string>(&text)) RunText(*batch, {}, *sink_, {});
    return Flow::Next;
  }
  std::vector<Parameter> parameters;
  for (const ExecuteArgument& argument : execute.arguments) {
    Parameter& parameter = parameters.emplace_back();
    parameter.name = argument.name;
    parameter.output = !argument.output_variable.empty();
    if (!argument.value) continue;
    Binder binder(*this);
    parameter.type = binder.BindValue(*argument.value, Scope()).type;
    parameter.value = Evaluate(*argument.value);
  }
  const int status = CallProcedure(execute.procedure, parameters);
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const std::string& variable = execute.arguments[i].output_variable;
    if (!variable.empty()) Assign(variable, parameters[i].value, parameters[i].type);
  }
  if (!execute.status_variable.empty()) {
    Assign(execute.status_variable, std::int64_t{status}, IntType());
  }
  sink_->ReturnStatus(status);
  Done(std::nullopt);
  return Flow::Next;
}

void SqlSession::Call(std::string_view procedure, std::span<Parameter> parameters,
                      ResultSink& sink) {
  const Requests::Guard at_work = AtWork();
  sink_ = &sink;
  current_line_ = 1;
  ++nesting_;
  try {
    Parser parser(procedure);
    const int status = CallProcedure(parser.ParseNameText(), parameters);
    sink.ReturnStatus(status);
  } catch (const SqlError& error) {
    Report(error, 1, false);
    sink.ReturnStatus(-6);
  } catch (const Cancelled&) {
    for (auto& [id, link] : links_) link->raised.reset();
  } catch (const std::exception& error) {
    Message(15034, 17, 1, error.what());
  }
  --nesting_;
  if (nesting_ == 0) EndImplicit();
  sink_ = nullptr;
}

}  // namespace sandbox
