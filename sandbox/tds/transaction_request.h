#pragma once

#include <string>

#include "sandbox/tds/byte_reader.h"

namespace sandbox::tds {

/// A transaction manager request as the batch that does the same; the reader stands behind the
/// request's headers. Throws ProtocolError for requests of distributed transactions.
std::string TransactionBatch(ByteReader& reader);

}  // namespace sandbox::tds
