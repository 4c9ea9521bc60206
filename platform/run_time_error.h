#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace dorvane {

/// A failure with the number by which callers choose their reaction: an HRESULT (negative) where a
/// database client reports it, a small positive number where the program itself or a file does.
class RunTimeError : public std::runtime_error {
 public:
  RunTimeError(std::int32_t number, std::string source, const std::string& description)
      : std::runtime_error(description), number_(number), source_(std::move(source)) {}

  std::int32_t Number() const { return number_; }
  const std::string& Source() const { return source_; }
  std::string Description() const { return what(); }

 private:
  std::int32_t number_;
  std::string source_;
};

/// The number and description by which a failure is reported.
struct ErrorSummary {
  std::int32_t number = 0;
  std::string description;
};

/// Numbers of the failures that the program itself reports.
namespace run_time {
inline constexpr std::int32_t kInvalidArgument = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kInvalidPropertyAccess = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kFileInputOutput = 57;
inline constexpr std::int32_t kInputPastEnd = 62;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;
}  // namespace run_time

}  // namespace dorvane
