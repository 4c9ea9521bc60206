#include <algorithm>

#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
int ProcedureRunner::Call(const ObjectName& name, std::span<Parameter> given) {
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
