#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/files/text_file.h"

namespace dorvane {

/// Reversible scrambling that keeps a password from being read at a glance; no protection beyond.
/// Works on bytes of the ANSI code page; both directions keep the length.
class Encryptor {
 public:
  std::string Encrypt(std::string_view plain) const;
  std::string Decrypt(std::string_view scrambled) const;
};

/// A password, in UTF-8, as a line of a file of that form; none of one that the line would not give
/// back. ANSI text does not keep letters outside the code page and some of those that scrambled
/// ones become.
std::optional<std::string> ScrambledPassword(const std::string& password, files::TextForm form);

/// The password of such a line, in UTF-8.
std::string PlainPassword(std::string_view line, files::TextForm form);

}  // namespace dorvane
