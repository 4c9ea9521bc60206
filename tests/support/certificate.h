#pragma once

#include <filesystem>
#include <string>

namespace dorvane::test {

/// A self-signed server certificate and its key, PEM files. Who trusts the one trusts the server.
struct Certificate {
  std::filesystem::path certificate;
  std::filesystem::path key;
};

/// Makes one for a host of that name, in an existing folder. Throws std::runtime_error.
Certificate MakeCertificate(const std::filesystem::path& folder, const std::string& host);

}  // namespace dorvane::test
