// A settings file of a conversion: what is read from one is written so that it is read again.

#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "job/conversion_settings.h"
#include "platform/run_time_error.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/plain_endpoint.h"

namespace {

using namespace dorvane;

ConversionSettings Read(std::string_view bytes) {
  static const int file = memfd_create("settings", MFD_CLOEXEC);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  fuzz::Demand(ftruncate(file, 0) == 0, "the file is emptied");
  fuzz::Demand(pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
               "the file is written");
  files::LineReader reader(path);
  return ReadConversionSettings(
      reader, [](ServerKind kind) { return std::make_unique<test::PlainEndpoint>(kind); });
}

std::string Write(const ConversionSettings& settings) {
  return ConversionSettingsText(*settings.src, *settings.dest, settings.tables, settings.log_path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const std::string written = Write(Read(fuzz::Text(data, size)));
    fuzz::Demand(Write(Read(written)) == written, "what was written is read back");
  } catch (const RunTimeError&) {
    // refused in words
  } catch (const UnexpectedDirection&) {
    // likewise
  }
  return 0;
}
