#pragma once

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

}  // namespace dorvane
