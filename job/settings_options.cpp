#include "job/settings_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "job/run_report.h"
#include "platform/run_time_error.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

using ado::ConnectionSettings;
using ado::Encryption;

// Library calls count these in milliseconds of an int.
constexpr int kLongestLimit = 2'147'483;

[[noreturn]] void Refuse(std::int32_t number, const std::string& why) {
  throw RunTimeError(number, "Dorvane", why);
}

/// A value of an option and what it is called.
template <typename Value>
struct Name {
  Value value;
  std::string_view name;
};
constexpr std::array kEncryptions{Name<Encryption>{Encryption::Offered, "offered"},
                                  Name{Encryption::Required, "required"},
                                  Name{Encryption::Verified, "verified"}};
constexpr std::array kTypes{Name{TypeMapping::Classic, "classic"},
                            Name{TypeMapping::Exact, "exact"}};
constexpr std::array kComputed{Name{ComputedColumns::Values, "values"},
                               Name{ComputedColumns::Generated, "generated"}};
constexpr std::array kSchemas{Name{SchemaPolicy::Prefix, "prefix"},
                              Name{SchemaPolicy::Drop, "drop"},
                              Name{SchemaPolicy::Database, "database"}};
constexpr std::array kVerifications{Name{Verification::None, "none"},
                                    Name{Verification::Counts, "counts"},
                                    Name{Verification::Values, "values"}};

/// The values of one type of option: how they are read from text and written to it.
template <const auto& names>
struct NamedValue {
  using Value = decltype(names.front().value);

  static Value Read(std::string_view text) {
    for (const Name<Value>& each : names) {
      if (text::EqualsIgnoringCase(each.name, text)) return each.value;
    }
    std::string list;
    for (const Name<Value>& each : names) {
      const bool is_last = &each == &names.back();
      list += fmt::format("{}{}", list.empty() ? "" : (is_last ? " or " : ", "), each.name);
    }
    Refuse(run_time::kTypeMismatch, "not " + list);
  }
  static std::string Write(Value value) {
    return std::string(std::ranges::find(names, value, &Name<Value>::value)->name);
  }
};

struct TextValue {
  static std::string Read(std::string_view text) { return std::string(text); }
  static std::string Write(const std::string& value) { return value; }
};

/// The whole number that the text is; none when it is more than `most`.
std::optional<int> ReadNumber(std::string_view text, int most, const char* what) {
  if (text.empty() || !std::ranges::all_of(text, text::IsDigit)) {
    Refuse(run_time::kTypeMismatch, fmt::format("no whole number of {}", what));
  }
  int number = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  if (parsed.ec != std::errc() || number > most) return std::nullopt;
  return number;
}

struct SecondsValue {
  static int Read(std::string_view text) {
    const std::optional<int> seconds = ReadNumber(text, kLongestLimit, "seconds");
    if (!seconds) Refuse(run_time::kOverflow, fmt::format("more than {} seconds", kLongestLimit));
    return *seconds;
  }
  static std::string Write(int value) { return fmt::to_string(value); }
};

struct TablesValue {
  static int Read(std::string_view text) {
    const std::optional<int> tables = ReadNumber(text, kMostTablesAtOnce, "tables");
    if (!tables || *tables < 1) {
      Refuse(run_time::kOverflow, fmt::format("not between 1 and {}", kMostTablesAtOnce));
    }
    return *tables;
  }
  static std::string Write(int value) { return fmt::to_string(value); }
};

enum Sides : unsigned { kSource = 1, kDestination = 2, kBoth = kSource | kDestination };

using Values = std::vector<std::string>;

/// One option. `write` gives the values of its lines: none for the default.
struct Option {
  std::string_view name;
  void (*read)(std::string_view text, IDatabase& src, IDatabase& dest);
  Values (*write)(const IDatabase& src, const IDatabase& dest);
  std::optional<ServerKind> source = std::nullopt;  // that gives the option a meaning; none: both
};

/// An option that is a connection setting of one side, or of both alike.
template <typename Value, auto member, Sides sides>
constexpr Option ConnectionOption(std::string_view name) {
  return {name,
          [](std::string_view text, IDatabase& src, IDatabase& dest) {
            const auto value = Value::Read(text);
            const auto set = [&value](IDatabase& endpoint) {
              ConnectionSettings settings = endpoint.Settings();
              settings.*member = value;
              endpoint.SetSettings(std::move(settings));
            };
            if (sides & kSource) set(src);
            if (sides & kDestination) set(dest);
          },
          [](const IDatabase& src, const IDatabase& dest) {
            const ConnectionSettings& settings = (sides & kSource ? src : dest).Settings();
            const bool is_default = settings.*member == ConnectionSettings().*member;
            return is_default ? Values() : Values{Value::Write(settings.*member)};
          }};
}

