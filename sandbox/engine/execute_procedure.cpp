#include <algorithm>

#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
int ProcedureRunner::Call(const ObjectName& name, std::span<const Parameter> given) {
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

void ProcedureRunner::Run(const ExecuteStatement& execute) {
  std::vector<Parameter> parameters;
  for (const ExecuteArgument& argument : execute.arguments) {
    Parameter& parameter = parameters.emplace_back();
    parameter.name = argument.name;
    if (!argument.value) continue;
    Binder binder(session_);
    parameter.type = binder.BindValue(*argument.value, Scope()).type;
    parameter.value = session_.Evaluate(*argument.value);
  }
  state_.batch.sink->ReturnStatus(Call(execute.procedure, parameters));
  Done();
}

}  // namespace sandbox
