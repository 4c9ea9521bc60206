#include "ui/wizard/wizard_steps.h"

#include <algorithm>
#include <array>

namespace dorvane {

namespace {

using Path = std::array<std::int16_t, kStepCount>;
constexpr Path kFromMsSql = {page::kDirection, page::kMsSqlSource, page::kMySqlDestination,
                             page::kTables, page::kTransfer};
constexpr Path kFromMySql = {page::kDirection, page::kMySqlSource, page::kMsSqlDestination,
                             page::kTables, page::kTransfer};

constexpr std::array<std::int16_t, page::kCount> kSteps = {0, 1, 2, 1, 2, 3, 4, 4};

constexpr std::array<std::string_view, page::kCount> kPageCaptions = {
    "Select Conversion Direction",
    "Dir 1 - Connect To MS SQL Database ",
    "Dir 1 - Connect To MySQL Database",
    "Dir 2 - Connect To MySQL Database",
    "Dir 2 - Connect To MS SQL Database",
    "Select Tables",
    "Finished !",
    "What a transfer would do; looking changes nothing"};

constexpr std::array<std::string_view, kStepCount> kStepNames = {
    "Select Direction", "Connect to Source", "Connect to Target", "Select Tables", "Done!"};

constexpr std::array<std::string_view, kStepCount> kStepTitles = {
    "Step 1 - Select conversion direction", "Step 2 - Connect to the source database",
    "Step 3 - Connect to the destination database", "Step 4 - Select tables to transfer",
    "Step 5 - Finished!"};

const Path& PathOf(ServerKind source) {
  return source == ServerKind::MsSql ? kFromMsSql : kFromMySql;
}

std::int16_t Neighbour(ServerKind source, std::int16_t current, std::ptrdiff_t distance) {
  const Path& path = PathOf(source);
  const auto place = std::ranges::find(path, current);
  if (place == path.end()) return page::kDirection;
  const std::ptrdiff_t target = place - path.begin() + distance;
  const bool exists = target >= 0 && target < static_cast<std::ptrdiff_t>(path.size());
  return exists ? path[static_cast<std::size_t>(target)] : page::kDirection;
}

}  // namespace

std::int16_t NextPage(ServerKind source, std::int16_t current) {
  return Neighbour(source, current, 1);
}

std::int16_t PreviousPage(ServerKind source, std::int16_t current) {
  if (current == page::kPreview) return page::kTransfer;
  return Neighbour(source, current, -1);
}

std::int16_t SourcePage(ServerKind source) {
  return PathOf(source)[1];
}
std::int16_t DestinationPage(ServerKind source) {
  return PathOf(source)[2];
}

std::optional<std::int16_t> StepOfPage(std::int16_t page) {
  if (page < 0 || page >= page::kCount) return std::nullopt;
  return kSteps[static_cast<std::size_t>(page)];
}

std::string_view PageCaption(std::int16_t page) {
  return kPageCaptions[static_cast<std::size_t>(page)];
}
std::string_view StepName(std::int16_t step) {
  return kStepNames[static_cast<std::size_t>(step)];
}
std::string_view PageTitle(std::int16_t page) {
  if (page == page::kPreview) return "Step 5 - What will happen";
  return kStepTitles[static_cast<std::size_t>(kSteps[static_cast<std::size_t>(page)])];
}

std::optional<std::string_view> WindowCaption(std::int16_t step, ServerKind source) {
  if (step == 0) return "Dorvane";
  if (step > 1) return std::nullopt;
  return source == ServerKind::MsSql ? "Convert from MS SQL to MySQL"
                                     : "Convert from MySQL to MS SQL";
}

std::int32_t HelpContext(std::int16_t step, ServerKind source) {
  return step == 0 || source == ServerKind::MsSql ? step : step + (kStepCount - 1);
}

}  // namespace dorvane
