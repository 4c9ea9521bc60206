#pragma once

#include <memory>
#include <string_view>

#include "platform/ado/provider.h"

namespace dorvane::ado::mysql {

class ClientSession;

/// Runs a statement. Its rows come in binary form as they are read, numbers with all their digits;
/// those of a statement that the server can't prepare are read at once, as texts. Throws
/// ProviderError.
std::unique_ptr<ResultReader> OpenReader(ClientSession& session, std::string_view sql);

}  // namespace dorvane::ado::mysql
