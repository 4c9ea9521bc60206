#include "platform/ado/odbc/connection_string.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <string_view>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/freetds_configuration.h"
#include "platform/ado/types.h"
#include "platform/text/number_text.h"

namespace dorvane::ado::odbc {

namespace {

using text::Trim;

/// The part behind the separator, which is cut off `text` together with it.
std::string_view CutAt(std::string_view& text, char separator) {
  const std::size_t position = text.find(separator);
  if (position == std::string_view::npos) return {};
  const std::string_view rest = Trim(text.substr(position + 1));
  text = Trim(text.substr(0, position));
  return rest;
}

/// Microsoft's drivers read a value in braces with every "}" in it doubled.
std::string MicrosoftValue(std::string_view value) {
  std::string text = "{";
  for (const char c : value) {
    text += c;
    if (c == '}') text += c;
  }
  return text + "}";
}

/// FreeTDS reads a plain value up to ";" and one in braces up to "};", whatever else it holds.
std::string FreeTdsValue(std::string_view value) {
  const bool is_plain = !value.starts_with('{') && value.find(';') == std::string_view::npos;
  if (is_plain) return std::string(value);
  if (value.find("};") != std::string_view::npos) {
    throw LibraryError(hresult::kFail,
                       "The FreeTDS driver takes no login, password or database name that holds "
                       "\"};\". Use another one, or Microsoft's driver.");
  }
  return fmt::format("{{{}}}", value);
}

/// Whose certificate is good enough. The drivers know the system's authorities only.
std::string MicrosoftTrust(const ConnectionSettings& settings, const std::string& host) {
  if (settings.encryption != Encryption::Verified) return "TrustServerCertificate=yes;";
  if (!settings.ca_file.empty()) {
    throw LibraryError(hresult::kFail,
                       "Microsoft's driver takes no CA file. Add its authorities to the system's "
                       "and leave the field empty.");
  }
  return fmt::format("TrustServerCertificate=no;HostNameInCertificate={};", MicrosoftValue(host));
}

std::string MicrosoftString(const Driver& driver, const ConnectionSettings& settings) {
  const ServerAddress address = ParseServer(settings.server, settings.port);
  std::string server = "tcp:" + address.host;
  if (address.port != 0) {
    server += fmt::format(",{}", address.port);
  } else if (!address.instance.empty()) {
    server += "\\" + address.instance;
  }
  std::string text = fmt::format("DRIVER={};Server={};Encrypt=yes;", MicrosoftValue(driver.name),
                                 MicrosoftValue(server));
  text += MicrosoftTrust(settings, address.host);
  text += "Language=us_english;APP=Dorvane;";
  if (settings.integrated_security) {
    text += "Trusted_Connection=yes;";
  } else {
    text += fmt::format("UID={};PWD={};", MicrosoftValue(settings.user_id),
                        MicrosoftValue(settings.password));
  }
  if (!settings.database.empty()) {
    text += fmt::format("Database={};", MicrosoftValue(settings.database));
  }
  return text;
}

std::string FreeTdsServer(const ConnectionSettings& settings) {
  if (settings.encryption == Encryption::Verified) {
    return fmt::format("Servername={}", kConfiguredServer);
  }
  const ServerAddress address = ParseServer(settings.server, settings.port);
  const std::string text = "Server=" + FreeTdsValue(address.host);
  if (address.port == 0 && !address.instance.empty()) return text + "\\" + address.instance;
  return text + fmt::format(";Port={}", address.port != 0 ? address.port : kUsualPort);
}

std::string FreeTdsString(const Driver& driver, const ConnectionSettings& settings) {
  std::string text = fmt::format("DRIVER={{{}}};{}", driver.name, FreeTdsServer(settings));
  // Packets as large as a server takes them encrypted: the usual ones of 4,096 bytes cost this
  // driver four times the system calls.
  text += fmt::format(
      ";TDS_Version=7.4;ClientCharset=UTF-8;PacketSize=16383;Encryption={};"
      "Language=us_english;APP=Dorvane;",
      settings.encryption == Encryption::Offered ? "request" : "require");
  if (settings.integrated_security) {
    text += "Trusted_Connection=yes;";
  } else {
    // An empty login would be taken for a trusted one; a blank is refused as an empty one is.
    const std::string user = settings.user_id.empty() ? " " : settings.user_id;
    text += fmt::format("UID={};PWD={};", FreeTdsValue(user), FreeTdsValue(settings.password));
  }
  if (!settings.database.empty())
    text += fmt::format("Database={};", FreeTdsValue(settings.database));
  return text;
}

}  // namespace

ServerAddress ParseServer(const std::string& server, int port) {
  std::string_view host = Trim(server);
  if (host.starts_with("tcp:") || host.starts_with("TCP:")) host = Trim(host.substr(4));
  const std::string_view port_text = CutAt(host, ',');
  const std::string_view instance = CutAt(host, '\\');
  ServerAddress address;
  address.instance = instance;
  address.port = instance.empty() || port != kUsualPort ? port : 0;
  int named_port = 0;
  const char* const end = port_text.data() + port_text.size();
  const auto parsed = std::from_chars(port_text.data(), end, named_port);
  if (!port_text.empty() && parsed.ec == std::errc() && parsed.ptr == end) {
    address.port = named_port;
  }
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);  // an IPv6 address as it stands in a URL
  }
  const bool is_this_machine = host.empty() || host == "." || host == "(local)";
  address.host = is_this_machine ? "localhost" : std::string(host);
  return address;
}

std::string DriverConnectionString(const Driver& driver, const ConnectionSettings& settings) {
  return driver.kind == DriverKind::Microsoft ? MicrosoftString(driver, settings)
                                              : FreeTdsString(driver, settings);
}

}  // namespace dorvane::ado::odbc
