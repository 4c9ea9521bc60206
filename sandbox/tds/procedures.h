#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/result_writer.h"
#include "sandbox/tds/rpc_request.h"

namespace sandbox::tds {

/// Runs remote procedure calls: those that execute and prepare statements here, every other one in
/// the engine. Keeps one session's prepared statements.
class Procedures {
 public:
  void Run(EngineSession& session, RpcRequest& request, ResultWriter& results);
  void ForgetAll() { prepared_.clear(); }

 private:
  struct Prepared {
    std::string statement;
    std::vector<std::string> parameter_names;
  };
  struct Call {
    EngineSession& session;
    std::vector<Parameter>& parameters;
    ResultWriter& results;
  };
  using Handler = void (Procedures::*)(Call call);

  void ExecuteSql(Call call);
  void Prepare(Call call);
  void Execute(Call call);
  void PrepareAndExecute(Call call);
  void Unprepare(Call call);

  std::int64_t Keep(Prepared prepared);
  void RunPrepared(Call call, const Prepared& prepared, std::size_t first_value);

  static const std::map<std::string, Handler, std::less<>>& Handlers();

  std::map<std::int64_t, Prepared> prepared_;
  std::int64_t last_handle_ = 0;
};

}  // namespace sandbox::tds