/// An option of the conversion, which the source endpoint holds.
template <typename Value, auto member>
constexpr Option ConversionOption(std::string_view name,
                                  std::optional<ServerKind> source = std::nullopt) {
  return {name,
          [](std::string_view text, IDatabase& src, IDatabase& /*dest*/) {
            ConversionOptions options = src.Options();
            options.*member = Value::Read(text);
            src.SetOptions(std::move(options));
          },
          [](const IDatabase& src, const IDatabase& /*dest*/) {
            const ConversionOptions options = src.Options();
            const bool is_default = options.*member == ConversionOptions().*member;
            return is_default ? Values() : Values{Value::Write(options.*member)};
          },
          source};
}

/// Each line adds a file.
constexpr Option kReports{
    kReportOption,
    [](std::string_view text, IDatabase& src, IDatabase& /*dest*/) {
      if (!IsReportName(text)) Refuse(run_time::kTypeMismatch, "no name of a .html or .json file");
      ConversionOptions options = src.Options();
      options.reports.emplace_back(text);
      src.SetOptions(std::move(options));
    },
    [](const IDatabase& src, const IDatabase& /*dest*/) { return src.Options().reports; }};

// In the order in which they are written.
constexpr std::array kOptions{
    ConnectionOption<NamedValue<kEncryptions>, &ConnectionSettings::encryption, kSource>(
        "Encryption source"),
    ConnectionOption<NamedValue<kEncryptions>, &ConnectionSettings::encryption, kDestination>(
        "Encryption destination"),
    ConnectionOption<TextValue, &ConnectionSettings::ca_file, kSource>("CA file source"),
    ConnectionOption<TextValue, &ConnectionSettings::ca_file, kDestination>("CA file destination"),
    ConnectionOption<SecondsValue, &ConnectionSettings::idle_limit, kBoth>("Idle limit"),
    ConversionOption<NamedValue<kTypes>, &ConversionOptions::types>("Types"),
    ConversionOption<NamedValue<kComputed>, &ConversionOptions::computed_columns>(
        "Computed columns"),
    ConversionOption<NamedValue<kSchemas>, &ConversionOptions::schemas>("Schemas",
                                                                        ServerKind::MsSql),
    ConversionOption<TextValue, &ConversionOptions::destination_schema>("Destination schema",
                                                                        ServerKind::MySql),
    ConversionOption<TablesValue, &ConversionOptions::tables_at_once>("Tables at once"),
    ConversionOption<NamedValue<kVerifications>, &ConversionOptions::verification>("Verify"),
    kReports,
};

}  // namespace

void ReadOption(std::string_view line, IDatabase& src, IDatabase& dest) {
  const auto equals = line.find('=');
  if (equals == std::string_view::npos) {
    Refuse(run_time::kInvalidArgument, "A line behind the 19th is an option, name=value");
  }
  const std::string_view name = text::Trim(line.substr(0, equals), text::kWhiteSpace);
  const auto option = std::ranges::find_if(
      kOptions, [name](const Option& each) { return text::EqualsIgnoringCase(each.name, name); });
  if (option == kOptions.end()) Refuse(run_time::kInvalidArgument, "There is no such option");
  if (option->source && *option->source != src.Kind()) {
    Refuse(run_time::kInvalidArgument,
           fmt::format("{}: for conversions {} only", option->name,
                       *option->source == ServerKind::MsSql ? "from SQL Server to MySQL"
                                                            : "from MySQL to SQL Server"));
  }
  try {
    option->read(text::Trim(line.substr(equals + 1), text::kWhiteSpace), src, dest);
  } catch (const RunTimeError& error) {
    Refuse(error.Number(), fmt::format("{}: {}", option->name, error.Description()));
  }
}

std::vector<std::string> OptionLines(const IDatabase& src, const IDatabase& dest) {
  std::vector<std::string> lines;
  for (const Option& option : kOptions) {
    if (option.source && *option.source != src.Kind()) continue;
    for (const std::string& value : option.write(src, dest)) {
      lines.push_back(fmt::format("{}={}", option.name, value));
    }
  }
  return lines;
}

}  // namespace dorvane
