#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/row_copier.h"
#include "endpoint/trial_rows.h"
#include "platform/ado/types.h"

namespace dorvane {

/// How much a column takes.
struct ColumnRoom {
  enum class Unit { Bytes, Characters, Utf16 };
  std::string column;  // as the destination names it
  Unit unit = Unit::Bytes;
  std::optional<std::int64_t> most = {};  // of the unit; none: any number
};

/// The room of a column of this type, in the words of either server: "varchar(30)", "TEXT".
/// `size` is the catalog's where the words lack it; 0 when there is none.
ColumnRoom RoomOf(std::string column, std::string_view type, ServerKind server,
                  std::int64_t size = 0);

/// What rows are held against.
struct RowRehearsal {
  std::vector<ColumnRoom> room;                   // an entry for each column
  std::vector<ado::DataType> types;               // likewise
  ServerKind server;                              // in whose words a row is refused
  std::optional<ado::ProviderError> denial = {};  // why the login may insert none; none: it may
  std::unique_ptr<TrialRows> trial;               // that has the last word; none: the room has it
  bool is_all_tried = false;                      // else those rows only that lack room
};

/// Rows that do not go into their table: they are converted, and refused as the server would refuse
/// them. `rows` is the table that they would go into.
std::unique_ptr<IRowDestination> Rehearsed(std::unique_ptr<IRowDestination> rows,
                                           RowRehearsal rehearsal);

}  // namespace dorvane
