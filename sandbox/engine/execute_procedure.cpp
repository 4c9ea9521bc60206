#include <algorithm>

#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/engine/statement_runners.h"
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

// The argument that names a parameter, else the one in its place; the last one named wins.
Parameter* FindArgument(std::span<Parameter> arguments, std::size_t place, std::string_view name) {
  Parameter* found = nullptr;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    Parameter& argument = arguments[i];
    if (argument.name.empty() ? i == place : SameName(argument.name, name)) found = &argument;
  }
  return found;
}

}  // namespace

// sp_executesql: the statement, its parameters' declaration, their values.
void ProcedureRunner::ExecuteSql(std::span<Parameter> arguments) {
  if (arguments.empty()) Raise(201, "sp_executesql", "@statement");
  const std::string declared = arguments.size() > 1 ? TextOf(arguments[1]) : "";
  Parser parser(declared);
  std::vector<Parameter> parameters;
  std::vector<Parameter*> given;  // what each parameter gets its value from; null: nothing
  for (const DeclareItem& item : parser.ParseParameterList()) {
    Parameter& parameter = parameters.emplace_back();
    parameter.name = item.name;
    parameter.type = item.type;
    given.push_back(FindArgument(arguments.subspan(std::min<std::size_t>(arguments.size(), 2)),
                                 given.size(), item.name));
    if (!given.back()) continue;
    parameter.value = Convert(given.back()->value, given.back()->type, parameter.type);
    parameter.output = given.back()->output;
  }
  Variables variables = VariablesOf(parameters);
  session_.RunText(TextOf(arguments[0]), std::move(variables), *state_.batch.sink, parameters);
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (!parameters[i].output) continue;
    given[i]->value = parameters[i].value;
    given[i]->type = parameters[i].type;
  }
}

int ProcedureRunner::Call(const ObjectName& name, std::span<Parameter> given) {
  if (SameName(name.name, "sp_executesql")) {
    ExecuteSql(given);
    return 0;
  }
  const Procedure* procedure = FindProcedure(name.name);
  if (!procedure || !session_.Traits().Knows(procedure->name)) Raise(2812, name.Text());
  const std::vector<const char*>& names = procedure->parameters;
  Arguments arguments(names.size());
  for (std::size_t i = 0; i < given.size(); ++i) {
    std::size_t place = i;
    if (!given[i].name.empty()) {
      const auto found = std::ranges::find_if(
          names, [&](const char* each) { return SameName(each, given[i].name); });
      if (found == names.end()) Raise(8145, given[i].name, procedure->name);
      place = static_cast<std::size_t>(found - names.begin());
    }
    if (place >= names.size()) Raise(8144, procedure->name);
    arguments.Set(place, &given[i]);
  }
  session_.CommitImplicit();
  return procedure->run(session_, arguments);
}

Flow ProcedureRunner::Run(const ExecuteStatement& execute) {
  if (execute.text) {
    const Value text = session_.Evaluate(*execute.text, &kLongText);
    if (const auto* batch = std::get_if<std::string>(&text))
      session_.RunText(*batch, {}, *state_.batch.sink, {});
    return Flow::Next;
  }
  std::vector<Parameter> parameters;
  for (const ExecuteArgument& argument : execute.arguments) {
    Parameter& parameter = parameters.emplace_back();
    parameter.name = argument.name;
    parameter.output = !argument.output_variable.empty();
    if (!argument.value) continue;
    Binder binder(session_);
    parameter.type = binder.BindValue(*argument.value, Scope()).type;
    parameter.value = session_.Evaluate(*argument.value);
  }
  const int status = Call(execute.procedure, parameters);
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const std::string& variable = execute.arguments[i].output_variable;
    if (!variable.empty()) session_.Assign(variable, parameters[i].value, parameters[i].type);
  }
  if (!execute.status_variable.empty()) {
    session_.Assign(execute.status_variable, std::int64_t{status}, IntType());
  }
  state_.batch.sink->ReturnStatus(status);
  return Done();
}

}  // namespace sandbox
