#pragma once

#include <string_view>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/byte_reader.h"
#include "sandbox/tds/result_writer.h"

namespace sandbox::tds {

/// Whether a batch announces a bulk load.
bool IsInsertBulk(std::string_view batch);

/// Hands the rows of a bulk load to `target` as they arrive. The first refused row ends the load;
/// what follows it is read and dropped. Throws ProtocolError.
void LoadRows(ByteReader& reader, BulkTarget& target, ResultWriter& results);

}  // namespace sandbox::tds
