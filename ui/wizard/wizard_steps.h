#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "endpoint/database.h"

namespace dorvane {

/// The seven pages, by index, and the one beside the last of them.
namespace page {
inline constexpr std::int16_t kDirection = 0;
inline constexpr std::int16_t kMsSqlSource = 1;
inline constexpr std::int16_t kMySqlDestination = 2;
inline constexpr std::int16_t kMySqlSource = 3;
inline constexpr std::int16_t kMsSqlDestination = 4;
inline constexpr std::int16_t kTables = 5;
inline constexpr std::int16_t kTransfer = 6;
inline constexpr std::int16_t kPreview = 7;
inline constexpr std::int16_t kCount = 8;
}  // namespace page

inline constexpr int kStepCount = 5;

/// The pages of a direction, which is told by the kind of its source. A page outside the direction,
/// or without a neighbour, leads to page 0; from the preview it goes back to the transfer.
std::int16_t NextPage(ServerKind source, std::int16_t current);
std::int16_t PreviousPage(ServerKind source, std::int16_t current);
std::int16_t SourcePage(ServerKind source);
std::int16_t DestinationPage(ServerKind source);

/// The step (0 to 4) that a page belongs to; none for an index that is no page.
std::optional<std::int16_t> StepOfPage(std::int16_t page);

std::string_view PageCaption(std::int16_t page);
/// `step` 0 to 4: the entry of the step list.
std::string_view StepName(std::int16_t step);
/// The title line of a page.
std::string_view PageTitle(std::int16_t page);
/// The window's caption from that step on; none where it stays as it is.
std::optional<std::string_view> WindowCaption(std::int16_t step, ServerKind source);

/// The help topic of a step.
std::int32_t HelpContext(std::int16_t step, ServerKind source);

}  // namespace dorvane
