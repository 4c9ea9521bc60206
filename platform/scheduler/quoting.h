#pragma once

#include <string>
#include <string_view>

namespace dorvane::scheduler {

/// Between double quotes, with backslashes, quotes and control characters escaped as in C: one line
/// that never ends in a backslash.
std::string QuoteC(std::string_view text);

/// What QuoteC was given. Throws RunTimeError 13 when the text is no such quotation.
std::string UnquoteC(std::string_view quoted);

/// The text as one word of /bin/sh inside a crontab line: it also survives cron, which ends a
/// command at "%" and reads backslashes of its own. The text holds no line break.
std::string QuoteForCron(std::string_view text);

/// The text with every "%" doubled, which begins a specifier in a unit file.
std::string EscapeSpecifiers(std::string_view text);

}  // namespace dorvane::scheduler
