#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/ado/provider.h"

namespace dorvane::ado {

/// Takes a statement that would have been sent.
using StatementSink = std::function<void(std::string_view sql)>;

/// True for a statement that asks and changes nothing.
bool OnlyReads(std::string_view sql);

/// The answer to a statement that was not sent: done, and no rows.
std::unique_ptr<ResultReader> NothingToRead();
/// Takes rows and forgets them.
std::unique_ptr<TableWriter> NothingToWrite();

}  // namespace dorvane::ado
