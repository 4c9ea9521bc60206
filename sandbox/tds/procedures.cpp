#include "sandbox/tds/procedures.h"

#include <fmt/format.h>

#include <algorithm>

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

Parameter& At(std::vector<Parameter>& parameters, std::size_t index) {
  if (index >= parameters.size()) {
    Refuse(201, 10,
           fmt::format("Procedure or function expects parameter {}, which was not supplied.",
                       index + 1));
  }
  return parameters[index];
}

const std::string& TextAt(std::vector<Parameter>& parameters, std::size_t index) {
  static const std::string kEmpty;
  const Value& value = At(parameters, index).value;
  if (IsNull(value)) return kEmpty;
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) {
    Refuse(
        214, 2,
        fmt::format("Procedure expects parameter {} of type 'ntext/nchar/nvarchar'.", index + 1));
  }
  return *text;
}

std::int64_t HandleAt(std::vector<Parameter>& parameters, std::size_t index) {
  const auto* handle = std::get_if<std::int64_t>(&At(parameters, index).value);
  if (handle == nullptr) {
    Refuse(214, 3, fmt::format("Procedure expects parameter {} of type 'int'.", index + 1));
  }
  return *handle;
}

[[noreturn]] void NoSuchHandle(std::int64_t handle) {
  Refuse(8179, 2, fmt::format("Could not find prepared statement with handle {}.", handle));
}

std::string Lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

/// Parameters by these names whose values are still to come.
std::vector<Parameter> Placeholders(const std::vector<std::string>& names) {
  constexpr int kLongestShort = 4000;
  std::vector<Parameter> parameters;
  for (const std::string& name : names) {
    parameters.push_back({.name = name, .type = {SqlType::NVarChar, kLongestShort}, .value = {}});
  }
  return parameters;
}

}  // namespace

const std::map<std::string, Procedures::Handler, std::less<>>& Procedures::Handlers() {
  static const std::map<std::string, Handler, std::less<>> kHandlers = {
      {"sp_executesql", &Procedures::ExecuteSql}, {"sp_prepare", &Procedures::Prepare},
      {"sp_execute", &Procedures::Execute},       {"sp_prepexec", &Procedures::PrepareAndExecute},
      {"sp_unprepare", &Procedures::Unprepare},
  };
  return kHandlers;
}

void Procedures::Run(EngineSession& session, RpcRequest& request, ResultWriter& results) {
  try {
    auto handler = Handlers().find(Lower(request.procedure));
    if (handler != Handlers().end()) {
      (this->*handler->second)({session, request.parameters, results});
    } else {
      session.Call(request.procedure, request.parameters, results);
    }
  } catch (const BadCall& bad) {
    results.Message(bad.message);
  }
  results.EndProcedure(request.parameters);
}

// sp_executesql statement, declarations, values...
void Procedures::ExecuteSql(Call call) {
  Prepared once{TextAt(call.parameters, 0), {}};
  if (call.parameters.size() > 1) {
    once.parameter_names = DeclaredParameterNames(TextAt(call.parameters, 1));
  }
  RunPrepared(call, once, 2);
}

// sp_prepare handle output, declarations, statement, options
void Procedures::Prepare(Call call) {
  Prepared prepared{TextAt(call.parameters, 2), DeclaredParameterNames(TextAt(call.parameters, 1))};
  auto columns = call.session.Describe(prepared.statement, Placeholders(prepared.parameter_names));
  if (!columns.empty()) {
    call.results.Columns(columns);
    call.results.Done(std::nullopt);
  }
  At(call.parameters, 0).value = Keep(std::move(prepared));
}

// sp_execute handle, values...
void Procedures::Execute(Call call) {
  std::int64_t handle = HandleAt(call.parameters, 0);
  auto found = prepared_.find(handle);
  if (found == prepared_.end()) NoSuchHandle(handle);
  RunPrepared(call, found->second, 1);
}

// sp_prepexec handle output, declarations, statement, values...
void Procedures::PrepareAndExecute(Call call) {
  Prepared prepared{TextAt(call.parameters, 2), DeclaredParameterNames(TextAt(call.parameters, 1))};
  std::int64_t handle = Keep(std::move(prepared));
  At(call.parameters, 0).value = handle;
  RunPrepared(call, prepared_.at(handle), 3);
}

// sp_unprepare handle
void Procedures::Unprepare(Call call) {
  std::int64_t handle = HandleAt(call.parameters, 0);
  if (prepared_.erase(handle) == 0) NoSuchHandle(handle);
}

std::int64_t Procedures::Keep(Prepared prepared) {
  prepared_[++last_handle_] = std::move(prepared);
  return last_handle_;
}

void Procedures::RunPrepared(Call call, const Prepared& prepared, std::size_t first_value) {
  std::span<Parameter> values =
      std::span(call.parameters).subspan(std::min(first_value, call.parameters.size()));
  const auto& names = prepared.parameter_names;
  for (std::size_t i = 0; i < std::min(values.size(), names.size()); ++i) {
    if (values[i].name.empty()) values[i].name = names[i];
  }
  call.session.ExecuteWithParameters(prepared.statement, values, call.results);
}

}  // namespace sandbox::tds
