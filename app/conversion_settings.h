#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <string>

#include "endpoint/database.h"

namespace dorvane {

/// The 19 lines of a conversion settings file, read.
struct ConversionSettings {
  std::unique_ptr<IDatabase> src;
  std::unique_ptr<IDatabase> dest;
  NameList tables;
  std::string log_path;
};

/// Makes an endpoint of a kind.
using EndpointFactory = std::function<std::unique_ptr<IDatabase>(ServerKind kind)>;

/// Reads the 19 lines. Throws RunTimeError: a missing line (62), a number that is none (13) or too
/// large (6); UnexpectedDirection when line 1 is neither "1" nor "2".
ConversionSettings ReadConversionSettings(std::istream& file, const EndpointFactory& make_endpoint);

class UnexpectedDirection : public std::runtime_error {
 public:
  UnexpectedDirection();  // "Conversion Failed - unexpected conversion direction value."
};

/// Writes the 19 lines; the caller closes the stream and looks at its state. Throws RunTimeError
/// when a value cannot stand in the file: it holds a line break, or a table name holds ":<:".
void WriteConversionSettings(std::ostream& file, const IDatabase& src, const IDatabase& dest,
                             const NameList& tables, const std::string& log_path);

}  // namespace dorvane
