#include "sandbox/tds/procedures.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <span>

namespace sandbox::tds {

namespace {

/// A call that lacks what its procedure needs; the client gets the message.
struct BadCall {
  ServerMessage message;
};

[[noreturn]] void Refuse(int number, int state, std::string text) {
  throw BadCall{
      {.number = number, .state = state, .severity = 16, .text = std::move(text), .procedure = {}}};
}

const std::string& TextAt(std::span<const Parameter> parameters, std::size_t index) {
  if (index >= parameters.size()) {
    Refuse(201, 10,
           fmt::format("Procedure or function expects parameter {}, which was not supplied.",
                       index + 1));
  }
  const auto* text = std::get_if<std::string>(&parameters[index].value);
  if (text == nullptr) {
    Refuse(
        214, 2,
        fmt::format("Procedure expects parameter {} of type 'ntext/nchar/nvarchar'.", index + 1));
  }
  return *text;
}

// sp_executesql statement, declarations, values...
void ExecuteSql(EngineSession& session, std::span<Parameter> parameters, ResultWriter& results) {
  constexpr std::size_t kFirstValue = 2;
  const std::string& statement = TextAt(parameters, 0);
  std::vector<std::string> names;
  if (parameters.size() > 1) names = DeclaredParameterNames(TextAt(parameters, 1));
  std::span<Parameter> values = parameters.subspan(std::min(kFirstValue, parameters.size()));
  for (std::size_t i = 0; i < std::min(values.size(), names.size()); ++i) {
    if (values[i].name.empty()) values[i].name = names[i];
  }
  session.ExecuteWithParameters(statement, values, results);
}

}  // namespace

void RunProcedure(EngineSession& session, RpcRequest& request, ResultWriter& results) {
  try {
    if (strcasecmp(request.procedure.c_str(), "sp_executesql") == 0) {
      ExecuteSql(session, request.parameters, results);
    } else {
      session.Call(request.procedure, request.parameters, results);
    }
  } catch (const BadCall& bad) {
    results.Message(bad.message);
  }
  results.EndProcedure();
}

}  // namespace sandbox::tds
