#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "endpoint/database.h"
#include "platform/ado/connection.h"
#include "tests/conversions/script.h"

namespace dorvane::test {

std::string Joined(const Lines& lines, std::string_view separator = "\n");
Lines LinesOf(const std::string& text);

// The rig's servers, as their administrators.

ado::ConnectionSettings SettingsOf(ServerKind kind, const std::string& database);
std::unique_ptr<ado::Connection> Open(ServerKind kind, const std::string& database);

/// The rows of what the batches, parted by "go", or the statements answer, a row a line; an error
/// takes the place of further rows.
Lines AnswerOfMsSql(const std::string& database, const Lines& body);
Lines AnswerOfMySql(const std::string& database, const Lines& body);

}  // namespace dorvane::test
