#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace dorvane {

/// "12,345": a number that is not negative, with its digits in groups.
std::string GroupedDigits(std::int64_t number);

/// "12,345 of 500,000 rows, 46,000 rows/s, 0:10 left": what both the terminal and the window show.
/// `rows` 0 or below `done` leaves the total and the time left out.
std::string ProgressText(std::int64_t done, std::int64_t rows,
                         std::chrono::duration<double> elapsed);

/// "12 tables, 34,567 rows in 0:20, 1,728 rows/s": what a conversion that has ended was.
std::string SummaryText(std::int64_t tables, std::int64_t rows,
                        std::chrono::duration<double> elapsed);

}  // namespace dorvane
