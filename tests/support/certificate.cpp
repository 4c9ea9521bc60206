#include "tests/support/certificate.h"

#include <stdexcept>

#include "tests/support/process.h"

namespace dorvane::test {

Certificate MakeCertificate(const std::filesystem::path& folder, const std::string& host) {
  const Certificate made{folder / (host + ".pem"), folder / (host + ".key")};
  const Outcome outcome = Run({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days",
                               "2", "-subj", "/CN=" + host, "-addext", "subjectAltName=DNS:" + host,
                               "-keyout", made.key.string(), "-out", made.certificate.string()});
  if (outcome.status != 0) throw std::runtime_error(outcome.output);
  return made;
}

}  // namespace dorvane::test
