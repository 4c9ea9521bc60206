#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "endpoint/database.h"
#include "platform/files/text_file.h"

namespace dorvane {

/// What the 19 lines of a conversion settings file and the options behind them say.
struct ConversionSettings {
  std::unique_ptr<IDatabase> src;  // carries the four conversion options
  std::unique_ptr<IDatabase> dest;
  NameList tables;
  std::string log_path;
  files::TextForm form = files::TextForm::Ansi;  // of the file, and so of a new log
};

/// Makes an endpoint of a kind.
using EndpointFactory = std::function<std::unique_ptr<IDatabase>(ServerKind kind)>;

/// Line 1 names neither direction.
class UnexpectedDirection : public std::runtime_error {
 public:
  UnexpectedDirection()
      : std::runtime_error("Conversion Failed - unexpected conversion direction value.") {}
};

/// Reads the 19 lines and the options behind them. Throws UnexpectedDirection before any endpoint
/// is made, or RunTimeError, which says line, file and value: a missing line (62), a number,
/// Boolean or option's value that is none (13), a number beyond its range (6), an option that is
/// none (5).
ConversionSettings ReadConversionSettings(files::LineReader& file,
                                          const EndpointFactory& make_endpoint);

/// The log's path of a file whose other lines may be anything; none where the file is no settings
/// file or has no such line.
std::optional<std::string> LogPathIn(const std::filesystem::path& path);

/// The bytes of a file with the 19 lines and the options that differ from their defaults: ANSI
/// text, or UTF-8 where a value needs it. Throws RunTimeError 5 for what the file could not give
/// back: no table at all, a line break, a table name with ":<:".
std::string ConversionSettingsText(const IDatabase& src, const IDatabase& dest,
                                   const NameList& tables, const std::string& log_path);

/// Puts them into a file, which it replaces as a whole, readable by its owner alone. Throws
/// RunTimeError, also 76, 70 and 57 when the file cannot be written.
void SaveConversionSettings(const std::filesystem::path& path, const IDatabase& src,
                            const IDatabase& dest, const NameList& tables,
                            const std::string& log_path);

}  // namespace dorvane
