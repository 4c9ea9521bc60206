#include <fmt/format.h>
#include <malloc.h>
#include <signal.h>

#include <charconv>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/server.h"

namespace {

constexpr int kExitFailure = 1;
// Batches take and give back up to some megabytes each; the memory is kept for the next.
constexpr int kKeptMemory = 64 * 1024 * 1024;
constexpr int kExitUsage = 2;

constexpr char kHelp[] =
    "Usage: dorvane-sandbox --folder DIR --password PW [options]\n"
    "\n"
    "A small practice server that speaks SQL Server's protocol on 127.0.0.1 and keeps its\n"
    "databases in a folder.\n"
    "\n"
    "  --folder DIR      where the databases are kept; made when missing\n"
    "  --password PW     the password that clients must give\n"
    "  --user NAME       the login name (default: sa)\n"
    "  --port N          the port to listen on (default: 1433; 0 takes a free one)\n"
    "  --create DB ...   databases to create unless they exist; \"master\" always does\n"
    "  --without NAME ...\n"
    "                    procedures and catalog views that it shall not know, for tests of\n"
    "                    clients: sp_help, INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS\n"
    "  --lower-case-tables\n"
    "                    sp_tables gives names in lower case; everything else as created\n"
    "  --help            show this text\n"
    "\n"
    "Prints \"listening on 127.0.0.1:PORT\" when it is ready. SIGTERM or SIGINT ends it.\n";

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Options {
  std::filesystem::path folder;
  std::string user = "sa";
  std::optional<std::string> password;
  std::uint16_t port = 1433;
  std::vector<std::string> create;
  sandbox::ServerTraits traits;
  bool help = false;
};

std::uint16_t ParsePort(std::string_view text) {
  std::uint16_t port = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw UsageError(fmt::format("\"{}\" is no port number (0 to 65535)", text));
  }
  return port;
}

bool IsOption(std::string_view argument) {
  return argument.starts_with("--");
}

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  const std::map<std::string, std::function<void(const std::string&)>> with_value = {
      {"--folder", [&](const std::string& value) { options.folder = value; }},
      {"--user", [&](const std::string& value) { options.user = value; }},
      {"--password", [&](const std::string& value) { options.password = value; }},
      {"--port", [&](const std::string& value) { options.port = ParsePort(value); }},
      {"--create", [&](const std::string& value) { options.create.push_back(value); }},
      {"--without", [&](const std::string& value) { options.traits.unknown.push_back(value); }},
  };
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (name == "--help" || name == "-h") {
      options.help = true;
      return options;
    }
    if (name == "--lower-case-tables") {
      options.traits.lower_case_tables = true;
      continue;
    }
    auto option = with_value.find(name);
    if (option == with_value.end()) throw UsageError(fmt::format("unknown argument \"{}\"", name));
    if (i + 1 == arguments.size()) throw UsageError(fmt::format("{} needs a value", name));
    option->second(arguments[++i]);
    const bool takes_several = name == "--create" || name == "--without";
    while (takes_several && i + 1 < arguments.size() && !IsOption(arguments[i + 1])) {
      option->second(arguments[++i]);
    }
  }
  if (options.folder.empty()) throw UsageError("--folder is missing");
  if (!options.password) throw UsageError("--password is missing");
  return options;
}

/// The signals that end the server, blocked in this thread and those it starts.
sigset_t BlockEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

void Run(const Options& options) {
  const sigset_t end_signals = BlockEndSignals();
  std::unique_ptr<sandbox::Engine> engine =
      sandbox::OpenEngine(options.folder, true, options.traits);
  for (const std::string& name : options.create) engine->CreateDatabase(name);
  sandbox::tds::Server server(*engine, {options.user, *options.password}, options.port);
  fmt::print("listening on 127.0.0.1:{}\n", server.Port());
  std::fflush(stdout);
  int received = 0;
  sigwait(&end_signals, &received);
}

}  // namespace

int main(int argc, char** argv) {
  mallopt(M_MMAP_THRESHOLD, kKeptMemory);
  mallopt(M_TRIM_THRESHOLD, kKeptMemory);
  try {
    Options options = ParseOptions({argv + 1, argv + argc});
    if (options.help) {
      fmt::print("{}", kHelp);
    } else {
      Run(options);
    }
    return 0;
  } catch (const UsageError& error) {
    fmt::print(stderr, "dorvane-sandbox: {}\nTry \"dorvane-sandbox --help\".\n", error.what());
    return kExitUsage;
  } catch (const std::exception& error) {
    fmt::print(stderr, "dorvane-sandbox: {}\n", error.what());
    return kExitFailure;
  }
}
