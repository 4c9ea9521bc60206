#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dorvane {

/// Reversible scrambling that keeps a password from being read at a glance; no protection beyond.
/// Works on bytes of the ANSI code page; both directions keep the length.
class Encryptor {
 public:
  std::string Encrypt(std::string_view plain) const;
  std::string Decrypt(std::string_view scrambled) const;
};

/// The scrambled bytes of a password in UTF-8; none of one that they would not give back: with
/// letters outside the code page, or with some of those that scrambled ones become.
std::optional<std::string> ScrambledPassword(const std::string& password);

}  // namespace dorvane
