#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "endpoint/database.h"

namespace dorvane {

/// The ten lines of "config" as UTF-8 text; the passwords stay scrambled in it and are unscrambled
/// with PlainPassword where they are shown.
struct LastSettings {
  enum Element {
    kDirection = 0,  // "mssql" or "mysql": the kind of the last source
    kWinAuth = 1,    // "true" or "false"
    kSrcPort = 2,
    kSrcServer = 3,
    kSrcUser = 4,
    kSrcPassword = 5,
    kDestPort = 6,
    kDestServer = 7,
    kDestUser = 8,
    kDestPassword = 9,
  };
  std::array<std::string, 10> elements;

  const std::string& operator[](Element element) const { return elements[element]; }
  /// kSrcPassword or kDestPassword in plain text.
  std::string PlainPassword(Element element) const;
};

/// Reads "config" in `folder`. A missing file gives the defaults; any other failure is told to
/// `report` ("Unkown error ...", once) and keeps the lines read so far.
LastSettings LoadLastSettings(const std::filesystem::path& folder,
                              const std::function<void(std::string_view message)>& report);

/// Replaces "config" in `folder` as a whole, readable by its owner alone. Throws RunTimeError
/// 76, 70 and 57 when it cannot be written.
void SaveLastSettings(const std::filesystem::path& folder, const IDatabase& src,
                      const IDatabase& dest);

}  // namespace dorvane
