#include "app/preview.h"

#include <fmt/format.h>

#include <cstdio>

#include "app/standard_error.h"
#include "app/stop_signals.h"
#include "job/conversion_settings.h"
#include "job/preview_script.h"
#include "platform/files/text_file.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

/// Lets the script say what the endpoints tell beside their events.
class ScriptHost : public IRunHost {
 public:
  explicit ScriptHost(PreviewScript& script) : script_(script) {}

  void ConnectionFailed(const ConnectionFailure& failure) override {
    script_.Fail(failure.message, failure.title);
  }
  void ShowMessage(std::string_view message, std::int32_t /*style*/,
                   std::string_view title) override {
    script_.Fail(message, title);
  }
  void Inform(std::string_view message) override { script_.Note(message); }
  void UnclassifiedFailure(std::string_view message, std::int32_t /*style*/,
                           std::string_view title) override {
    script_.Fail(message, title);
  }
  void Yield() override {}
  bool IsStopping() const override { return StopSignals::Received() != 0; }

 private:
  PreviewScript& script_;
};

RunStatus Fail(RunStatus status, std::string_view why) {
  WriteStandardError(fmt::format("Dorvane: {}\n", text::Visible(why)));
  return status;
}

}  // namespace

RunStatus RunPreview(const std::filesystem::path& settings_file,
                     const HostedEndpointFactory& make_endpoint) {
  const StopSignals signals;
  PreviewScript script([](std::string_view lines) { fmt::print("{}\n", lines); });
  ScriptHost host(script);
  ConversionSettings settings;
  try {
    files::LineReader file(settings_file);
    settings =
        ReadConversionSettings(file, [&](ServerKind kind) { return make_endpoint(kind, host); });
  } catch (const std::exception& error) {
    return Fail(RunStatus::SettingsUnusable, error.what());
  }
  try {
    script.Rehearse(*settings.src, *settings.dest, settings.tables);
  } catch (const std::exception& error) {
    return Fail(RunStatus::Failed, error.what());
  }
  if (const int signal = StopSignals::Received()) return StoppedBy(signal);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    return Fail(RunStatus::Failed, "the preview cannot be written");
  }
  const bool is_clean = script.HasEnded() && script.Remarks() == 0;
  return is_clean ? RunStatus::Converted : RunStatus::Failed;
}

}  // namespace dorvane
