#pragma once

#include "sandbox/engine/engine.h"
#include "sandbox/tds/result_writer.h"
#include "sandbox/tds/rpc_request.h"

namespace sandbox::tds {

/// Runs a remote procedure call: a batch with parameters (sp_executesql) or a procedure of the
/// engine's.
void RunProcedure(EngineSession& session, RpcRequest& request, ResultWriter& results);

}  // namespace sandbox::tds
