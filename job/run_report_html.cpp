#include <fmt/chrono.h>
#include <fmt/format.h>

#include <string_view>

#include "job/progress_text.h"
#include "job/run_report.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --paper: #fff; --ink: #1c1e21; --quiet: #5f6670; --line: #d8dce1;
  --good: #1a7f37; --bad: #b3261e; }
@media (prefers-color-scheme: dark) {
  :root { --paper: #16181b; --ink: #e6e8eb; --quiet: #9aa2ad; --line: #33383f;
    --good: #56d364; --bad: #ff8a80; }
}
body { background: var(--paper); color: var(--ink); font: 16px/1.5 system-ui, sans-serif;
  max-width: 64rem; margin: 2rem auto; padding: 0 1rem; }
h1 { font-size: 1.6rem; line-height: 1.2; margin: 0; }
.outcome { font-size: 1.1rem; font-weight: 600; margin: .25rem 0 1.25rem; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .2rem 1.25rem; margin: 0; }
dt, .quiet { color: var(--quiet); }
dd { margin: 0; overflow-wrap: anywhere; }
table { border-collapse: collapse; width: 100%; margin: 1.5rem 0; }
th, td { text-align: left; vertical-align: top; padding: .45rem .6rem; overflow-wrap: anywhere;
  border-bottom: 1px solid var(--line); }
thead th { color: var(--quiet); font-weight: 400; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.good { color: var(--good); }
.bad { color: var(--bad); }
ul { margin: .25rem 0 0; padding-left: 1.1rem; font-size: .9rem; }
@media (max-width: 40rem) {
  thead { display: none; }
  tr { display: flex; flex-wrap: wrap; gap: 0 1rem; padding: .5rem 0;
    border-bottom: 1px solid var(--line); }
  th, td { border: 0; padding: 0; }
  tbody th, td:last-child { flex-basis: 100%; }
  td[data-unit]::after { content: " " attr(data-unit); color: var(--quiet); }
  .zero { display: none; }
}
@media print {
  :root { --paper: #fff; --ink: #000; --quiet: #444; --line: #bbb; --good: #000; --bad: #000; }
  body { max-width: none; margin: 0; padding: 0; font-size: 10pt; }
  .bad { font-weight: 600; }
  tr { break-inside: avoid; }
}
)";

/// The text as a page shows it, whatever it holds.
std::string Escaped(std::string_view text) {
  const std::string visible = text::Visible(text);
  std::string escaped;
  for (std::string_view rest = visible; !rest.empty();) {
    const std::optional<char32_t> character = text::TakeCodePoint(rest);
    switch (character.value_or(0xFFFD)) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        text::AppendUtf8(escaped, character.value_or(0xFFFD));
    }
  }
  return escaped;
}

std::string LocalTime(RunReport::Time time) {
  const std::tm parts = fmt::localtime(std::chrono::system_clock::to_time_t(time));
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", parts);
}

std::string Message(std::string_view tag, const ReportedMessage& message) {
  return fmt::format("<{0}{1}>{2}</{0}>", tag, message.is_failure ? " class=\"bad\"" : "",
                     Escaped(message.text));
}

std::string List(const std::vector<ReportedMessage>& messages) {
  if (messages.empty()) return {};
  std::string items;
  for (const ReportedMessage& message : messages) items += Message("li", message);
  return fmt::format("<ul>{}</ul>\n", items);
}

std::string Fact(std::string_view name, std::string_view value) {
  return fmt::format("<dt>{}</dt><dd>{}</dd>\n", Escaped(name), Escaped(value));
}

std::string Facts(const RunReport& report) {
  std::string facts = Fact("Source", report.source) + Fact("Destination", report.destination);
  for (const auto& [name, value] : report.options) facts += Fact(name, value);
  facts += Fact("Started", LocalTime(report.started));
  facts += Fact(report.is_complete ? "Ended" : "Broken off", LocalTime(report.ended));
  facts += Fact("Total", SummaryText(static_cast<std::int64_t>(report.tables.size()),
                                     RowsOf(report), report.ended - report.started));
  return fmt::format("<dl>\n{}</dl>\n", facts);
}

/// The number in a column of its own; on a narrow screen its unit stands behind it.
std::string Number(std::string_view unit, std::string_view number, bool is_zero) {
  return fmt::format(R"(<td class="number{}" data-unit="{}">{}</td>)", is_zero ? " zero" : "", unit,
                     number);
}

std::string_view StyleOf(ReportedTable::State state) {
  using State = ReportedTable::State;
  return state == State::Done ? "good" : state == State::NotBegun ? "quiet" : "bad";
}

std::string Row(const ReportedTable& table) {
  const double seconds = table.conversion_time.count();
  const std::int64_t rate = RowsPerSecond(table);
  std::string row = fmt::format(
      "<tr><th scope=\"row\">{}</th>{}{}{}<td><span class=\"{}\">{}</span>", Escaped(table.name),
      Number("rows", GroupedDigits(table.rows), false),
      Number("seconds", fmt::format("{:.1f}", seconds), seconds < 0.05),
      Number("rows/s", GroupedDigits(rate), rate == 0), StyleOf(table.state), NameOf(table.state));
  if (table.verification) {
    row += "<br>" + Message("span", *table.verification) +
           fmt::format(" <span class=\"quiet\">({:.1f} seconds)</span>",
                       table.verification_time.count());
  }
  return row + List(table.messages) + "</td></tr>\n";
}

std::string Outcome(const RunReport& report) {
  const std::string_view what = report.succeeded     ? "Nothing failed."
                                : report.is_complete ? "Something failed."
                                                     : "It did not come to its end.";
  return fmt::format("<p class=\"outcome {}\">{}</p>\n", report.succeeded ? "good" : "bad", what);
}

}  // namespace

std::string HtmlReport(const RunReport& report) {
  const std::string title = Escaped(fmt::format("{} report", report.task));
  std::string page = fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{0}</title>\n<style>{1}</style>\n</head>\n<body>\n<h1>{0}</h1>\n",
      title, kStyle);
  page += Outcome(report) + Facts(report) + List(report.messages);
  page +=
      "<table>\n<thead><tr><th>Table</th><th class=\"number\">Rows</th>"
      "<th class=\"number\">Seconds</th><th class=\"number\">Rows/s</th><th>Result</th></tr>"
      "</thead>\n<tbody>\n";
  for (const ReportedTable& table : report.tables) page += Row(table);
  return page + "</tbody>\n</table>\n</body>\n</html>\n";
}

}  // namespace dorvane
